#include "selection/nextparents.h"

#include "pedigree/matings.h"
#include "stops.h"
#include "textlayout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace
{
bool isgenderblind(const state &s, int64 parentgen)
{
    return s.pop.plantbreedonoff &&
           (s.pop.nrandparinthisgen(parentgen) > 0 || s.pop.nselfedparinthisgen(parentgen) > 0);
}

void stopifnoparents(const state &s, int64 parentgen, int64 parentgender, int64 npargender)
{
    if (npargender > 0) return;
    struct report {
        const char *message;
        int64 width, code;
    };
    static constexpr report reports[2][2] = {
        {{"ERROR: Not enough sires for generation", 38, 110023},
         {"ERROR: Not enough dams for generation", 37, 110024}},
        {{"ERROR: Not enough male plants for generation", 44, 110019},
         {"ERROR: Not enough female plants for generation", 46, 110020}}};
    const report &found = reports[s.pop.plantbreedonoff ? 1 : 0][parentgender - 1];
    textline line;
    puta(line, found.message, found.width);
    puti(line, parentgen, 5);
    printline(line);
    stopwithcode(found.code);
}

// Places of the chosen in the test set, best first.
array1<int64> rank(const state &s, int64 parentgen, int64 parentgender, int64 npargender)
{
    const selectiondata &sel = s.selection;
    const bool genderblind = isgenderblind(s, parentgen);
    const double lowest = static_cast<double>(-1.0e16f);
    std::vector<int64> candidates;
    for (int64 i = 1; i <= sel.ntestindiv; ++i)
        if ((genderblind || sel.gender(i) == parentgender) && std::isfinite(sel.estimatedbv(i)) &&
            sel.estimatedbv(i) > lowest)
            candidates.push_back(i);
    const auto nfound = std::min(static_cast<int64>(candidates.size()), npargender);
    std::partial_sort(candidates.begin(), candidates.begin() + nfound, candidates.end(),
                      [&](int64 a, int64 b) {
                          const double x = sel.estimatedbv(a), y = sel.estimatedbv(b);
                          return x > y || (x == y && a < b);
                      });
    if (nfound < npargender)
        std::fprintf(
            stderr,
            "warning: %lld parents of generation %lld are asked for, %lld candidates have a "
            "finite value; the last is entered again\n",
            static_cast<long long>(npargender), static_cast<long long>(parentgen),
            static_cast<long long>(nfound));
    array1<int64> selectedindividuals(npargender, 1);
    for (int64 k = 1; k <= npargender; ++k) {
        if (k <= nfound)
            selectedindividuals(k) = candidates[static_cast<std::size_t>(k - 1)];
        else if (k > 1)
            selectedindividuals(k) = selectedindividuals(k - 1);
    }
    return selectedindividuals;
}
} // namespace

void selectnextparentstruncat(state &s, int64 currentgen, int64 parentgender, int64 npargender)
{
    selectiondata &sel = s.selection;
    const int64 parentgen = currentgen - 1;
    const int64 nmatings = s.pop.nindivinthisgen(currentgen);
    const int64 firstrow = sel.endtestindiv + 1;
    stopifnoparents(s, parentgen, parentgender, npargender);
    const array1<int64> selectedindividuals = rank(s, parentgen, parentgender, npargender);
    if (s.editing.geneditonoff && parentgender == 1)
        for (int64 k = 1; k <= s.editing.indivtobeedited.size(); ++k)
            s.editing.indivtobeedited(k) = selectedindividuals(k);

    array1<int64> matingvec(nmatings);
    buildmatingvec(selectedindividuals, npargender, nmatings, matingvec);
    for (int64 &parent : matingvec) parent += sel.endtestindiv - sel.ntestindiv; // place to row

    if (parentgender == 1) {
        for (int64 r = 1; r <= nmatings; ++r) s.pedi.ped(firstrow + r - 1).newsire = matingvec(r);
    } else {
        array1<int64> shufflematingvec(nmatings);
        randomorder(shufflematingvec, nmatings, s.random);
        for (int64 r = 1; r <= nmatings; ++r)
            s.pedi.ped(firstrow + r - 1).newdam = matingvec(shufflematingvec(r));
    }
    if (s.pop.nrandparinthisgen(parentgen) > 0)
        randommating(s, firstrow, nmatings, matingvec, parentgender);
}
