#include "exportsamples.h"

#include "cyclefolder.h"
#include "evaluation/valuefiles.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <set>

namespace
{
[[noreturn]] void refuse(const std::string &reason)
{
    std::fprintf(stderr, "ERROR: %s\n", reason.c_str());
    plainstop(2);
}

void stopifunknown(const finishedrun &run, const infile &in, int64 individual)
{
    if (individual >= 1 && individual <= run.nindividuals()) return;
    in.complain("there is no individual " + numbertext(individual) + " among the " +
                numbertext(run.nindividuals()) + " of the run");
}

// The first number of each line.
std::set<int64> listedindividuals(const finishedrun &run, const std::string &path)
{
    std::set<int64> individuals;
    infile in(path);
    while (in.nextrecord()) {
        if (trim(in.line()).empty()) continue;
        const int64 individual = in.integer();
        stopifunknown(run, in, individual);
        individuals.insert(individual);
    }
    return individuals;
}

int64 lastcycle(const finishedrun &run)
{
    int64 cycle = run.ngenerations();
    while (cycle > 0 && !folderexists(cyclefolder(cycle))) --cycle;
    if (cycle == 0)
        refuse("--samples training and candidates: the run has no cycle of selection, see "
               "NumberGenerationsSelection");
    return cycle;
}

std::set<int64> individualsofcycle(const finishedrun &run, sampleset samples)
{
    const int64 cycle = lastcycle(run);
    const bool istraining = samples == sampleset::training;
    const std::string path = cyclefolder(cycle) + (istraining ? trainingphenotypes(*run.s, 1)
                                                              : truetestvalues(*run.s, 1));
    if (!pathexists(path))
        refuse(path + " is missing: " +
               (istraining ? "only selection on estimates has training individuals, see "
                             "SelectionMethod"
                           : "the folder of the cycle has been changed"));
    return listedindividuals(run, path);
}

bool isinrange(const finishedrun &run, const exportoptions &options, int64 individual)
{
    const bool filtered = options.firstgeneration > 0 || !options.individualsfile.empty();
    const bool onlylast =
        options.samples == sampleset::last || (options.samples == sampleset::unset && !filtered);
    const int64 generation = run.generationof(individual);
    if (onlylast && generation != run.ngenerations()) return false;
    return options.firstgeneration == 0 ||
           (generation >= options.firstgeneration && generation <= options.lastgeneration);
}
} // namespace

std::vector<int64> chosenindividuals(const finishedrun &run, const exportoptions &options)
{
    if (options.lastgeneration > run.ngenerations())
        refuse("--generations: the run has " + numbertext(run.ngenerations()) + " generations");
    const bool ofcycle =
        options.samples == sampleset::training || options.samples == sampleset::candidates;
    std::set<int64> cycle, listed;
    if (ofcycle) cycle = individualsofcycle(run, options.samples);
    if (!options.individualsfile.empty()) listed = listedindividuals(run, options.individualsfile);
    std::vector<int64> individuals;
    for (int64 i = 1; i <= run.nindividuals(); ++i)
        if (isinrange(run, options, i) && (!ofcycle || cycle.contains(i)) &&
            (options.individualsfile.empty() || listed.contains(i)))
            individuals.push_back(i);
    if (individuals.empty())
        refuse("nobody is left of those asked for: --samples, --generations and --individuals hold "
               "together");
    return individuals;
}
