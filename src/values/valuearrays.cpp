#include "values/valuearrays.h"

#include "founders/stores.h"
#include "traits/effectarrays.h"
#include "words.h"

void allocatevariances(state &s)
{
    valuedata &v = s.values;
    const int64 nmodels = s.qtn.nqtnmodels, ntraits = s.traits.ntraits;
    for (array3<double> *a : {&v.varagenicloc, &v.vardgenicloc})
        a->allocate(s.qtn.ntotqtn, nmodels, ntraits);
    for (array2<double> *a :
         {&v.varagenic, &v.vardgenic, &v.varagenetic, &v.vardgenetic, &v.vara, &v.vard, &v.vare})
        a->allocate(nmodels, ntraits);
    for (array3<double> *a : {&v.cova, &v.covd}) a->allocate(nmodels, ntraits, ntraits);
}

void releasevariances(state &s)
{
    valuedata &v = s.values;
    for (array3<double> *a : {&v.varagenicloc, &v.vardgenicloc, &v.cova, &v.covd}) a->release();
    for (array2<double> *a :
         {&v.varagenic, &v.vardgenic, &v.varagenetic, &v.vardgenetic, &v.vara, &v.vard, &v.vare})
        a->release();
}

void allocatevalues(state &s)
{
    valuedata &v = s.values;
    for (array3<double> *a : {&v.tbv, &v.tdv, &v.tev, &v.tpv})
        a->allocate(s.pop.nindivp, s.qtn.nqtnmodels, s.traits.ntraits);
    for (array1<double> *a : {&v.recombeta, &v.recombperindperchr, &v.tbvrecomb, &v.tbvrecombz})
        a->allocate(s.pop.nindivp);
}

void releasevalues(state &s)
{
    valuedata &v = s.values;
    for (array3<double> *a : {&v.tbv, &v.tdv, &v.tev, &v.tpv}) a->release();
    for (array1<double> *a : {&v.recombeta, &v.recombperindperchr, &v.tbvrecomb, &v.tbvrecombz})
        a->release();
}

namespace
{
void allocateallgen(state &s)
{
    s.pedi.ped.allocate(s.pop.nindivp);
    s.pedi.globalgender.allocate(s.pop.nindivp);
    s.pop.nmalinthisgen.allocate(s.pop.ngen + s.pop.ngensel);
    s.pop.nfeminthisgen.allocate(s.pop.ngen + s.pop.ngensel);
    allocatechromarrays(s);
    s.qtn.allqtnfrequnres.allocate(s.qtn.ntotqtn);
    s.qtn.allqtnfreqrestr.allocate(s.qtn.ntotqtn);
    allocateadditivearrays(s);
    if (s.qtn.dominonoff) allocatedominancearrays(s);
    allocatevariances(s);
    allocatevalues(s);
    if (s.selection.recombselonoff) {
        s.haplo.recombcount.allocate(s.pop.nindivp, 2);
        s.qtn.allqtnfreqrecomb.allocate(s.qtn.ntotqtnrecomb);
        s.qtn.addeffrecomb.allocate(s.qtn.ntotqtnrecomb);
    }
}

void releaseallgen(state &s)
{
    s.pedi.ped.release();
    s.pedi.globalgender.release();
    s.pop.nmalinthisgen.release();
    s.pop.nfeminthisgen.release();
    releasechromarrays(s);
    s.qtn.allqtnfrequnres.release();
    s.qtn.allqtnfreqrestr.release();
    releaseadditivearrays(s);
    releasedominancearrays(s);
    releasevariances(s);
    releasevalues(s);
    s.haplo.recombcount.release();
    s.qtn.allqtnfreqrecomb.release();
    s.qtn.addeffrecomb.release();
}
} // namespace

void allocategenotypetables(state &s)
{
    s.qtn.allqtngenosunres.allocate(s.values.nindivinsimulrun, s.qtn.ntotqtn);
    s.qtn.allqtngenosrestr.allocate(s.values.nindivinsimulrun, s.qtn.ntotqtn);
    if (s.selection.recombselonoff)
        s.qtn.allqtngenosrecomb.allocate(s.values.nindivinsimulrun, s.qtn.ntotqtnrecomb);
}

void releasegenotypetables(state &s)
{
    s.qtn.allqtngenosunres.release();
    s.qtn.allqtngenosrestr.release();
    s.qtn.allqtngenosrecomb.release();
}

void allocatearraysforcomputevaravareandtpv(state &s, std::string_view data)
{
    if (isword(data, "allgen"))
        allocateallgen(s);
    else
        allocategenotypetables(s);
}

void deallocatearraysforcomputevaravareandtpv(state &s, std::string_view data)
{
    if (isword(data, "allgen"))
        releaseallgen(s);
    else
        releasegenotypetables(s);
}
