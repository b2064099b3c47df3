#include "values/breedingvalues.h"

#include "values/qtnsums.h"

namespace
{
// All models of a set in one pass over its genotypes.
//   addterm  called as addterm(sums, x, effect, f) for each QTN, model and trait
template <class Addterm>
void addmodelsofset(state &s, qtnset which, array3<double> &values,
                    array2<double> qtnmodeldata::*effects, int64 startindiv, int64 endindiv,
                    Addterm addterm)
{
    std::vector<double *> columns;
    std::vector<const double *> effectcolumns; // of each column, by QTN from 0
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
        for (int64 j = 1; j <= s.traits.ntraits && s.loci.model(p).set == which; ++j) {
            columns.push_back(&values(startindiv, p, j));
            effectcolumns.push_back((s.loci.model(p).*effects).column(j));
        }
    const qtnsetdata &set = s.loci.sets[which];
    sumoverqtn(set.qtngenos, s.loci.ntotqtn, columns, endindiv - startindiv + 1,
               [&](int64 q, const double *x, double *sums) {
                   for (const double *effect : effectcolumns) {
                       addterm(sums, x, effect[q - 1], set.referencefreq(q));
                       sums += sumtile;
                   }
               });
}
} // namespace

void computetbv(state &s, int64 startindiv, int64 endindiv)
{
    for (const qtnset set : traitsets)
        addmodelsofset(s, set, s.values.tbv, &qtnmodeldata::alpha, startindiv, endindiv,
                       adddeviations);
    if (!s.selection.recombselonoff) s.values.recombperindperchr.fill(s.founders.morgans);
}

void computetdv(state &s, int64 startindiv, int64 endindiv)
{
    for (const qtnset set : traitsets)
        addmodelsofset(s, set, s.values.tdv, &qtnmodeldata::domeff, startindiv, endindiv,
                       adddominance);
}
