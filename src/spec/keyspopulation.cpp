// Keys of boxes 1 to 4: pedigree and generations, animal and plant breeding, flexibility and
// merging.
#include "spec/specvalues.h"
#include "textlayout.h"
#include "words.h"

namespace
{
int64 ngenerations(const specreader &r)
{
    return r.s.pop.ngen + r.s.pop.ngensel;
}

// The arrays of the generations keep the size they were made with.
void needroom(const specreader &r, int64 ngen, int64 ngensel)
{
    if (r.b1 && ngen + ngensel > r.s.pop.nindivinthisgen.upper())
        failkey(r, 1, "more generations than earlier lines asked for: give each key once");
}

// Value g + 1 of a list of n; what is missing is told with the count.
int64 numberofgeneration(const specreader &r, int64 g, int64 n)
{
    const int64 nvalues = static_cast<int64>(r.second.size()) - 1;
    if (nvalues < g)
        failkey(r, g + 1,
                "the list needs " + numbertext(n) + " numbers, and has " + numbertext(nvalues));
    return valueinteger(r, g + 1);
}

// One number for each of n generations: `Constant` and a number, or another word and n numbers.
// note: what the list form asks for, printed with n before the numbers are read; empty for none.
void readpergeneration(specreader &r, array1<int64> &numbers, int64 n, std::string_view note,
                       bool emptyisalist = false)
{
    const std::string form = parsestringwindows(valuetext(r, 1));
    if (form.empty() && !emptyisalist) return;
    if (!hasgenerations(r)) return;
    if (form == "constant") {
        const int64 number = valueinteger(r, 2);
        warnofsurplus(r, 2, "Constant, and one number");
        for (int64 g = 1; g <= n; ++g) numbers(g) = number;
        return;
    }
    if (!note.empty()) {
        textline line = "  NOTE: ";
        puti(line, n, 6);
        printline(line + " values must be provided for " + std::string(note));
    }
    for (int64 g = 1; g <= n; ++g) numbers(g) = numberofgeneration(r, g, n);
    warnofsurplus(r, n + 1, "a word, and " + numbertext(n) + " numbers");
}

void readparentnumbers(specreader &r, array1<int64> &numbers, std::string_view note,
                       bool emptyisalist = false)
{
    readpergeneration(r, numbers, ngenerations(r) - 1, note, emptyisalist);
}

void readpedigreestatus(specreader &r)
{
    const std::string status = valuepath(r, 1);
    const bool internal = isword(status, "internal");
    r.s.pop.pedigreefrom = internal         ? pedigreesource::internal
                           : status.empty() ? pedigreesource::unset
                                            : pedigreesource::file;
    if (!internal) r.s.pop.pedigreefile = status;
}

void readmergetypes(specreader &r)
{
    runcontrol &run = r.s.run;
    run.mergetypes = valueword(r, 1);
    run.merging = isword(run.mergetypes, "none")          ? mergekind::none
                  : isword(run.mergetypes, "ids")         ? mergekind::ids
                  : isword(run.mergetypes, "directories") ? mergekind::directories
                                                          : mergekind::unknown;
}

void readnumberofindividuals(specreader &r)
{
    populationsettings &pop = r.s.pop;
    readpergeneration(r, pop.nindivinthisgen, ngenerations(r), "");
    if (!r.b1) return;
    for (int64 g = 1; g <= ngenerations(r); ++g)
        pop.cumindivnbtogen(g) = pop.cumindivnbtogen(g - 1) + pop.nindivinthisgen(g);
    pop.nindivp = pop.cumindivnbtogen(ngenerations(r));
}

void readnumberofsires(specreader &r)
{
    if (!r.s.pop.animbreedonoff) return;
    if (valuetext(r, 1).empty())
        printline("WARNING - NumberOfSiresInEachGeneration is empty");
    else
        readparentnumbers(r, r.s.pop.nsireinthisgen, "NumberOfSiresInEachGeneration");
}

void readnumberofdhgenerations(specreader &r)
{
    if (!r.s.pop.plantbreedonoff) return;
    const int64 ngendh = valueinteger(r, 1, 0, 2 * maxgenerations);
    if (ngendh == 0 || hasgenerations(r)) r.s.pop.ngendh = ngendh;
}

void readdhgenerations(specreader &r)
{
    populationsettings &pop = r.s.pop;
    if (!pop.plantbreedonoff || pop.ngendh == 0) return;
    std::vector<int64> dhinthesegen;
    for (int64 k = 1; k <= pop.ngendh; ++k) {
        int64 gen = 0;
        if (tryinteger(r, k, gen, INT64_MIN, INT64_MAX) &&
            (gen < 1 || gen > pop.createdhinthisgen.upper()))
            failkey(r, k,
                    "there is no such generation, the last is " +
                        numbertext(pop.createdhinthisgen.upper()));
        dhinthesegen.push_back(valueinteger(r, k));
    }
    warnofsurplus(r, pop.ngendh, "as many as NumberOfGenerationsIncludingDoubledHaploids");
    for (const int64 g : dhinthesegen) pop.createdhinthisgen(g) = 1;
}

void readgenerationflexibility(specreader &r)
{
    runcontrol &run = r.s.run;
    run.genflexibilityonoff = !valueis(r, "off");
    r.flexibilityread = true;
    if (run.genflexibilityonoff) return;
    run.specstartgen = 1;
    run.specendgen = ngenerations(r);
}

void readselectionflexibility(specreader &r)
{
    runcontrol &run = r.s.run;
    run.selflexibilityonoff = !valueis(r, "off");
    if (run.selflexibilityonoff) return;
    run.importstage = 2;
    run.importextpedforthisgen = 0;
}

// Any integer is read where the checks behind the last record judge the value.
int64 anyinteger(const specreader &r, int64 i)
{
    return valueinteger(r, i, INT64_MIN, INT64_MAX);
}

const speckey keys[] = {
    // Box 1
    {"pedigreestatus", 11, "Pedigreestatus not set properly in spec file", readpedigreestatus},
    {"numbergenerationsburnin", 12, "NumberGenerationsBurnIn not set properly in spec file",
     [](specreader &r) {
         int64 n = 0;
         if (!tryinteger(r, 1, n, 0, maxgenerations)) return;
         needroom(r, n, r.s.pop.ngensel);
         r.s.pop.ngen = n;
     }},
    {"numbergenerationsselection", 13, "NumberGenerationsSelection not set properly in spec file",
     [](specreader &r) {
         const int64 n = valueinteger(r, 1, 0, maxgenerations);
         needroom(r, r.s.pop.ngen, n);
         r.s.pop.ngensel = n;
     }},
    {"numberofindividualsineachgeneration", 14,
     "NumberOfIndividualsInEachGeneration not set properly", readnumberofindividuals},
    // Box 2
    {"animalbreedingonoff", 21, "AnimalBreedingOnOff not set properly",
     [](specreader &r) {
         r.s.pop.animbreedonoff = valueis(r, "on");
         r.animalbreeding = valuetext(r, 1);
     }},
    {"numberofsiresineachgeneration", 22, "NumberOfSiresInEachGeneration not set properly",
     readnumberofsires},
    {"numberofdamsineachgeneration", 23, "NumberOfDamsInEachGeneration not set properly",
     [](specreader &r) {
         if (r.s.pop.animbreedonoff)
             readparentnumbers(r, r.s.pop.ndaminthisgen, "NumberOfDamsInEachGeneration");
     }},
    // Box 3
    {"plantbreedingonoff", 31, "PlantBreedingOnOff not set properly",
     [](specreader &r) {
         r.s.pop.plantbreedonoff = valueis(r, "on");
         r.plantbreeding = valuetext(r, 1);
     }},
    {"performmatingsconsideringthegenderyesno", 32,
     "performmatingsconsideringthegenderyesno not set properly",
     [](specreader &r) {
         if (r.s.pop.animbreedonoff) return;
         r.s.pop.gendermatters = valuetext(r, 1);
         r.s.pop.plantsbygender = isword(r.s.pop.gendermatters, "yes");
     }},
    {"numberofmaleparentsineachgeneration", 33,
     "NumberOfMaleParentsInEachGeneration not set properly",
     [](specreader &r) {
         if (r.s.pop.plantbreedonoff)
             readparentnumbers(r, r.s.pop.nsireinthisgen, "NumberOfMaleParentsInEachGeneration");
     }},
    {"numberoffemaleparentsineachgeneration", 34,
     "NumberOfFemaleParentsInEachGeneration not set properly",
     [](specreader &r) {
         if (r.s.pop.plantbreedonoff)
             readparentnumbers(r, r.s.pop.ndaminthisgen, "NumberOfFemaleParentsInEachGeneration");
     }},
    {"numberofparentsregardlessthegenderineachgen", 35,
     "NumberOfParentsRegardlessTheGenderInEachGen not set properly",
     [](specreader &r) {
         if (r.s.pop.plantbreedonoff)
             readparentnumbers(r, r.s.pop.nrandparinthisgen,
                               "NumberOfParentsRegardlessTheGenderInEachGen");
     }},
    {"performselfinginatleastonegenerationyesno", 36,
     "PerformSelfingInAtLeastOneGenerationYesNo not set properly",
     [](specreader &r) {
         if (r.s.pop.plantbreedonoff) valueword(r, 1);
     }},
    {"numberofselfedparentsineachgeneration", 37,
     "NumberOfSelfedParentsInEachGeneration not set properly",
     [](specreader &r) {
         if (r.s.pop.plantbreedonoff)
             readparentnumbers(r, r.s.pop.nselfedparinthisgen,
                               "NumberOfSelfedParentsInEachGeneration", true);
     }},
    {"numberofgenerationsincludingdoubledhaploids", 38,
     "NumberOfGenerationsIncludingDoubledHaploids not set properly", readnumberofdhgenerations},
    {"createdoubledhaploidsinthesegenerations", 39,
     "error, CreateDoubledHaploidsInTheseGenerations has to be set before this", readdhgenerations},
    // Box 4
    {"generationflexibilityonoff", 41, "GenerationFlexibilityOnOff not set properly",
     readgenerationflexibility},
    {"startstopgeneration", 42, "StartStopGeneration not set properly",
     [](specreader &r) {
         if (!r.s.run.genflexibilityonoff) return;
         needcount(r, 2);
         r.s.run.specstartgen = anyinteger(r, 1);
         r.s.run.specendgen = anyinteger(r, 2);
     }},
    {"selectionflexibilityonoff", 43, "SelectionFlexibilityOnOff not set properly",
     readselectionflexibility},
    {"importanexternalpedigreeforthisgeneration", 44,
     "ImportAnExternalPedigreeForThisGeneration not set properly",
     [](specreader &r) {
         r.s.run.importextpedforthisgen = r.s.run.selflexibilityonoff ? valueinteger(r, 1) : 0;
     }},
    {"importstageput1tocomputebv2tocontinue", 45,
     "ImportStagePut1ToComputeBV2ToContinue not set properly",
     [](specreader &r) {
         r.s.run.importstage = r.s.run.selflexibilityonoff ? anyinteger(r, 1) : 2;
     }},
    {"mergetypes", 46, "MergeTypes not set properly", readmergetypes},
    {"numberofmergeruns", 47, "NumberOfMergeRuns not set properly",
     [](specreader &r) { r.s.run.numberofmergeruns = valueinteger(r, 1); }},
    {"mergefiles", 48, "MergeFiles not set properly",
     [](specreader &r) {
         if (r.s.run.numberofmergeruns > 0) r.s.run.mergefiles = valuepath(r, 1);
     }},
};
} // namespace

std::span<const speckey> keyspopulation()
{
    return keys;
}
