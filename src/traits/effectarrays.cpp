#include "traits/effectarrays.h"

namespace
{
void makeset(state &s, arrayscope &arrays, qtnset which)
{
    qtnsetdata &set = s.loci.sets[which];
    for (array1<int64> *a : {&set.qtnid, &set.chromid, &set.mutind, &set.mutindiv})
        arrays.make(*a, s.loci.ntot(which));
    for (array1<double> *a : {&set.maf, &set.referencefreq, &set.pos})
        arrays.make(*a, s.loci.ntot(which));
}

void makemodel(const state &s, arrayscope &arrays, qtnmodeldata &model)
{
    const auto make = [&](array2<double> &a) { arrays.make(a, s.loci.ntotqtn, s.traits.ntraits); };
    make(model.addeff);
    make(model.alpha);
    if (!s.qtn.dominonoff) return;
    make(model.domdeg);
    make(model.domeff);
}
} // namespace

void makeeffectarrays(state &s, arrayscope &arrays)
{
    for (array2<double> *matrix : {&s.values.covaspec, &s.values.cholcovaspec})
        arrays.make(*matrix, s.traits.ntraits, s.traits.ntraits);
    arrays.make(s.loci.qtngamma, s.loci.ntotqtn);
    for (const qtnset set : setsinuse(s)) makeset(s, arrays, set);
    for (qtnmodeldata &model : s.loci.models) makemodel(s, arrays, model);
    if (s.selection.recombselonoff) arrays.make(s.loci.addeffrecomb, s.loci.ntotqtnrecomb);
}
