#include "values/breedingvalues.h"

#include "traits/qtnmodels.h"
#include "values/qtnfiles.h"
#include "values/qtnsums.h"

namespace
{
// The models of one QTN set share its genotypes: p and, where it exists, p + 2.
void addbreedingvalues(state &s, int64 firstmodel, int64 startindiv, int64 endindiv)
{
    const int64 ntraits = s.traits.ntraits;
    std::vector<double *> columns;
    std::vector<const double *> effects; // of each column, by QTN from 0
    for (int64 p = firstmodel; p <= s.qtn.nqtnmodels; p += 2)
        for (int64 j = 1; j <= ntraits; ++j) {
            columns.push_back(&s.values.tbv(startindiv, p, j));
            effects.push_back(viewofmodel(s, p).alpha.column(j));
        }
    const qtnmodelview set = viewofmodel(s, firstmodel);
    sumoverqtn(set.genos, s.loci.ntotqtn, columns, endindiv - startindiv + 1,
               [&](int64 q, const double *x, double *sums) {
                   for (const double *effect : effects) {
                       adddeviations(sums, x, effect[q - 1], set.freq(q));
                       sums += sumtile;
                   }
               });
}
} // namespace

void computetbv(state &s, int64 startindiv, int64 endindiv)
{
    readreferencefrequencies(s);
    readsubstitutioneffects(s);
    addbreedingvalues(s, 1, startindiv, endindiv);
    addbreedingvalues(s, 2, startindiv, endindiv);
    if (!s.selection.recombselonoff) s.values.recombperindperchr.fill(s.founders.morgans);
}
