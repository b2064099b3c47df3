#include "selection/selectionarrays.h"

#include "editing/genedrive.h"
#include "values/valuearrays.h"

void makestagearrays(state &s, arrayscope &arrays)
{
    makevaluearrays(s, arrays);
    arrays.make(s.haplo.globalrecomblocationmax, s.founders.nchrom);
    editingdata &edit = s.editing;
    for (array1<int64> *list : {&edit.qtnidsortedbyabsval, &edit.qtnidsortedbyabsvalchrom,
                                &edit.qtnidsortedbyabsvalrecodedid, &edit.qtnforgeneditposneg,
                                &edit.qtnidsortedbyabsvalmutindivid})
        arrays.make(*list, s.qtn.ntotqtn);
    if (edit.genedriveonoff) allocatedriveflags(s);
}

void makecyclearrays(state &s, int64 currentgen, arrayscope &arrays)
{
    selectiondata &sel = s.selection;
    const bool qtnadded = sel.addqtntosnpchip == 1;
    arrays.make(sel.fixedsnp, s.chips.nsnp + (qtnadded ? s.qtn.ntotqtn : 0));
    arrays.make(sel.selectionvaratr, s.traits.ntraits);
    arrays.make(sel.selectionvarate, s.traits.ntraits);
    arrays.make(sel.estimatedbvtrait, sel.ntestindiv, s.traits.ntraits);
    for (array1<double> *a : {&sel.estimatedbvrecomb, &sel.estimatedbvindex, &sel.estimatedbv})
        arrays.make(*a, sel.ntestindiv);
    const int64 nselfed = s.pop.plantbreedonoff ? s.pop.nselfedparinthisgen(currentgen - 1) : 0;
    arrays.make(s.editing.indivtobeedited,
                nselfed > 0 ? nselfed : s.pop.nsireinthisgen(currentgen - 1));
    s.values.nindivinsimulrun = s.pop.nindivinthisgen(currentgen);
    makegenotypetables(s, arrays);

    for (array1<int64> *a : {&sel.trainindicator, &sel.trainindiv, &sel.gender}) arrays.hold(*a);
    for (array1<double> *a : {&sel.phenvaltrain, &sel.phenvalrecombtrain}) arrays.hold(*a);
}
