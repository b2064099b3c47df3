#include "Brenvask/allelefrequencies.h"

#include "evaluationhelpers/progress.h"
#include "evaluationhelpers/records.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <cstdio>
#include <filesystem>

namespace
{
constexpr const char *frequencyfile = "GFullMatrixAlleleFreq.txt";

std::string readtitle(infile &in)
{
    in.record();
    if (in.word() != "Locus") in.complain("the title of a file of allele frequencies is wanted");
    return std::string(trim(in.rest()));
}

// The genotype file that the stored frequencies are of; empty if there are none.
std::string storedgenotypefile(const std::string &path)
{
    if (!pathexists(path)) return "";
    infile in(path);
    return readtitle(in);
}

array1<double> readfrequencies(const std::string &path, int64 nloci)
{
    array1<double> freq(nloci);
    infile in(path);
    readtitle(in);
    for (int64 j = 1; j <= nloci; ++j) {
        in.record();
        const int64 line = in.linenumber();
        if (in.integer() != j) in.complain("locus " + numbertext(j) + " is wanted");
        freq(j) = in.real();
        checkwholeline(in, line, "a locus and its frequency");
        if (!(freq(j) >= 0 && freq(j) <= 1)) in.complain("a frequency is wanted, from 0 to 1");
    }
    return freq;
}

bool isworkingdirectory(const std::string &folder)
{
    std::error_code error;
    return std::filesystem::equivalent(folder, ".", error);
}

basefrequencies take(const std::string &source, const array1<double> &freq, const std::string &why)
{
    note("Allele frequencies: those of " + source + why);
    return {source, freq};
}
} // namespace

basefrequencies choosefrequencies(const brenvaskspec &spec, const genotypefile &genotypes)
{
    const array1<double> &own = genotypes.store.freq;
    if (!spec.useearlierfrequencies) return take(genotypes.name, own, "");

    const std::string cycle = "cycle " + numbertext(spec.frequencycycle);
    const std::string folder = "../SelectionFolder" + numbertext(spec.frequencycycle) + "/";
    const std::string path = folder + frequencyfile;
    const std::string storedof = storedgenotypefile(path);
    if (isworkingdirectory(folder) && (storedof.empty() || storedof == genotypes.name))
        return take(genotypes.name, own, ": this is " + cycle + " itself");

    const std::string otherbase = ": relationships do not stand on the base of " + cycle;
    if (storedof.empty()) {
        note("WARNING: there is no " + path);
        return take(genotypes.name, own, otherbase);
    }
    const int64 nstored = countlines(path) - 1;
    if (nstored != own.size()) {
        note("WARNING: " + path + " holds " + numbertext(nstored) + " loci, " + genotypes.name +
             " has " + numbertext(own.size()));
        return take(genotypes.name, own, otherbase);
    }
    return take(path, readfrequencies(path, nstored), " (" + storedof + " of " + cycle + ")");
}

void storefrequencies(const genotypefile &genotypes)
{
    const std::string storedof = storedgenotypefile(frequencyfile);
    if (!storedof.empty() && storedof != genotypes.name) return;
    // Renamed when it is complete: a repeated run asks whose they are.
    const std::string next = std::string(frequencyfile) + ".new";
    outfile out(next);
    out.writeline(freeline("Locus", genotypes.name));
    for (int64 j = 1; j <= genotypes.store.nsnp; ++j)
        out.writeline(freeline(j, genotypes.store.freq(j)));
    out.close();
    if (std::rename(next.c_str(), frequencyfile) != 0) ioerrno(frequencyfile, "can't write");
}
