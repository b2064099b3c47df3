// population.h - a small population by hand, for the tests of the selection cycle.
#pragma once

#include "openstate.h"

#include <numeric>
#include <vector>

// Generations of the given sizes, the first ngen of them burn-in; males and females take turns.
// No parents, values 0, one trait, one QTN model.
inline void makepopulation(openstate &s, int64 ngen, const std::vector<int64> &sizes)
{
    const int64 n = static_cast<int64>(sizes.size());
    s.pop.ngen = ngen;
    s.pop.ngensel = n - ngen;
    s.pop.nindivp = std::accumulate(sizes.begin(), sizes.end(), int64(0));
    s.pedi.nindivinthisgen.allocate({0, n});
    s.pedi.cumindivnbtogen.allocate({0, n});
    for (array1<int64> *numbers : {&s.pop.nsireinthisgen, &s.pop.ndaminthisgen,
                                   &s.pop.nrandparinthisgen, &s.pop.nselfedparinthisgen})
        numbers->allocate(n);
    s.pedi.nmalinthisgen.allocate(n);
    s.pedi.nfeminthisgen.allocate(n);
    s.pedi.ped.allocate(s.pop.nindivp);
    s.pedi.globalgender.allocate(s.pop.nindivp);
    int64 row = 0;
    for (int64 g = 1; g <= n; ++g) {
        s.pedi.nindivinthisgen(g) = sizes[static_cast<std::size_t>(g - 1)];
        s.pedi.cumindivnbtogen(g) = s.pedi.cumindivnbtogen(g - 1) + s.pedi.nindivinthisgen(g);
        for (int64 k = 1; k <= s.pedi.nindivinthisgen(g); ++k) {
            ++row;
            s.pedi.ped(row).newid = row;
            s.pedi.ped(row).generation = g;
            s.pedi.globalgender(row) = k % 2 == 1 ? 1 : 2;
            ++(k % 2 == 1 ? s.pedi.nmalinthisgen : s.pedi.nfeminthisgen)(g);
        }
    }
    s.pop.animbreedonoff = true;
    s.founders.nchrom = 1;
    s.founders.morgans = 1;
    s.traits.ntraits = 1;
    s.qtn.nqtnmodels = 1;
    s.qtn.qtnmodel = 1;
    s.selection.addqtntosnpchip = 2;
    s.random.idum = -4711;
}

// Makes generation gen the test set, with these values to be ranked on.
inline void settest(openstate &s, int64 gen, const std::vector<double> &values)
{
    cycledata &cycle = s.cycle;
    cycle.starttestindiv = firstindivofgen(s, gen);
    cycle.endtestindiv = lastindivofgen(s, gen);
    cycle.ntestindiv = s.pedi.nindivinthisgen(gen);
    cycle.gender.allocate(cycle.ntestindiv);
    cycle.estimatedbv.allocate(cycle.ntestindiv);
    for (int64 i = 1; i <= cycle.ntestindiv; ++i) {
        cycle.gender(i) = s.pedi.globalgender(cycle.starttestindiv + i - 1);
        cycle.estimatedbv(i) = values[static_cast<std::size_t>(i - 1)];
    }
}

inline std::vector<int64> siresof(const openstate &s, int64 gen)
{
    std::vector<int64> sires;
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i)
        sires.push_back(s.pedi.ped(i).newsire);
    return sires;
}
inline std::vector<int64> damsof(const openstate &s, int64 gen)
{
    std::vector<int64> dams;
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i)
        dams.push_back(s.pedi.ped(i).newdam);
    return dams;
}
