#include "selection/optimalcontributions.h"

#include "evaluation/relationshipruns.h"
#include "evaluation/trainingdata.h"
#include "stops.h"
#include "textlayout.h"

#include <cmath>

void selectbyoptimcontrib(state &s, int64 selectioncycle, int64 currentgen)
{
    printline(" Selection based on optimal contributions");
    if (s.selection.selontbvyes1no0 == 1)
        writetestingqtngenotypes(s, selectioncycle, currentgen - 1, s.cycle.starttestindiv);
    writebrenvaskspec(s, selectioncycle, relationshipbase::present, "");
    runbrenvask(s, selectioncycle);
    writecorvalindspec(s, selectioncycle, currentgen);
    runcorvalind(s, selectioncycle);
    checkdeltafoptimcontrib(s, selectioncycle);
    printline(" Brenvask and Corvalind finished");
    selectnextparentsoptimcontrib(s, selectioncycle, currentgen);
}

void checkdeltafoptimcontrib(const state &s, int64 selectioncycle)
{
    const frontierends ends = readfrontier(selectioncycle);
    const double diff1 = std::abs(ends.finalxax - ends.globalminxax);
    const double diff2 = std::abs(diff1 - s.selection.percentdeltaf);
    if (diff2 < static_cast<double>(0.0001f)) return;
    printline(" ERROR: The specified PercentageDifferenceInbreeding");
    printline(" has not been reached");
    stopwithcode(110001);
}

void selectnextparentsoptimcontrib(state &s, int64 selectioncycle, int64 currentgen)
{
    const int64 beforetest = s.cycle.endtestindiv - s.cycle.ntestindiv;
    int64 row = s.cycle.endtestindiv;
    for (const mating &pair :
         readmatinglist(s, selectioncycle, s.pedi.nindivinthisgen(currentgen))) {
        ++row;
        s.pedi.ped(row).newsire = beforetest + pair.male;
        s.pedi.ped(row).newdam = beforetest + pair.female;
    }
}
