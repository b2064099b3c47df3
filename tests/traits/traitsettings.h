// traitsettings.h - a state as the specification leaves it, for the tests of effects and values.
#pragma once

#include "openstate.h"

#include <vector>

// Generations of burn-in of these sizes, two chromosomes, seven QTN, four models, and no dominance,
// mutations or recombination trait. Trait j has heritability 0.2 + 0.1 j and variance j; genetic
// correlations are 0.5, residual ones -0.2.
inline openstate statewithtraits(int64 ntraits, const std::vector<int64> &sizes = {12, 9, 10})
{
    openstate s;
    s.random.idum = -77;
    s.founders.nchrom = 2;
    s.founders.morgans = 1.5;
    s.run.specstartgen = 1;
    s.run.specendgen = s.pop.ngen = static_cast<int64>(sizes.size());
    s.pedi.nindivinthisgen.allocate({0, s.pop.ngen});
    s.pedi.cumindivnbtogen.allocate({0, s.pop.ngen});
    for (int64 g = 1; g <= s.pop.ngen; ++g) {
        s.pedi.nindivinthisgen(g) = sizes[static_cast<std::size_t>(g - 1)];
        s.pedi.cumindivnbtogen(g) = s.pedi.cumindivnbtogen(g - 1) + s.pedi.nindivinthisgen(g);
    }
    s.pop.nindivp = s.pedi.cumindivnbtogen(s.pop.ngen);
    s.qtn.nqtn = s.qtn.nqtngamma = 7;
    s.qtn.nqtnmodels = 4;
    s.qtn.shapeparam = 0.4;
    s.qtn.scaleparam = 1.66;
    s.traits.ntraits = ntraits;
    for (array1<double> *a : {&s.traits.indexwt, &s.traits.herit, &s.traits.varaspec})
        a->allocate(ntraits);
    for (array2<double> *a :
         {&s.traits.coraspec, &s.traits.core, &s.values.covaspec, &s.values.cholcovaspec})
        a->allocate(ntraits, ntraits);
    for (array3<double> *a : {&s.values.cove, &s.values.cholcove}) a->allocate(4, ntraits, ntraits);
    for (int64 j = 1; j <= ntraits; ++j) {
        s.traits.herit(j) = 0.2 + 0.1 * static_cast<double>(j);
        s.traits.varaspec(j) = static_cast<double>(j);
        for (int64 h = 1; h <= ntraits; ++h) {
            s.traits.coraspec(j, h) = j == h ? 1.0 : 0.5;
            s.traits.core(j, h) = j == h ? 1.0 : -0.2;
        }
    }
    return s;
}
