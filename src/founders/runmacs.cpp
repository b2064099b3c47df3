#include "founders/runmacs.h"

#include "founders/presets.h"
#include "founders/simulatedsites.h"
#include "runplan.h"
#include "shell.h"
#include "sortstat.h"
#include "stops.h"
#include "words.h"

#include <algorithm>

namespace
{
void copyprograms(state &s)
{
    for (int64 i = 1; i <= s.founders.nchrom; ++i) {
        const std::string folder = " Chromosomes/Chromosome" + numbertext(i);
        runshell("cp macs" + folder, "RunMacs A", s.failures);
        runshell("cp Vintrecaskelle" + folder, "RunMacs B", s.failures);
    }
}

// What tells one coalescent run from another: its seed, its first site, and the number of its sites.
// Programs that take founders from files have one seed for all chromosomes.
struct macsrun {
    std::string seedline;
    std::string firstsite;
    std::string nsites;
};

std::string firstline(infile &in)
{
    return in.nextrecord() ? std::string(trim(in.line())) : "";
}

// The run of a chromosome; empty texts where it failed.
macsrun lookatrun(int64 chrom)
{
    macsrun run;
    const std::string output = chromfolder(chrom) + macsoutput;
    const std::string segsites = segsitesfile(chrom);
    if (!pathexists(output) || !pathexists(segsites)) return run;
    infile in(output);
    in.nextrecord(); // the command line
    const std::string seedline = firstline(in);
    if (seedline.starts_with("SEED:")) run.seedline = seedline;
    run.firstsite = firstline(in);
    infile count(segsites);
    run.nsites = firstline(count);
    return run;
}

void warnofequalruns(const runoptions &options, const macsrun &before, const macsrun &run,
                     int64 chrom)
{
    if (run.seedline.empty() || run.seedline != before.seedline) return;
    if (run.firstsite != before.firstsite) return;
    if (run.nsites != before.nsites || run.nsites == "0") return;
    warn(options, "", 0,
         "chromosomes " + numbertext(chrom - 1) + " and " + numbertext(chrom) +
             " began with the same seed and have the same number of sites (" + run.nsites +
             "):\n"
             "their founder haplotypes are likely the same. Runs of macs need seeds of their own: "
             "no -s in a\n"
             "file of options, and a macs that takes its seed from the clock gives two runs that "
             "begin in\n"
             "one second the same. See " +
             macsoutput + " of both folders.");
}
} // namespace

void runmacs(state &s)
{
    copyprograms(s);
    printline(" Performing MaCS for each chromosome in series");
    macsrun before;
    for (int64 i = 1; i <= s.founders.nchrom; ++i) {
        tellpart(s, runpart::founders, i, s.founders.nchrom, "chromosome " + numbertext(i));
        printline(" ");
        printfree("Chromosome: ", i);
        runmacshelper(s, "cd Chromosomes/Chromosome" + numbertext(i), i);
        const macsrun run = lookatrun(i);
        warnofequalruns(s.options, before, run, i);
        before = run;
    }
    printline(" MaCS finished");
    printline("     ");
}

void runmacshelper(state &s, const std::string &folder, int64 chrom)
{
    std::string macsparams;
    initmacscases(s, macsparams);
    if (s.founders.recombhotspotsonoff) readrecombspecformacs(chrom);
    runshell(macscommand(folder, s.founders.nhaps, macsparams, s.founders.recombhotspotsonoff),
             "RunMacsRewrite A", s.failures);
    printline(" Running Vintrecaskelle");
    const std::string nhaps = numbertext(s.founders.nhaps);
    runshell(folder + " &&  ./Vintrecaskelle " + nhaps + " && cp -f " + segsitesname +
                 " FinishedMacs.txt",
             "RunMacsRewrite B", s.failures);

    outfile used("Chromosomes/Chromosome" + numbertext(chrom) + "/MaCSParametersUsed.txt");
    used.writeline(freeline(nhaps + " ", macsparams));
    used.close();
}

std::string macscommand(const std::string &folder, int64 nhaps, const std::string &macsparams,
                        bool hotspots)
{
    return folder + " && ./macs " + numbertext(nhaps) + "  " + std::string(trimright(macsparams)) +
           " " + (hotspots ? "-R Hotspots.txt" : "") + " 1>" + macsoutput + " 2>" + macsmessages;
}

namespace
{
void stopifoutoforder(const std::vector<recombregion> &regions)
{
    // A region that ends where it starts has no length to divide its share by.
    const bool empty = std::any_of(regions.begin(), regions.end(), [](const recombregion &region) {
        return region.start == region.stop;
    });
    if (!empty && regionsinorder(regions)) return;
    printline("ERROR: Variable recombination file should be sorted from start to end of "
              "chromosome");
    stopwithcode(110031);
}
} // namespace

std::vector<recombregion> regionsformacs(int64 chrom)
{
    std::vector<recombregion> regions = readrecombregions(chrom);
    stopifoutoforder(regions);
    if (rescaleproportions(regions)) {
        printline("WARNING: proportion of recombinations over the defined regions must sum to 1.0 "
                  "- rescale");
        printline("");
    }
    return regions;
}

void readrecombspecformacs(int64 chrom)
{
    const std::vector<recombregion> regions = regionsformacs(chrom);
    outfile out(chromfolder(chrom) + "Hotspots.txt");
    textline line;
    for (const recombregion &region : regions) {
        putf(line, region.start, 12, 8);
        putf(line, region.stop, 12, 8);
        putf(line, region.proportion / (region.stop - region.start), 12, 8);
        out.writeline(line);
    }
    out.close();
}
