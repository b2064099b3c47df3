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
    commandqueue copies(commandsatonce());
    for (int64 i = 1; i <= s.founders.nchrom; ++i) {
        const std::string folder = " Chromosomes/Chromosome" + numbertext(i);
        copies.add({"cp macs" + folder});
        copies.add({"cp Vintrecaskelle" + folder});
    }
    for (int64 i = 1; i <= s.founders.nchrom; ++i) {
        copies.finish(2 * i - 1, 1, "RunMacs A", s.failures);
        copies.finish(2 * i, 1, "RunMacs B", s.failures);
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
// A simulator of a user's own may take its seed from the clock: it runs for one chromosome after the
// other, as it always did, lest chromosomes are the same.
int64 programsatonce()
{
    const int64 natonce = commandsatonce();
    // Asked in a folder where it finds, and can leave, no file.
    const char *question = "macs=$PWD/macs; cd /proc/self && timeout 5 \"$macs\" --version "
                           "</dev/null 2>/dev/null | grep -q '^\\(macs\\|foundersfromvcf\\) [0-9]'";
    const bool ours = natonce > 1 && shellstatus(question) == 0;
    return ours ? natonce : 1;
}
} // namespace

void runmacs(state &s)
{
    copyprograms(s);
    printline(" Performing MaCS for each chromosome in series");
    commandqueue programs(programsatonce());
    macsrun before;
    for (int64 i = 1; i <= s.founders.nchrom; ++i) {
        tellpart(s, runpart::founders, i, s.founders.nchrom, "chromosome " + numbertext(i));
        printline(" ");
        printfree("Chromosome: ", i);
        runmacshelper(s, "cd Chromosomes/Chromosome" + numbertext(i), i, programs);
        const macsrun run = lookatrun(i);
        warnofequalruns(s.options, before, run, i);
        before = run;
    }
    printline(" MaCS finished");
    printline("     ");
}

namespace
{
void addprograms(const state &s, commandqueue &programs, const std::string &folder,
                 const std::string &macsparams)
{
    const std::string nhaps = numbertext(s.founders.nhaps);
    programs.add({macscommand(folder, s.founders.nhaps, macsparams, s.founders.recombhotspotsonoff),
                  folder + " &&  ./Vintrecaskelle " + nhaps + " && cp -f " + segsitesname +
                      " FinishedMacs.txt"});
}

void writehotspots(int64 chrom, const std::vector<recombregion> &regions)
{
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

bool regionsareinorder(const std::vector<recombregion> &regions)
{
    // A region that ends where it starts has no length to divide its share by.
    const bool empty = std::any_of(regions.begin(), regions.end(), [](const recombregion &region) {
        return region.start == region.stop;
    });
    return !empty && regionsinorder(regions);
}

// Writes the regions of a chromosome before its turn; false, without a word, where they will stop
// the run then.
bool hotspotsbeforeturn(int64 chrom)
{
    std::vector<recombregion> regions;
    try {
        regions = readrecombregions(chrom);
    } catch (const stopped &) {
        return false;
    }
    if (!regionsareinorder(regions)) return false;
    rescaleproportions(regions);
    writehotspots(chrom, regions);
    return true;
}

// The programs of later chromosomes go on beside those of this one. The parameters are the same for
// all.
void lookahead(const state &s, int64 chrom, const std::string &macsparams, commandqueue &programs)
{
    if (programs.natonce() == 1) return;
    for (int64 i = chrom + 1; i <= s.founders.nchrom; ++i) {
        if (s.founders.recombhotspotsonoff && !hotspotsbeforeturn(i)) return;
        addprograms(s, programs, "cd Chromosomes/Chromosome" + numbertext(i), macsparams);
    }
}
} // namespace

void runmacshelper(state &s, const std::string &folder, int64 chrom, commandqueue &programs)
{
    std::string macsparams;
    initmacscases(s, macsparams);
    const bool hasbegun = programs.size() >= chrom;
    if (s.founders.recombhotspotsonoff) {
        const std::vector<recombregion> regions = regionsformacs(chrom);
        if (!hasbegun) writehotspots(chrom, regions);
    }
    if (!hasbegun) {
        addprograms(s, programs, folder, macsparams);
        lookahead(s, chrom, macsparams, programs);
    }
    programs.finish(chrom, 1, "RunMacsRewrite A", s.failures);
    printline(" Running Vintrecaskelle");
    programs.finish(chrom, 2, "RunMacsRewrite B", s.failures);

    outfile used("Chromosomes/Chromosome" + numbertext(chrom) + "/MaCSParametersUsed.txt");
    used.writeline(freeline(numbertext(s.founders.nhaps) + " ", macsparams));
    used.close();
}

std::string macscommand(const std::string &folder, int64 nhaps, const std::string &macsparams,
                        bool hotspots)
{
    return folder + " && ./macs " + numbertext(nhaps) + "  " + std::string(trimright(macsparams)) +
           " " + (hotspots ? "-R Hotspots.txt" : "") + " 1>" + macsoutput + " 2>" + macsmessages;
}

std::vector<recombregion> regionsformacs(int64 chrom)
{
    std::vector<recombregion> regions = readrecombregions(chrom);
    if (!regionsareinorder(regions)) {
        printline("ERROR: Variable recombination file should be sorted from start to end of "
                  "chromosome");
        stopwithcode(110031);
    }
    if (rescaleproportions(regions)) {
        printline("WARNING: proportion of recombinations over the defined regions must sum to 1.0 "
                  "- rescale");
        printline("");
    }
    return regions;
}

void readrecombspecformacs(int64 chrom)
{
    writehotspots(chrom, regionsformacs(chrom));
}
