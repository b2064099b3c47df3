#include "spec/readinparameters.h"

#include "spec/consistencychecks.h"
#include "spec/speciestable.h"
#include "spec/speclines.h"
#include "spec/specvalues.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <algorithm>

namespace
{
void makegenerationarrays(specreader &r)
{
    populationsettings &pop = r.s.pop;
    const int64 n = pop.ngensel + pop.ngen;
    if (pop.ngen == 0 || pop.ngensel == -1) return;
    pop.cumindivnbtogen.allocate({0, n});
    pop.nindivinthisgen.allocate({0, n});
    for (array1<int64> *parents : {&pop.nsireinthisgen, &pop.ndaminthisgen, &pop.nrandparinthisgen,
                                   &pop.nselfedparinthisgen})
        parents->allocate(std::max<int64>(n - 1, 1));
    r.b1 = true;
}

void makedoubledhaploidarray(specreader &r)
{
    populationsettings &pop = r.s.pop;
    if (pop.ngendh <= 0) return;
    pop.createdhinthisgen.allocate(pop.nindivinthisgen.upper());
    r.b2 = true;
}

void makechiparray(specreader &r)
{
    if (r.s.chips.nchip <= 0) return;
    r.s.chips.nsnpperchipperchrom.allocate(r.s.chips.nchip);
    r.b3 = true;
}

void makeeditarrays(specreader &r)
{
    editingsettings &e = r.s.editing;
    if (e.nindedited <= 0 || e.ngeneditsperind <= 0) return;
    constexpr int64 mostedits = 100000000; // three tables of 8 bytes each
    if (e.nindedited > mostedits / e.ngeneditsperind)
        failkey(r, "numberofgeneeditsperindividual",
                "the edits would take more memory than any machine has");
    r.maxedited = e.nindedited;
    r.maxedits = e.ngeneditsperind;
    r.b4 = true;
}

void makegenedrivearray(specreader &r)
{
    if (!r.s.editing.genedriveonoff || !r.b1) return;
    const int64 nindiv = r.s.pop.cumindivnbtogen(r.s.pop.ngensel + r.s.pop.ngen);
    const int64 nsites = r.s.founders.nchrom * r.s.qtn.nqtnperchrom;
    constexpr int64 maxbytes = int64{1} << 40;
    if (nsites > 0 && nindiv > maxbytes / 2 / nsites)
        failkey(r, "genedriveonoff", "the drives would take more memory than any machine has");
    r.driveindiv = nindiv;
    r.driveqtn = nsites;
    r.gdchecker = true;
}

void maketraitarrays(specreader &r)
{
    traitsettings &traits = r.s.traits;
    const int64 n = traits.ntraits;
    if (n <= 0) return;
    for (array1<double> *list : {&traits.indexwt, &traits.herit, &traits.varaspec})
        list->allocate(n);
    for (array2<double> *matrix : {&traits.coraspec, &traits.core}) matrix->allocate(n, n);
    r.b5 = true;
}

// Each set-up runs once, at the first record at which its condition holds.
void runsetups(specreader &r)
{
    if (!r.b1) makegenerationarrays(r);
    if (!r.b2) makedoubledhaploidarray(r);
    if (!r.b3) makechiparray(r);
    if (!r.b4) makeeditarrays(r);
    if (!r.gdchecker) makegenedrivearray(r);
    if (!r.b5) maketraitarrays(r);
}

// Counts a box line; a number that differs from the count is reported, and the reading goes on.
void handlebox(specreader &r)
{
    const std::string expected = numbertext(++r.box);
    std::string got = r.first.substr(3, r.box <= 9 ? 1 : 2);
    got.resize(r.box <= 9 ? 1 : 2, ' ');
    if (trimright(got) != expected)
        printline("ERROR - Order of boxes is wrong! Expecting box: " + expected +
                  " and got box: " + got);
}

bool rowwanted(const specreader &r, int64 row)
{
    return row >= 1 && row <= r.s.traits.ntraits;
}

// The lower triangle of row r; the upper triangle mirrors it.
void handlerow(const specreader &r, const std::vector<std::string> &records, std::size_t &at,
               array2<double> &matrix, int64 &row, std::string_view key)
{
    std::vector<double> values;
    if (!readrow(records, at, row, values))
        failkey(r, key,
                "row " + numbertext(row) + " of the matrix, from line " + numbertext(r.line) +
                    " on, holds something else than " + numbertext(row) + " numbers");
    if (values.back() != 1)
        warnhere(r, properkey(key) + ": entry " + numbertext(row) + " of its diagonal is " +
                        realdigits(values.back()) + ", correlations want 1");
    for (int64 j = 1; j <= row; ++j)
        matrix(row, j) = matrix(j, row) = values[static_cast<std::size_t>(j - 1)];
    ++row;
}

void handlerecord(specreader &r, const std::vector<std::string> &records, std::size_t &at)
{
    if (r.first.starts_with('#')) return;
    const std::string name = tlc(r.first);
    if (name.starts_with("box")) return handlebox(r);
    r.key = findkey(name);
    if (r.key) {
        r.places[r.key] = {r.line, std::string(r.record)};
        r.key->handle(r);
        warnofwords(r);
    } else if (rowwanted(r, r.incora))
        handlerow(r, records, at, r.s.traits.coraspec, r.incora, "geneticcorrelationmatrix");
    else if (rowwanted(r, r.incore))
        handlerow(r, records, at, r.s.traits.core, r.incore, "residualcorrelationmatrix");
    else {
        explainunexpected(r);
        printline("Line was unexpected: " + r.first);
        stopwithcode(100000);
    }
}

// The population history may stand behind the length that it decides. A run that goes on makes no
// founders: it keeps what was known at the key.
void settlemorgans(runsettings &s)
{
    foundersettings &f = s.founders;
    if (s.run.specstartgen != 1 || !f.internalmorganssolvanto) return;
    if (const speciesrow *species = findspecies(f.pophistorymacs))
        f.morgans = static_cast<double>(species->morgans);
}

// A run that goes on keeps the length of 0 that a key above the population history has left.
void warnofmorgans(const specreader &r)
{
    if (r.morgansatfault > 0 && r.s.founders.morgans == 0)
        warn(r.s.options, specfile, r.morgansatfault,
             "the chromosomes have a length of 0 Morgans in this run: PopulationHistoryMaCS must "
             "stand above ChromosomeLengthMorgansSolvanto,Internal and name a preset");
}
} // namespace

runsettings readinparameters(const runoptions &options)
{
    runsettings settings;
    settings.options = options;
    specreader r(settings);
    printline("");
    const std::vector<std::string> records = readspeclines(specfile);
    for (std::size_t at = 0; at < records.size(); ++at) {
        parseline(records[at], r.first, r.second);
        r.record = records[at];
        r.line = static_cast<int64>(at) + 1;
        runsetups(r);
        if (!isemptyrecord(records[at])) handlerecord(r, records, at);
    }
    checkconsistency(r);
    warnofidle(r);
    settlemorgans(settings);
    warnofmorgans(r);
    return settings;
}
