#include "selection/trainingrange.h"

#include "spec/inputfiles.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <algorithm>
#include <vector>

namespace
{
void setrange(state &s, int64 firstgen, int64 lastgen)
{
    cycledata &cycle = s.cycle;
    cycle.firsttmptraingen = firstgen;
    cycle.lasttmptraingen = lastgen;
    const int64 ngenerations = s.pop.ngen + s.pop.ngensel;
    cycle.starttrainindiv =
        s.pedi.cumindivnbtogen(std::clamp<int64>(firstgen - 1, 0, ngenerations)) + 1;
    cycle.endtrainindiv = s.pedi.cumindivnbtogen(std::clamp<int64>(lastgen, 0, ngenerations));
}

int64 malesinrange(const state &s)
{
    int64 nmales = 0;
    for (int64 j = 1; j <= s.cycle.lasttmptraingen; ++j) nmales += s.pedi.nmalinthisgen(j);
    return nmales;
}

void checklasttraining(const state &s, int64 lastallowed, int64 code)
{
    if (s.selection.lasttraingenrp <= lastallowed) return;
    textline line;
    puta(line, " ERROR: The last training generation must be prior or equal to ", 63);
    puti(line, lastallowed, 4);
    printline(line);
    printline("Check parameter FirstAndLastTrainingGenForRandPhenotypingStrat");
    stopwithcode(code);
}

void setrandomrange(state &s, int64 currentgen)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    setrange(s, sel.firsttraingenrp, sel.lasttraingenrp);
    cycle.ntrainindivmax = std::max<int64>(cycle.endtrainindiv - cycle.starttrainindiv + 1, 0);
    cycle.trainindicator.allocate(cycle.ntrainindivmax);
    cycle.ntrainindiv = sel.ntrainindiv;
    if (cycle.ntrainindiv > cycle.ntrainindivmax) {
        printline("ERROR: There is not enough individuals in the pedigree to constitute the "
                  "training dataset");
        stopwithcode(110004);
    }
    if (sel.recombselonoff) checklasttraining(s, currentgen - 2, 110005);
    checklasttraining(s, currentgen - 1, 110006);
}

// Rows in TrainIndiv.txt up to the first record that begins with no integer. A 0 is passed over.
std::vector<int64> readtrainindiv(const state &s)
{
    std::vector<int64> rows;
    infile in(trainindivfile);
    while (in.nextrecord()) {
        const std::string_view record = in.line();
        const std::size_t first = record.find_first_not_of(" \t,");
        if (first == std::string_view::npos) continue;
        const std::size_t end = record.find_first_of(" \t,", first);
        int64 row = 0;
        if (!readinteger(record.substr(first, end - first), row)) break;
        if (row == 0) continue;
        if (row < 0 || row > s.pop.nindivp)
            in.complain("a training individual must be a row of the pedigree, 1 to " +
                        numbertext(s.pop.nindivp));
        rows.push_back(row);
    }
    if (rows.empty()) {
        printline("ERROR: " + std::string(trainindivfile) +
                  " was either empty or ill-formated and nothing could be read.");
        plainstop();
    }
    return rows;
}

// The generations that hold the first and the last of the specified rows. The search begins at
// generation 2 and leaves the range as wide as the run where it finds nothing.
void setspecifiedrange(state &s)
{
    cycledata &cycle = s.cycle;
    const std::vector<int64> rows = readtrainindiv(s);
    cycle.trainindiv.allocate(static_cast<int64>(rows.size()));
    std::copy(rows.begin(), rows.end(), cycle.trainindiv.begin());
    const auto [lowest, highest] = std::minmax_element(rows.begin(), rows.end());
    const auto isin = [&](int64 row, int64 gen) {
        return row >= firstindivofgen(s, gen) && row <= lastindivofgen(s, gen);
    };
    const int64 ngenerations = s.pop.ngen + s.pop.ngensel;
    int64 firstgen = 1, lastgen = ngenerations;
    for (int64 i = 2; i <= ngenerations; ++i) {
        if (isin(*lowest, i)) firstgen = i;
        if (isin(*highest, i)) {
            lastgen = i;
            break;
        }
    }
    setrange(s, firstgen, lastgen);
    cycle.ntrainindiv = cycle.endtrainindiv - cycle.starttrainindiv + 1;
}

void settrainingrange(state &s, int64 currentgen)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    switch (sel.selphenstrat) {
    case 1:
        setrange(s, 1, currentgen - 1);
        cycle.ntrainindiv = cycle.endtrainindiv;
        break;
    case 2:
        setrange(s, 1, currentgen - 2);
        cycle.ntrainindiv = cycle.endtrainindiv;
        break;
    case 3:
        setrange(s, currentgen - 2, currentgen - 2);
        cycle.ntrainindiv = s.pedi.nindivinthisgen(currentgen - 2);
        break;
    case 4:
        setrange(s, 1, sel.recombselonoff ? currentgen - 2 : currentgen - 1);
        cycle.ntrainindiv = malesinrange(s);
        break;
    case 5:
        setrandomrange(s, currentgen);
        break;
    case 6:
        setspecifiedrange(s);
        break;
    default:
        setrange(s, 0, 0);
        cycle.ntrainindiv = sel.ntrainindiv;
        break; // no training data of this run's own
    }
}

void settestset(state &s, int64 currentgen)
{
    cycledata &cycle = s.cycle;
    cycle.starttestindiv = firstindivofgen(s, currentgen - 1);
    cycle.endtestindiv = lastindivofgen(s, currentgen - 1);
    cycle.ntestindiv = s.pedi.nindivinthisgen(currentgen - 1);
    cycle.gender.allocate(cycle.ntestindiv);
    for (int64 i = 1; i <= cycle.ntestindiv; ++i)
        cycle.gender(i) = s.pedi.globalgender(cycle.starttestindiv + i - 1);
}
} // namespace

void setcyclesets(state &s, int64 currentgen)
{
    settrainingrange(s, currentgen);
    settestset(s, currentgen);
}

void computedescriptvariablesforselection(state &s, int64 selectioncycle, int64 currentgen)
{
    textline line;
    puta(line, "  Generation", 12);
    puti(line, currentgen - 1, 4);
    puta(line, " / Selection cycle", 18);
    puti(line, selectioncycle, 4);
    printline(line);

    setcyclesets(s, currentgen);
    if (s.editing.geneditonoff) {
        s.edits.idofgenomeeditinds.fill(0);
        s.edits.genomeeditqtnpos.fill(0);
        s.edits.genomeeditqtnchrom.fill(0);
    }
}
