#include "values/dominance.h"

#include "traits/qtnmodels.h"
#include "values/qtnfiles.h"
#include "values/qtnsums.h"

namespace
{
void adddeviationsofset(state &s, int64 firstmodel, int64 startindiv, int64 endindiv)
{
    std::vector<double *> columns;
    std::vector<const double *> effects; // of each column, by QTN from 0
    for (int64 p = firstmodel; p <= s.qtn.nqtnmodels; p += 2)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            columns.push_back(&s.values.tdv(startindiv, p, j));
            effects.push_back(viewofmodel(s, p).domeff.column(j));
        }
    const qtnmodelview set = viewofmodel(s, firstmodel);
    sumoverqtn(set.genos, s.loci.ntotqtn, columns, endindiv - startindiv + 1,
               [&](int64 q, const double *x, double *sums) {
                   for (const double *effect : effects) {
                       adddominance(sums, x, effect[q - 1], set.freq(q));
                       sums += sumtile;
                   }
               });
}
} // namespace

void computetdv(state &s, int64 startindiv, int64 endindiv)
{
    readreferencefrequencies(s);
    readdominanceeffects(s);
    adddeviationsofset(s, 1, startindiv, endindiv);
    adddeviationsofset(s, 2, startindiv, endindiv);
}
