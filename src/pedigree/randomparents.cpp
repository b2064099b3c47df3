#include "pedigree/randomparents.h"

#include "pedigree/breedingplan.h"
#include "pedigree/matings.h"
#include "pedigree/parentnumbers.h"

#include <algorithm>

namespace
{
// npargender distinct rows of the generation before, in the order in which they were drawn.
array1<int64> drawparents(state &s, int64 parentgender, int64 currentgen, int64 npargender)
{
    const int64 nindiv = s.pedi.nindivinthisgen(currentgen - 1);
    const int64 indivpos = currentgen > 2 ? s.pedi.cumindivnbtogen(currentgen - 2) : 0;
    const bool anygender = genderisignored(s, currentgen);
    array1<int64> eligible(nindiv), selectedindividuals(nindiv);
    int64 navailable = 0;
    for (int64 i = 1; i <= nindiv; ++i) {
        eligible(i) = anygender || s.pedi.globalgender(indivpos + i) == parentgender;
        navailable += eligible(i);
    }
    checkparentsavailable(s, parentgender, currentgen, npargender, navailable);
    for (int64 k = 1; k <= npargender; ++k) {
        int64 drawn;
        do drawn = static_cast<int64>(ran1(s.random) * static_cast<double>(nindiv)) + 1;
        while (!eligible(drawn));
        eligible(drawn) = 0; // chosen once at most
        selectedindividuals(k) = drawn + indivpos;
    }
    return selectedindividuals;
}
} // namespace

void selectnextparentsrandom(state &s, int64 parentgender, int64 currentgen, int64 npargender)
{
    const array1<int64> parents = drawparents(s, parentgender, currentgen, npargender);
    const int64 nmatings = s.pedi.nindivinthisgen(currentgen);
    const int64 firstrow = firstindivofgen(s, currentgen);
    array1<int64> matingvec(nmatings);
    buildmatingvec(parents, npargender, nmatings, matingvec);
    assignparents(s, firstrow, nmatings, matingvec, parentgender);
    if (israndommated(s, currentgen)) randommating(s, firstrow, nmatings, matingvec, 2);
}

void drawburninparents(state &s)
{
    const int64 firstgen = std::max<int64>(2, s.run.specstartgen);
    const int64 lastgen = std::min(s.run.specendgen, s.pop.ngen);
    for (int64 j = firstgen; j <= lastgen; ++j)
        chooseparentsof(s, j, [](state &st, int64 gen, int64 parentgender, int64 npargender) {
            selectnextparentsrandom(st, parentgender, gen, npargender);
        });
}
