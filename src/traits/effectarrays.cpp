#include "traits/effectarrays.h"

#include "founders/stores.h"
#include "words.h"

namespace
{
void allocateperqtn(state &s)
{
    qtndata &q = s.qtn;
    for (array1<int64> *a : {&q.qtngamma, &q.allqtnidunres, &q.allqtnidrestr, &q.allqtnmutindunres,
                             &q.allqtnmutindrestr, &q.mutindivunres, &q.mutindivrestr})
        a->allocate(q.ntotqtn);
    for (array1<double> *a : {&q.allqtnmafunres, &q.allqtnmafrestr, &q.allqtnfrequnres,
                              &q.allqtnfreqrestr, &q.allqtnposunres, &q.allqtnposrestr})
        a->allocate(q.ntotqtn);
}

void releaseperqtn(state &s)
{
    qtndata &q = s.qtn;
    for (array1<int64> *a : {&q.qtngamma, &q.allqtnidunres, &q.allqtnidrestr, &q.allqtnmutindunres,
                             &q.allqtnmutindrestr, &q.mutindivunres, &q.mutindivrestr})
        a->release();
    for (array1<double> *a : {&q.allqtnmafunres, &q.allqtnmafrestr, &q.allqtnfrequnres,
                              &q.allqtnfreqrestr, &q.allqtnposunres, &q.allqtnposrestr})
        a->release();
}

void allocatedegrees(state &s)
{
    qtndata &q = s.qtn;
    for (array2<double> *a :
         {&q.domdegnormalunres, &q.domdegnormalrestr, &q.domdeggammaunrestr, &q.domdeggammarestr})
        a->allocate(q.ntotqtn, s.traits.ntraits);
}

void releasedegrees(state &s)
{
    qtndata &q = s.qtn;
    for (array2<double> *a :
         {&q.domdegnormalunres, &q.domdegnormalrestr, &q.domdeggammaunrestr, &q.domdeggammarestr})
        a->release();
}

void allocaterecombination(state &s)
{
    qtndata &q = s.qtn;
    q.allqtnidrecomb.allocate(q.ntotqtnrecomb);
    for (array1<double> *a : {&q.allqtnmafrecomb, &q.allqtnfreqrecomb, &q.allqtnposrecomb,
                              &q.addeffrecomb, &q.varageniclocrecomb})
        a->allocate(q.ntotqtnrecomb);
}

void releaserecombination(state &s)
{
    qtndata &q = s.qtn;
    q.allqtnidrecomb.release();
    for (array1<double> *a : {&q.allqtnmafrecomb, &q.allqtnfreqrecomb, &q.allqtnposrecomb,
                              &q.addeffrecomb, &q.varageniclocrecomb})
        a->release();
}
} // namespace

void allocateadditivearrays(state &s)
{
    qtndata &q = s.qtn;
    for (array2<double> *a :
         {&q.addeffnormalunres, &q.addeffnormalrestr, &q.addeffgammaunrestr, &q.addeffgammarestr,
          &q.alphanormalunres, &q.alphanormalrestr, &q.alphagammaunrestr, &q.alphagammarestr})
        a->allocate(q.ntotqtn, s.traits.ntraits);
}

void releaseadditivearrays(state &s)
{
    qtndata &q = s.qtn;
    for (array2<double> *a :
         {&q.addeffnormalunres, &q.addeffnormalrestr, &q.addeffgammaunrestr, &q.addeffgammarestr,
          &q.alphanormalunres, &q.alphanormalrestr, &q.alphagammaunrestr, &q.alphagammarestr})
        a->release();
}

void allocatedominancearrays(state &s)
{
    qtndata &q = s.qtn;
    for (array2<double> *a :
         {&q.domeffnormalunres, &q.domeffnormalrestr, &q.domeffgammaunres, &q.domeffgammarestr})
        a->allocate(q.ntotqtn, s.traits.ntraits);
}

void releasedominancearrays(state &s)
{
    qtndata &q = s.qtn;
    for (array2<double> *a :
         {&q.domeffnormalunres, &q.domeffnormalrestr, &q.domeffgammaunres, &q.domeffgammarestr})
        a->release();
}

void allocatearraysforsimulateqtneffects(state &s, std::string_view part)
{
    if (isword(part, "chromdata")) {
        allocatechromarrays(s);
        return;
    }
    allocateperqtn(s);
    allocateadditivearrays(s);
    if (s.qtn.dominonoff) {
        allocatedominancearrays(s);
        allocatedegrees(s);
    }
    if (s.selection.recombselonoff) allocaterecombination(s);
    s.values.varagenicloc.allocate(s.qtn.ntotqtn, s.qtn.nqtnmodels, s.traits.ntraits);
    s.values.varagenic.allocate(s.qtn.nqtnmodels, s.traits.ntraits);
}

void deallocatearraysforsimulateqtneffects(state &s)
{
    releasechromarrays(s);
    releaseperqtn(s);
    releaseadditivearrays(s);
    releasedominancearrays(s);
    releasedegrees(s);
    releaserecombination(s);
    s.values.varagenicloc.release();
    s.values.varagenic.release();
}
