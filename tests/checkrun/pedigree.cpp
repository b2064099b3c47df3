// Sizes, descent and genders, and the settings that later parts need.
#include "checkrun/checkrun.h"
#include "checkrun/runfolder.h"

namespace checkrun
{
namespace
{
constexpr const char *sizefile = "SimulatedData/NbOfIndivInEachGen.txt";

// Generations but for one that waits for parents from outside: there is only the pedigree of it.
void readsizes(run &r, int64 nrows)
{
    const textfile file = r.files.read(sizefile);
    int64 n = file.n() - 1;
    if (r.spec.word("SelectionFlexibilityOnOff") == "on" &&
        r.spec.number("ImportStagePut1ToComputeBV2ToContinue") == 1 &&
        r.spec.number("ImportAnExternalPedigreeForThisGeneration") == double(n)) {
        nrows -= file(n + 1).whole(2);
        r.told.leaveout(numbered("generation ", n--, ""), "it waits for its parents");
    }
    for (r.ngenerations = 1; r.ngenerations <= n; ++r.ngenerations) {
        const numberline line = file(r.ngenerations + 1);
        r.told.is({sizefile, r.ngenerations + 1}, "generation", double(r.ngenerations), line(1));
        r.nindiv += std::max<int64>(line.whole(2), 0);
        r.last.push_back(r.nindiv);
    }
    --r.ngenerations;
    r.told.is({sizefile}, "individuals, by the pedigree", double(nrows), double(r.nindiv));
}

// Rows are generation, number in an external pedigree, number, sire, dam, path; of individuals that
// a merge took four columns: generation, number, 0, 0.
void readindividuals(run &r, const textfile &pedigree, const textfile &genders)
{
    for (int64 g = 1, i = 1; i <= r.nindiv; ++i) {
        while (i > r.last(g)) ++g;
        const std::string_view line = i < pedigree.n() ? pedigree.lines(i + 1) : "";
        const place where{pedigree.path, i + 1}, gender{genders.path, i + 1};
        const numberline row = numbersof(line.substr(0, 100));
        const int64 skipped = row.n() == 5;
        individual one{g, {}, genders(i + 1).whole(3), ""};
        r.told.is(where, "generation", double(g), row(1));
        r.told.is(where, "number", double(i), row(2 + skipped));
        for (const int64 side : {1, 2}) {
            const int64 parent = row.whole(2 + side + skipped);
            if (r.told.holds(parent >= 0 && parent < i, where, "parents stand on earlier rows"))
                one.parent[side] = parent;
        }
        if (line.size() > 101) one.path = line.substr(101, line.find(' ', 101) - 101);
        r.merged = r.merged || one.path.empty();
        r.told.is(gender, "generation", double(g), genders(i + 1)(1));
        r.told.is(gender, "individual", double(i), genders(i + 1)(2));
        r.told.holds(one.gender == 1 || one.gender == 2, gender, "gender 1 or 2");
        r.individuals.push_back(one);
    }
    const textfile sizes = r.files.read(sizefile);
    for (int64 g = 1; g <= r.ngenerations; ++g)
        for (const int64 gender : {1, 2}) {
            int64 n = 0;
            for (int64 i = r.first(g); i <= r.last(g); ++i) n += r.individuals(i).gender == gender;
            r.told.is({sizefile, g + 1}, "males, females", double(n), sizes(g + 1)(2 + gender));
        }
}

void readswitches(run &r)
{
    const settings &spec = r.spec;
    const auto whole = [&](const std::string &key, int64 which = 1) {
        const double x = spec.number(key, which);
        return x >= 0 && x < 1e9 ? static_cast<int64>(x) : 0;
    };
    r.nburnin = whole("NumberGenerationsBurnIn");
    if (spec.word("GenerationFlexibilityOnOff") == "on")
        r.firstgeneration = std::max<int64>(whole("StartStopGeneration"), 1);
    const bool restricted =
                   spec.word("SelectionBasedOnRestrictedOrUnrestrictedQtn") == "restricted",
               gamma = spec.word("DistributionOfQtnOfSelectionTraits") == "gamma";
    r.selectedset = restricted ? "RestrictedQtn" : "UnrestrictedQtn";
    r.selectedmodel = 1 + restricted + 2 * gamma;
    r.dominance = r.files.there("SimulatedData/UnrestrictedQtnDominEffects.txt");
    while (r.files.there(numbered("SimulatedData/Chip", r.nchips + 1, "SnpInformation.txt")))
        ++r.nchips;
    if (spec.word("PlantBreedingOnOff") == "on")
        for (int64 k = 1; k <= whole("NumberOfGenerationsIncludingDoubledHaploids"); ++k)
            r.doubledhaploids.insert(whole("CreateDoubledHaploidsInTheseGenerations", k));
    // Behind a merge the first columns are wider.
    const textfile information = r.files.read("SimulatedData/UnrestrictedQtnInformation.txt");
    if (information.n() > 1 && information.lines(2).size() > 130) r.merged = true;
}
} // namespace

bool run::ownvalues(int64 g) const
{
    for (int64 i = first(g); merged && i <= last(g); ++i)
        if (individuals(i).path.empty() || individuals(i).path != individuals.back().path)
            return false;
    return !merged || spec.word("MergeTypes") == "none";
}

list<genomesite> run::sitesof(const std::string &set, int64 h) const
{
    list<genomesite> sites;
    for (int64 k = h ? h : 1; k <= (h ? h : chromosomes.n()); ++k)
        if (const auto found = chromosomes(k).sets.find(set); found != chromosomes(k).sets.end())
            for (const int64 site : found->second) sites.push_back({&chromosomes(k), k, site});
    return sites;
}

std::string numbered(const std::string &before, int64 n, const std::string &behind)
{
    return before + std::to_string(n) + behind;
}

reals column(const run &r, int64 g, int64 kind, int64 model, int64 trait)
{
    reals x;
    for (int64 i = r.first(g); i <= r.last(g); ++i) x.push_back(r.value(i, kind, model, trait));
    return x;
}

double mean(const reals &x)
{
    double sum = 0;
    for (const double value : x) sum += value;
    return sum / double(x.n());
}

double covariance(const reals &x, const reals &y)
{
    const double mx = mean(x), my = mean(y);
    double sum = 0;
    for (int64 i = 1; i <= x.n(); ++i) sum += (x(i) - mx) * (y(i) - my);
    return sum / double(x.n() - 1);
}

void checkpedigree(run &r)
{
    r.spec = readsettings(r.files);
    const textfile pedigree = r.files.read("SimulatedData/Pedigree.txt");
    readsizes(r, pedigree.n() - 1);
    readindividuals(r, pedigree, r.files.read("SimulatedData/Gender.txt"));
    readswitches(r);
}
} // namespace checkrun

checkrun::statements checkrunfolder(const std::string &folder)
{
    checkrun::statements told;
    checkrun::run r(told, folder);
    checkpedigree(r);
    if (r.nindiv == 0) {
        told.leaveout("everything else", "there are no individuals");
        return told;
    }
    checkgenomes(r);
    checkvalues(r);
    checkcycles(r);
    return told;
}
