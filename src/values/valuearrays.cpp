#include "values/valuearrays.h"

void makevaluearrays(state &s, arrayscope &arrays)
{
    valuedata &v = s.values;
    const int64 nmodels = s.qtn.nqtnmodels, ntraits = s.traits.ntraits;
    for (array2<double> *a : {&v.vara, &v.vard, &v.vare}) arrays.make(*a, nmodels, ntraits);
    for (array3<double> *a : {&v.cova, &v.covd, &v.cove, &v.cholcove})
        arrays.make(*a, nmodels, ntraits, ntraits);
    for (array3<double> *a : {&v.tbv, &v.tdv, &v.tpv})
        arrays.make(*a, s.pop.nindivp, nmodels, ntraits);
    v.nrowsread = 0;
    for (array1<double> *a : {&v.recombperindperchr, &v.tbvrecomb, &v.tbvrecombz})
        arrays.make(*a, s.pop.nindivp);
    arrays.make(s.haplo.recombcount, s.pop.nindivp, 2);

    for (const qtnset set : setsinuse(s)) {
        arrays.make(s.loci.sets[set].referencefreq, s.loci.ntot(set));
        arrays.make(s.loci.sets[set].currentfreq, s.loci.ntot(set));
    }
    for (qtnmodeldata &model : s.loci.models) {
        arrays.make(model.alpha, s.loci.ntotqtn, ntraits);
        if (s.qtn.dominonoff) arrays.make(model.domeff, s.loci.ntotqtn, ntraits);
    }
    if (s.selection.recombselonoff) arrays.make(s.loci.addeffrecomb, s.loci.ntotqtnrecomb);
}

void makegenotypetables(state &s, arrayscope &arrays)
{
    for (const qtnset set : setsinuse(s))
        arrays.make(s.loci.sets[set].qtngenos, s.values.nindivinsimulrun, s.loci.ntot(set));
}
