// Sizes, descent and genders, and the settings that later parts need.
#include "checkrun/checkrun.h"
#include "checkrun/runfolder.h"

#include <algorithm>
#include <cmath>

namespace checkrun
{
namespace
{
constexpr const char *sizefile = "SimulatedData/NbOfIndivInEachGen.txt",
                     *pedigreefile = "SimulatedData/Pedigree.txt";

std::string trimmed(std::string_view text)
{
    const std::size_t from = text.find_first_not_of(' '), to = text.find_last_not_of(' ');
    return from == text.npos ? "" : std::string(text.substr(from, to - from + 1));
}

// Generations but for one that waits for parents from outside, of which there is only the pedigree.
void readsizes(run &r, int64 nrows)
{
    const textfile file = r.files.read(sizefile);
    int64 n = file.size() - 1;
    if (r.spec.word("SelectionFlexibilityOnOff") == "on" &&
        r.spec.number("ImportStagePut1ToComputeBV2ToContinue") == 1 &&
        r.spec.number("ImportAnExternalPedigreeForThisGeneration") == double(n)) {
        r.told().skip("generation " + std::to_string(n--), "it waits for its parents");
        nrows -= file.numbers(n + 2).whole(2);
    }
    r.last.assign(1, 0);
    for (int64 g = 1; g <= n; ++g) {
        const numberline line = file.numbers(g + 1);
        r.told().equal({sizefile, g + 1}, "generation", g, line.whole(1));
        r.told().equal({sizefile, g + 1}, "males and females together", line.whole(2),
                       line.whole(3) + line.whole(4));
        r.last.push_back(r.last.back() + std::max<int64>(line.whole(2), 0));
    }
    r.ngenerations = static_cast<int64>(r.last.size()) - 1;
    r.nindiv = r.last.back();
    r.told().equal({sizefile}, "individuals of all generations, rows of the pedigree", nrows,
                   r.nindiv);
}

// Rows are Generation, OldGlobalID, NewId, NewSire, NewDam, Path; of individuals that a merge took
// four columns, generation, number, 0, 0.
void readrows(run &r, const textfile &file)
{
    statements &told = r.told();
    r.individuals.resize(static_cast<std::size_t>(r.nindiv) + 1);
    for (int64 g = 1, i = 1; i <= std::min(r.nindiv, file.size() - 1); ++i) {
        while (i > r.end(g)) ++g;
        const place where{pedigreefile, i + 1};
        const std::string_view line = file.line(i + 1);
        const numberline row = numbersof(line.substr(0, 100));
        individual &one = r.individuals[static_cast<std::size_t>(i)];
        const bool whole = row.size() == 5;
        told.holds(whole || row.size() == 4, where, "five columns, or four of a merge");
        one.generation = g;
        told.equal(where, "generation, by the sizes", g, row.whole(1));
        told.equal(where, "number", i, row.whole(whole ? 3 : 2));
        for (const int64 side : {1, 2}) {
            const int64 parent = row.whole(2 + side + whole);
            const bool ok = told.holds(parent >= 0 && parent < i, where, "parents on earlier rows");
            one.parent[side] = ok ? parent : 0;
        }
        if (whole && line.size() > 100) one.path = trimmed(line.substr(100));
        if (one.path.empty()) r.merged = true;
    }
}

void checkgenders(run &r)
{
    const textfile file = r.files.read("SimulatedData/Gender.txt"), sizes = r.files.read(sizefile);
    r.told().holds(file.size() > r.nindiv, {file.path}, "a gender for each individual");
    std::vector<int64> males(r.last.size(), 0);
    for (int64 i = 1; i <= std::min(r.nindiv, file.size() - 1); ++i) {
        const numberline line = file.numbers(i + 1);
        const int64 gender = line.whole(3);
        r.told().equal({file.path, i + 1}, "generation", r.of(i).generation, line.whole(1));
        r.told().equal({file.path, i + 1}, "individual", i, line.whole(2));
        r.told().holds(gender == 1 || gender == 2, {file.path, i + 1}, "gender 1 or 2");
        r.individuals[static_cast<std::size_t>(i)].gender = gender;
        males[static_cast<std::size_t>(r.of(i).generation)] += gender == 1;
    }
    for (int64 g = 1; g <= r.ngenerations; ++g)
        r.told().equal({sizefile, g + 1}, "males, by their genders",
                       males[static_cast<std::size_t>(g)], sizes.numbers(g + 1).whole(3));
}

void readswitches(run &r)
{
    const settings &spec = r.spec;
    r.nburnin = static_cast<int64>(spec.number("NumberGenerationsBurnIn"));
    if (spec.word("GenerationFlexibilityOnOff") == "on")
        r.firstgeneration = static_cast<int64>(spec.number("StartStopGeneration"));
    const bool restricted =
        spec.word("SelectionBasedOnRestrictedOrUnrestrictedQtn") == "restricted";
    r.selectedset = restricted ? "RestrictedQtn" : "UnrestrictedQtn";
    r.selectedmodel =
        1 + restricted + 2 * (spec.word("DistributionOfQtnOfSelectionTraits") == "gamma");
    r.dominance = r.files.there("SimulatedData/UnrestrictedQtnDominEffects.txt");
    while (
        r.files.there("SimulatedData/Chip" + std::to_string(r.nchips + 1) + "SnpInformation.txt"))
        ++r.nchips;
    if (spec.word("PlantBreedingOnOff") == "on")
        for (std::size_t k = 0; k < spec.number("NumberOfGenerationsIncludingDoubledHaploids"); ++k)
            r.doubledhaploids.insert(
                static_cast<int64>(spec.number("CreateDoubledHaploidsInTheseGenerations", k)));
    // Behind a merge the first columns are wider.
    const textfile information = r.files.read("SimulatedData/UnrestrictedQtnInformation.txt");
    if (information.size() > 1 && information.line(2).size() > 130) r.merged = true;
}
} // namespace

bool run::ownvalues(int64 g) const
{
    if (!merged) return true;
    for (int64 i = first(g); i <= end(g); ++i)
        if (of(i).path.empty() || of(i).path != of(nindiv).path) return false;
    return spec.word("MergeTypes") == "none";
}

std::vector<genomesite> run::sitesof(const std::string &set) const
{
    std::vector<genomesite> sites;
    for (int64 h = 1; h <= nchrom; ++h) {
        const chromosome &on = chromosomes[static_cast<std::size_t>(h)];
        const auto found = on.sets.find(set);
        if (found == on.sets.end()) continue;
        for (const int64 site : found->second) sites.push_back({&on, h, site});
    }
    return sites;
}

double mean(const std::vector<double> &x)
{
    double sum = 0;
    for (const double value : x) sum += value;
    return sum / static_cast<double>(x.size());
}

double covariance(const std::vector<double> &x, const std::vector<double> &y)
{
    const double mx = mean(x), my = mean(y);
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i) sum += (x[i] - mx) * (y[i] - my);
    return sum / static_cast<double>(x.size() - 1);
}

void checkpedigree(run &r)
{
    r.spec = readsettings(r.files);
    const textfile pedigree = r.files.read(pedigreefile);
    readsizes(r, pedigree.size() - 1);
    readrows(r, pedigree);
    checkgenders(r);
    readswitches(r);
}
} // namespace checkrun

checkrun::statements checkrunfolder(const std::string &folder)
{
    checkrun::statements told;
    checkrun::run r(told, folder);
    checkpedigree(r);
    if (r.nindiv == 0) {
        told.skip("everything else", "there are no individuals");
        return told;
    }
    checkgenomes(r);
    checkvalues(r);
    checkcycles(r);
    return told;
}
