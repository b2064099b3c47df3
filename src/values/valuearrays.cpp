#include "values/valuearrays.h"

#include "traits/effectarrays.h"

void makevaluearrays(state &s, arrayscope &arrays)
{
    valuedata &v = s.values;
    const int64 nmodels = s.qtn.nqtnmodels, ntraits = s.traits.ntraits;
    for (array2<double> *a : {&v.vara, &v.vard, &v.vare}) arrays.make(*a, nmodels, ntraits);
    for (array3<double> *a : {&v.cova, &v.covd, &v.cove, &v.cholcove})
        arrays.make(*a, nmodels, ntraits, ntraits);
    for (array3<double> *a : {&v.tbv, &v.tdv, &v.tpv})
        arrays.make(*a, s.pop.nindivp, nmodels, ntraits);
    for (array1<double> *a : {&v.recombperindperchr, &v.tbvrecomb, &v.tbvrecombz})
        arrays.make(*a, s.pop.nindivp);
    arrays.make(s.haplo.recombcount, s.pop.nindivp, 2);

    arrays.make(s.loci.allqtnfrequnres, s.loci.ntotqtn);
    arrays.make(s.loci.allqtnfreqrestr, s.loci.ntotqtn);
    makeadditivearrays(s, arrays);
    if (s.qtn.dominonoff) makedominancearrays(s, arrays);
    if (!s.selection.recombselonoff) return;
    arrays.make(s.loci.allqtnfreqrecomb, s.loci.ntotqtnrecomb);
    arrays.make(s.loci.addeffrecomb, s.loci.ntotqtnrecomb);
}

void makegenotypetables(state &s, arrayscope &arrays)
{
    arrays.make(s.loci.allqtngenosunres, s.values.nindivinsimulrun, s.loci.ntotqtn);
    arrays.make(s.loci.allqtngenosrestr, s.values.nindivinsimulrun, s.loci.ntotqtn);
    if (s.selection.recombselonoff)
        arrays.make(s.loci.allqtngenosrecomb, s.values.nindivinsimulrun, s.loci.ntotqtnrecomb);
}
