#include "selection/selectionarrays.h"

#include "editing/genedrive.h"
#include "founders/stores.h"
#include "traits/effectarrays.h"
#include "values/valuearrays.h"
#include "words.h"

namespace
{
void allocatechrompedi(state &s)
{
    s.pedi.ped.allocate(s.pop.nindivp);
    s.pedi.globalgender.allocate(s.pop.nindivp);
    s.pop.nmalinthisgen.allocate(s.pop.ngen + s.pop.ngensel);
    s.pop.nfeminthisgen.allocate(s.pop.ngen + s.pop.ngensel);
    allocatechromarrays(s);
}

void releasechrompedi(state &s)
{
    s.pedi.ped.release();
    s.pedi.globalgender.release();
    s.pop.nmalinthisgen.release();
    s.pop.nfeminthisgen.release();
    releasechromarrays(s);
}

void allocateqtntbv(state &s)
{
    allocatevariances(s);
    allocatevalues(s);
    s.haplo.recombcount.allocate(s.pop.nindivp, 2);
    s.haplo.globalrecomblocationmax.allocate(s.founders.nchrom);
    s.qtn.allqtnfrequnres.allocate(s.qtn.ntotqtn);
    s.qtn.allqtnfreqrestr.allocate(s.qtn.ntotqtn);
    allocateadditivearrays(s);
    if (s.qtn.dominonoff) allocatedominancearrays(s);
    if (s.selection.recombselonoff) {
        s.qtn.allqtnfreqrecomb.allocate(s.qtn.ntotqtnrecomb);
        s.qtn.addeffrecomb.allocate(s.qtn.ntotqtnrecomb);
    }
    editingdata &edit = s.editing;
    for (array1<int64> *list : {&edit.qtnidsortedbyabsval, &edit.qtnidsortedbyabsvalchrom,
                                &edit.qtnidsortedbyabsvalrecodedid, &edit.qtnforgeneditposneg,
                                &edit.qtnidsortedbyabsvalmutindivid})
        list->allocate(s.qtn.ntotqtn);
    if (edit.genedriveonoff) allocatedriveflags(s);
}

void releaseqtntbv(state &s)
{
    releasevariances(s);
    releasevalues(s);
    s.haplo.recombcount.release();
    s.haplo.globalrecomblocationmax.release();
    releaseadditivearrays(s);
    releasedominancearrays(s);
    for (array1<double> *a : {&s.qtn.allqtnfrequnres, &s.qtn.allqtnfreqrestr,
                              &s.qtn.allqtnfreqrecomb, &s.qtn.addeffrecomb})
        a->release();
    editingdata &edit = s.editing;
    for (array1<int64> *list : {&edit.qtnidsortedbyabsval, &edit.qtnidsortedbyabsvalchrom,
                                &edit.qtnidsortedbyabsvalrecodedid, &edit.qtnforgeneditposneg,
                                &edit.qtnidsortedbyabsvalmutindivid})
        list->release();
}

void allocatecycle(state &s, int64 currentgen)
{
    selectiondata &sel = s.selection;
    const bool qtnadded = sel.addqtntosnpchip == 1;
    sel.allphase.allocate(s.chips.nsnp, 2, -99);
    if (qtnadded) sel.allphaseqtn.allocate(s.qtn.ntotqtn, 2, -99);
    sel.fixedsnp.allocate(s.chips.nsnp + (qtnadded ? s.qtn.ntotqtn : 0));
    sel.selectionvaratr.allocate(s.traits.ntraits);
    sel.selectionvarate.allocate(s.traits.ntraits);
    sel.estimatedbvtrait.allocate(sel.ntestindiv, s.traits.ntraits);
    for (array1<double> *a : {&sel.estimatedbvrecomb, &sel.estimatedbvindex, &sel.estimatedbv})
        a->allocate(sel.ntestindiv);
    const int64 nselfed = s.pop.plantbreedonoff ? s.pop.nselfedparinthisgen(currentgen - 1) : 0;
    s.editing.indivtobeedited.allocate(nselfed > 0 ? nselfed
                                                   : s.pop.nsireinthisgen(currentgen - 1));
    s.values.nindivinsimulrun = s.pop.nindivinthisgen(currentgen);
    allocategenotypetables(s);
}

void releasecycle(state &s)
{
    selectiondata &sel = s.selection;
    sel.allphase.release();
    sel.allphaseqtn.release();
    sel.estimatedbvtrait.release();
    for (array1<int64> *a : {&sel.fixedsnp, &sel.trainindicator, &sel.trainindiv, &sel.gender,
                             &s.editing.indivtobeedited})
        a->release();
    for (array1<double> *a :
         {&sel.selectionvaratr, &sel.selectionvarate, &sel.estimatedbvrecomb, &sel.estimatedbvindex,
          &sel.estimatedbv, &sel.phenvaltrain, &sel.phenvalrecombtrain})
        a->release();
    releasegenotypetables(s);
}
} // namespace

void allocatearraysfordrophaploselection(state &s, int64 currentgen, std::string_view data)
{
    if (isword(data, "chrompedi")) allocatechrompedi(s);
    if (isword(data, "qtntbvged")) allocateqtntbv(s);
    if (isword(data, "selection")) allocatecycle(s, currentgen);
}

void deallocatearraysfordrophaploselection(state &s, [[maybe_unused]] int64 currentgen,
                                           std::string_view data)
{
    if (isword(data, "chrompedi")) releasechrompedi(s);
    if (isword(data, "qtntbvged")) releaseqtntbv(s);
    if (isword(data, "selection")) releasecycle(s);
}
