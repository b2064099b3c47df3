#include "selection/coancestryreport.h"

#include "cyclefolder.h"
#include "evaluation/relationshipruns.h"
#include "evaluation/selectionchip.h"
#include "evaluation/trainingdata.h"
#include "values/coancestry.h"

#include <string>

namespace
{
array1<double> equalshares(int64 n)
{
    return array1<double>(n, 1.0 / static_cast<double>(n));
}

// Genotypes of the generation just made, for its own relationships. Gives the name of the file.
std::string writelastgenotypes(state &s, int64 selectioncycle, int64 currentgen, int64 firstindiv,
                               int64 lastindiv)
{
    if (s.selection.selontbvyes1no0 != 0) {
        writetestingqtngenotypes(s, selectioncycle, currentgen, firstindiv);
        return lastqtngenotypes;
    }
    const std::string name = lastgenotypes(s);
    selectionchipfiles files;
    files.genotypetest.open(cyclefolder(selectioncycle) + name);
    generationphases phases = openphases(s, currentgen);
    writetestchip(s, files, phases, firstindiv, lastindiv);
    files.genotypetest.close();
    return name;
}
} // namespace

void computecoancestry(state &s, int64 selectioncycle, int64 currentgen, int64 &firstindiv,
                       int64 &lastindiv)
{
    const selectionsettings &sel = s.selection;
    if (sel.selontbvyes1no0 == 1 && !sel.optcontribselonoff)
        writetestingqtngenotypes(s, selectioncycle, currentgen - 1, firstindiv);
    writebrenvaskspec(s, selectioncycle, relationshipbase::first, "");
    runbrenvask(s, selectioncycle);
    const std::vector<double> xax =
        averagerelationships(selectioncycle, {equalshares(lastindiv - firstindiv + 1),
                                              parentshares(s, currentgen, firstindiv, lastindiv)});
    writecoancestry(s, selectioncycle, {xax[0], xax[1]});
    if (currentgen != s.pop.ngen + s.pop.ngensel) return;

    firstindiv += s.pedi.nindivinthisgen(currentgen - 1);
    lastindiv += s.pedi.nindivinthisgen(currentgen);
    const std::string genotypes =
        writelastgenotypes(s, selectioncycle, currentgen, firstindiv, lastindiv);
    writebrenvaskspec(s, selectioncycle, relationshipbase::first, genotypes);
    runbrenvask(s, selectioncycle);
    const std::vector<double> last =
        averagerelationships(selectioncycle, {equalshares(lastindiv - firstindiv + 1)});
    writelastcoancestry(s, selectioncycle, last.front());
}
