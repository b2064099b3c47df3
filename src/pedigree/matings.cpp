#include "pedigree/matings.h"

#include "stops.h"

#include <algorithm>
#include <cassert>

void buildmatingvec(const array1<int64> &parents, int64 npargender, int64 nmatings,
                    array1<int64> &matingvec)
{
    assert(npargender >= 1 && npargender <= parents.size());
    assert(matingvec.size() >= nmatings);
    const int64 ntmp = nmatings / npargender;
    int64 r = 0;
    for (int64 k = 1; k <= npargender; ++k)
        for (int64 n = 1; n <= ntmp; ++n) matingvec(++r) = parents(k);
    for (int64 k = 1; r < nmatings; ++k) matingvec(++r) = parents(k);
}

void stopforrandommating(int64 gen)
{
    textline line;
    puta(line, "ERROR: Random mating needs at least two parents for generation", 62);
    puti(line, gen, 5);
    printline(line);
    stopwithcode(110021);
}

namespace
{
int64 generationofrow(const state &s, int64 row)
{
    int64 gen = 1;
    while (gen < s.pedi.cumindivnbtogen.upper() && s.pedi.cumindivnbtogen(gen) < row) ++gen;
    return gen;
}
} // namespace

void randommating(state &s, int64 firstrow, int64 nmatings, const array1<int64> &parentrows,
                  int64 parentgenderwritten)
{
    assert(parentrows.size() >= nmatings);
    assert(parentgenderwritten == 1 || parentgenderwritten == 2);
    const int64 *const first = parentrows.begin();
    if (std::all_of(first, first + nmatings, [&](int64 parent) { return parent == *first; }))
        stopforrandommating(generationofrow(s, firstrow) - 1);

    array1<int64> shufflematingvec(nmatings), shufflematingvec2(nmatings);
    randomorder(shufflematingvec, nmatings, s.random);
    for (int64 r = 1; r <= nmatings; ++r) {
        pedigreeline &row = s.pedi.ped(firstrow + r - 1);
        int64 candidate = parentrows(shufflematingvec(r));
        if (candidate == row.newsire) {
            randomorder(shufflematingvec2, nmatings, s.random);
            int64 place = 1;
            while (parentrows(shufflematingvec2(place)) == row.newsire) ++place;
            candidate = parentrows(shufflematingvec2(place));
        }
        (parentgenderwritten == 1 ? row.newsire : row.newdam) = candidate;
    }
}

void assignparents(state &s, int64 firstrow, int64 nmatings, const array1<int64> &matingvec,
                   int64 parentgender)
{
    assert(parentgender == 1 || parentgender == 2);
    assert(firstrow + nmatings - 1 <= s.pedi.ped.size());
    if (parentgender == 1) {
        for (int64 r = 1; r <= nmatings; ++r) s.pedi.ped(firstrow + r - 1).newsire = matingvec(r);
        return;
    }
    array1<int64> shufflematingvec(nmatings);
    randomorder(shufflematingvec, nmatings, s.random);
    for (int64 r = 1; r <= nmatings; ++r)
        s.pedi.ped(firstrow + r - 1).newdam = matingvec(shufflematingvec(r));
}
