// solvanto-export - what a run left, in the formats of other programs.

#include "exportsamples.h"
#include "plinkfiles.h"
#include "tables.h"

#include "programinfo.h"
#include "stops.h"
#include "words.h"

#include <csignal>
#include <filesystem>
#include <unistd.h>

namespace
{
const programinfo info{"solvanto-export", "what a run left, in the formats of other programs",
                       exportusage, exportdetails};

// Paths keep their meaning when the run's folder becomes the working directory.
void enterfolder(exportoptions &options)
{
    const auto absolute = [](const std::string &path) {
        return path.empty() ? path : std::filesystem::absolute(path).string();
    };
    options.output = absolute(options.output);
    options.individualsfile = absolute(options.individualsfile);
    if (::chdir(options.folder.c_str()) != 0) ioerrno(options.folder, "can't go into the folder");
}

std::vector<std::string> namesofsamples(const exportoptions &options,
                                        const std::vector<int64> &individuals,
                                        const allelesource &alleles)
{
    std::vector<std::string> names;
    if (options.data == exportdata::founders)
        for (int64 k = 1; k <= alleles.nsamples; ++k) names.push_back("F" + numbertext(k));
    else
        for (const int64 individual : individuals) names.push_back(samplename(individual));
    return names;
}

int64 writegenotypes(const exportjob &job, const std::vector<int64> &individuals, newfiles &files)
{
    switch (job.options.format) {
    case exportformat::plink:
        return writeplink(job, individuals, files);
    case exportformat::pgen:
        return writepgen(job, individuals, files);
    default:
        return writevariants(job, files);
    }
}

void exportrun(exportoptions options)
{
    enterfolder(options);
    const finishedrun run = openfinishedrun();
    const sitetables tables = readsitetables(run, options);
    std::vector<int64> individuals;
    if (options.data != exportdata::founders) individuals = chosenindividuals(run, options);
    newfiles files(options.force);
    if (options.format == exportformat::tables) {
        writetables(run, options, tables, individuals, files);
        files.putinplace();
        printline(numbertext(std::ssize(individuals)) + " individuals: " + options.output +
                  ".individuals.tsv and the like");
        return;
    }
    const allelesource alleles = openalleles(run, options, tables, individuals, options.output);
    const exportjob job{run,
                        options,
                        tables,
                        alleles,
                        chosenchromosomes(run, options),
                        namesofsamples(options, individuals, alleles)};
    const int64 nsites = writegenotypes(job, individuals, files);
    files.putinplace();
    printline(numbertext(nsites) + " sites of " + numbertext(alleles.nsamples) + " samples from " +
              alleles.told);
}
} // namespace

int main(int argc, char **argv)
{
    if (answered(info, argc, argv)) return 0;
    std::signal(SIGXFSZ, SIG_IGN); // a file beyond its limit is an error of its write
    std::signal(SIGPIPE, SIG_IGN);
    return runtostop([&] { exportrun(readexportoptions({argv + 1, argv + argc})); });
}
