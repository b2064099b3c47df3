#include "traits/effectarrays.h"

namespace
{
void makeperqtn(state &s, arrayscope &arrays)
{
    locusdata &q = s.loci;
    for (array1<int64> *a : {&q.qtngamma, &q.allqtnidunres, &q.allqtnidrestr, &q.allqtnmutindunres,
                             &q.allqtnmutindrestr, &q.mutindivunres, &q.mutindivrestr})
        arrays.make(*a, q.ntotqtn);
    for (array1<double> *a : {&q.allqtnmafunres, &q.allqtnmafrestr, &q.allqtnfrequnres,
                              &q.allqtnfreqrestr, &q.allqtnposunres, &q.allqtnposrestr})
        arrays.make(*a, q.ntotqtn);
}

void makedegrees(state &s, arrayscope &arrays)
{
    locusdata &q = s.loci;
    for (array2<double> *a :
         {&q.domdegnormalunres, &q.domdegnormalrestr, &q.domdeggammaunrestr, &q.domdeggammarestr})
        arrays.make(*a, q.ntotqtn, s.traits.ntraits);
}

void makerecombination(state &s, arrayscope &arrays)
{
    locusdata &q = s.loci;
    arrays.make(q.allqtnidrecomb, q.ntotqtnrecomb);
    for (array1<double> *a :
         {&q.allqtnmafrecomb, &q.allqtnfreqrecomb, &q.allqtnposrecomb, &q.addeffrecomb})
        arrays.make(*a, q.ntotqtnrecomb);
}
} // namespace

void makeadditivearrays(state &s, arrayscope &arrays)
{
    locusdata &q = s.loci;
    for (array2<double> *a :
         {&q.addeffnormalunres, &q.addeffnormalrestr, &q.addeffgammaunrestr, &q.addeffgammarestr,
          &q.alphanormalunres, &q.alphanormalrestr, &q.alphagammaunrestr, &q.alphagammarestr})
        arrays.make(*a, q.ntotqtn, s.traits.ntraits);
}

void makedominancearrays(state &s, arrayscope &arrays)
{
    locusdata &q = s.loci;
    for (array2<double> *a :
         {&q.domeffnormalunres, &q.domeffnormalrestr, &q.domeffgammaunres, &q.domeffgammarestr})
        arrays.make(*a, q.ntotqtn, s.traits.ntraits);
}

void makeeffectarrays(state &s, arrayscope &arrays)
{
    makeperqtn(s, arrays);
    for (array2<double> *matrix : {&s.values.covaspec, &s.values.cholcovaspec})
        arrays.make(*matrix, s.traits.ntraits, s.traits.ntraits);
    makeadditivearrays(s, arrays);
    if (s.qtn.dominonoff) {
        makedominancearrays(s, arrays);
        makedegrees(s, arrays);
    }
    if (s.selection.recombselonoff) makerecombination(s, arrays);
}
