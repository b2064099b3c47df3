#include "pedigree/randomparents.h"

#include "pedigree/matings.h"
#include "pedigree/parentnumbers.h"

#include <algorithm>

bool genderisignored(const state &s, int64 currentgen)
{
    return s.pop.plantbreedonoff && (s.pop.nrandparinthisgen(currentgen - 1) > 0 ||
                                     s.pop.nselfedparinthisgen(currentgen - 1) > 0);
}

namespace
{
// npargender distinct rows of the generation before, in the order in which they were drawn.
array1<int64> drawparents(state &s, int64 parentgender, int64 currentgen, int64 npargender)
{
    const int64 nindiv = s.pop.nindivinthisgen(currentgen - 1);
    const int64 indivpos = currentgen > 2 ? s.pop.cumindivnbtogen(currentgen - 2) : 0;
    const bool anygender = genderisignored(s, currentgen);
    array1<int64> eligible(nindiv), selectedindividuals(nindiv);
    int64 navailable = 0;
    for (int64 i = 1; i <= nindiv; ++i) {
        eligible(i) = anygender || s.pedi.globalgender(indivpos + i) == parentgender;
        navailable += eligible(i);
    }
    stopiftoofewparents(s, parentgender, currentgen, npargender, navailable);
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
    const int64 nmatings = s.pop.nindivinthisgen(currentgen);
    const int64 firstrow = firstindivofgen(s, currentgen);
    array1<int64> matingvec(nmatings);
    buildmatingvec(parents, npargender, nmatings, matingvec);
    assignparents(s, firstrow, nmatings, matingvec, parentgender);
    if (s.pop.nrandparinthisgen(currentgen - 1) > 0)
        randommating(s, firstrow, nmatings, matingvec, 2);
}

// ------------------------------------------------------- the burn-in

namespace
{
void setdamtosire(state &s, int64 gen)
{
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i)
        s.pedi.ped(i).newdam = s.pedi.ped(i).newsire;
}

void drawplantparents(state &s, int64 gen)
{
    const int64 parentgen = gen - 1;
    if (s.pop.nselfedparinthisgen(parentgen) > 0) {
        selectnextparentsrandom(s, 1, gen, s.pop.nselfedparinthisgen(parentgen));
        setdamtosire(s, gen);
    } else if (s.pop.nrandparinthisgen(parentgen) > 0) {
        selectnextparentsrandom(s, 1, gen, s.pop.nrandparinthisgen(parentgen));
    } else {
        selectnextparentsrandom(s, 1, gen, s.pop.nsireinthisgen(parentgen));
        if (s.pop.ngendh == 0)
            selectnextparentsrandom(s, 2, gen, s.pop.ndaminthisgen(parentgen));
        else if (s.pop.createdhinthisgen(gen) == 1)
            setdamtosire(s, gen); // doubled haploids come from one parent
    }
}
} // namespace

void drawparentsofburnin(state &s)
{
    const int64 firstgen = std::max<int64>(2, s.run.specstartgen);
    const int64 lastgen = std::min(s.run.specendgen, s.pop.ngen);
    for (int64 j = firstgen; j <= lastgen; ++j) {
        if (s.pop.plantbreedonoff) {
            drawplantparents(s, j);
        } else {
            selectnextparentsrandom(s, 1, j, s.pop.nsireinthisgen(j - 1));
            selectnextparentsrandom(s, 2, j, s.pop.ndaminthisgen(j - 1));
        }
    }
}
