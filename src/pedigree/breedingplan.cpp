#include "pedigree/breedingplan.h"

#include <cassert>

bool isdoubledhaploid(const state &s, int64 gen)
{
    return s.pop.ngendh > 0 && s.pop.createdhinthisgen(gen) == 1;
}

bool israndommated(const state &s, int64 gen)
{
    return s.pop.nrandparinthisgen(gen - 1) > 0;
}

bool genderisignored(const state &s, int64 gen)
{
    return israndommated(s, gen) || s.pop.nselfedparinthisgen(gen - 1) > 0;
}

breedingplan planofgeneration(const state &s, int64 gen)
{
    assert(gen >= 2);
    const int64 parentgen = gen - 1;
    const bool burnin = gen <= s.pop.ngen;
    const int64 nselfed = s.pop.nselfedparinthisgen(parentgen);
    const int64 nrandom = s.pop.nrandparinthisgen(parentgen);
    if (nselfed > 0) return {nselfed, 0, damside::assire};
    if (nrandom > 0) return {nrandom, nrandom, burnin ? damside::dealt : damside::chosen};

    breedingplan plan{s.pop.nsireinthisgen(parentgen), s.pop.ndaminthisgen(parentgen)};
    if (isdoubledhaploid(s, gen) && (burnin || plan.ndams == 0))
        plan.dams = damside::assire;
    else if (burnin && s.pop.ngendh > 0)
        plan.dams = damside::none;
    return plan;
}

void chooseparentsof(state &s, int64 gen, parentchoice choose)
{
    const breedingplan plan = planofgeneration(s, gen);
    choose(s, gen, 1, plan.nsires);
    if (plan.dams == damside::chosen) choose(s, gen, 2, plan.ndams);
    if (plan.dams == damside::assire)
        for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i)
            s.pedi.ped(i).newdam = s.pedi.ped(i).newsire;
}
