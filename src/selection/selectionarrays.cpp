#include "selection/selectionarrays.h"

#include "editing/genedrive.h"
#include "editing/genomeediting.h"
#include "values/valuearrays.h"

void makestagearrays(state &s, arrayscope &arrays)
{
    makevaluearrays(s, arrays);
    arrays.hold(s.haplo.globalrecomblocationmax);
    arrays.make(s.haplo.recombfactors, s.founders.nchrom);
    const editingsettings &edit = s.editing;
    editdata &edits = s.edits;
    for (array1<int64> *list : {&edits.qtnidsortedbyabsval, &edits.qtnidsortedbyabsvalchrom,
                                &edits.qtnidsortedbyabsvalrecodedid, &edits.qtnforgeneditposneg,
                                &edits.qtnidsortedbyabsvalmutindivid})
        arrays.make(*list, s.loci.ntotqtn);
    arrays.make(edits.idofgenomeeditinds, edit.nindedited);
    for (array2<int64> *table :
         {&edits.genomeeditqtnpos, &edits.genomeeditqtnchrom, &edits.genomeeditqtnposneg})
        arrays.make(*table, edit.nindedited, edit.ngeneditsperind);
    arrays.hold(edits.genedriveqtnpresence);
    if (edit.genedriveonoff) allocatedriveflags(s);
}

void makecyclearrays(state &s, int64 currentgen, arrayscope &arrays)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    const bool qtnadded = sel.addqtntosnpchip == 1;
    arrays.make(cycle.fixedsnp, s.loci.nsnp + (qtnadded ? s.loci.ntotqtn : 0));
    arrays.make(cycle.selectionvaratr, s.traits.ntraits);
    arrays.make(cycle.selectionvarate, s.traits.ntraits);
    arrays.make(cycle.estimatedbvtrait, cycle.ntestindiv, s.traits.ntraits);
    for (array1<double> *a :
         {&cycle.estimatedbvrecomb, &cycle.estimatedbvindex, &cycle.estimatedbv})
        arrays.make(*a, cycle.ntestindiv);
    arrays.make(s.edits.indivtobeedited, editableparents(s, currentgen - 1));
    s.values.nindivinsimulrun = s.pedi.nindivinthisgen(currentgen);
    makegenotypetables(s, arrays);

    for (array1<int64> *a : {&cycle.trainindicator, &cycle.trainindiv, &cycle.gender})
        arrays.hold(*a);
    for (array1<double> *a : {&cycle.phenvaltrain, &cycle.phenvalrecombtrain}) arrays.hold(*a);
}
