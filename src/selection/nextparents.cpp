#include "selection/nextparents.h"

#include "pedigree/breedingplan.h"
#include "pedigree/matings.h"
#include "pedigree/parentnumbers.h"
#include "words.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <vector>

namespace
{
// Places of the chosen in the test set, best first.
array1<int64> rank(const state &s, int64 currentgen, int64 parentgender, int64 npargender)
{
    const cycledata &cycle = s.cycle;
    const bool genderblind = genderisignored(s, currentgen);
    const double lowest = static_cast<double>(-1.0e16f);
    std::vector<int64> candidates;
    for (int64 i = 1; i <= cycle.ntestindiv; ++i)
        if ((genderblind || cycle.gender(i) == parentgender) &&
            std::isfinite(cycle.estimatedbv(i)) && cycle.estimatedbv(i) > lowest)
            candidates.push_back(i);
    const auto nfound = std::min(static_cast<int64>(candidates.size()), npargender);
    std::partial_sort(candidates.begin(), candidates.begin() + nfound, candidates.end(),
                      [&](int64 a, int64 b) {
                          const double x = cycle.estimatedbv(a), y = cycle.estimatedbv(b);
                          return x > y || (x == y && a < b);
                      });
    if (nfound < npargender)
        warn(s.options, "", 0,
             numbertext(npargender) + " parents of generation " + numbertext(currentgen - 1) +
                 " are asked for, " + numbertext(nfound) +
                 " candidates have a finite value; the last is entered again");
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
    cycledata &cycle = s.cycle;
    const int64 nmatings = s.pedi.nindivinthisgen(currentgen);
    const int64 firstrow = cycle.endtestindiv + 1;
    assert(firstrow == firstindivofgen(s, currentgen));
    checkparentsavailable(s, parentgender, currentgen, npargender, npargender);
    const array1<int64> selectedindividuals = rank(s, currentgen, parentgender, npargender);
    if (s.editing.geneditonoff && parentgender == 1)
        for (int64 k = 1; k <= std::min(s.edits.indivtobeedited.size(), npargender); ++k)
            s.edits.indivtobeedited(k) = selectedindividuals(k);

    array1<int64> matingvec(nmatings);
    buildmatingvec(selectedindividuals, npargender, nmatings, matingvec);
    for (int64 &parent : matingvec) parent += cycle.endtestindiv - cycle.ntestindiv; // place to row

    assignparents(s, firstrow, nmatings, matingvec, parentgender);
    if (israndommated(s, currentgen)) randommating(s, firstrow, nmatings, matingvec, parentgender);
}
