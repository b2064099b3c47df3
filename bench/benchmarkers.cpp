// benchmarkers.cpp - chip and sequence text against the speed of the files themselves.
//
// Each figure is the ratio of a routine to a floor measured in the same run: the same bytes
// written from a ready buffer, or the line ends of the same file counted. Routine and floor are
// measured in turns, and the ratio is that of the fastest of each. Time is that of the processor,
// the system's share included: files of this size stay in the page cache, and other programs on the
// machine don't count.
#include "files.h"
#include "haplotypes/blocks.h"
#include "markers/extraction.h"
#include "openstate.h"
#include "results/sequence.h"
#include "results/snpchips.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
namespace fs = std::filesystem;
const std::string chromosome = "Chromosomes/Chromosome1/";

double secondsof(const std::function<void()> &body)
{
    const std::clock_t start = std::clock();
    body();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void report(const char *name, double seconds, double floorseconds, double allowed)
{
    std::printf("%-34s ratio %.2f allowed %.2f   (%.3f s to %.3f s)\n", name,
                seconds / floorseconds, allowed, seconds, floorseconds);
    std::fflush(stdout);
}

// A file as it lies ready in memory.
struct readyfile {
    std::string path;
    std::vector<char> bytes;
};

readyfile readwhole(const std::string &path)
{
    readyfile file{path, std::vector<char>(fs::file_size(path))};
    std::FILE *in = std::fopen(path.c_str(), "rb");
    if (!in || std::fread(file.bytes.data(), 1, file.bytes.size(), in) != file.bytes.size())
        std::exit(1);
    std::fclose(in);
    return file;
}

void writereadybytes(const std::vector<readyfile> &files)
{
    constexpr std::size_t piece = 1 << 20;
    for (const readyfile &ready : files) {
        const int file = ::open(ready.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        for (std::size_t at = 0; at < ready.bytes.size(); at += piece) {
            const std::size_t n = std::min(piece, ready.bytes.size() - at);
            if (::write(file, ready.bytes.data() + at, n) != static_cast<ssize_t>(n)) std::exit(1);
        }
        ::close(file);
    }
}

void readbytes(const std::string &path)
{
    std::vector<char> buffer(1 << 20);
    const int file = ::open(path.c_str(), O_RDONLY);
    while (::read(file, buffer.data(), buffer.size()) > 0) {
    }
    ::close(file);
}

// Compares a routine that writes the files with writing ready bytes to the same files.
// copied: files that the routine reads, and the floor too.
void comparewriting(const char *name, const std::vector<std::string> &paths, double allowed,
                    const std::function<void()> &routine,
                    const std::vector<std::string> &copied = {})
{
    const auto removeall = [&] {
        for (const std::string &path : paths) fs::remove(path);
    };
    routine();
    std::vector<readyfile> files;
    for (const std::string &path : paths) files.push_back(readwhole(path));
    double best = 1e9, bestfloor = 1e9;
    for (int turn = 0; turn < 5; ++turn) {
        removeall();
        bestfloor = std::min(bestfloor, secondsof([&] {
                                 for (const std::string &path : copied) readbytes(path);
                                 writereadybytes(files);
                             }));
        removeall();
        best = std::min(best, secondsof(routine));
    }
    report(name, best, bestfloor, allowed);
}

int64 countlineends(const std::string &path)
{
    std::vector<char> buffer(1 << 20);
    const int file = ::open(path.c_str(), O_RDONLY);
    int64 found = 0;
    for (ssize_t got; (got = ::read(file, buffer.data(), buffer.size())) > 0;) {
        const char *p = buffer.data(), *const end = p + got;
        while (const void *at = std::memchr(p, '\n', static_cast<std::size_t>(end - p))) {
            ++found;
            p = static_cast<const char *>(at) + 1;
        }
    }
    ::close(file);
    return found;
}

void comparereading(const std::string &path, int64 nrows, int64 nsites)
{
    std::vector<int8> alleles(static_cast<std::size_t>(nsites));
    double best = 1e9, bestfloor = 1e9;
    for (int turn = 0; turn < 7; ++turn) {
        int64 nlines = 0;
        bestfloor = std::min(bestfloor, secondsof([&] { nlines = countlineends(path); }));
        if (nlines != nrows) std::exit(1);
        best = std::min(best, secondsof([&] {
                            infile in(path);
                            for (int64 i = 0; i < nrows; ++i) {
                                in.record();
                                in.integer();
                                in.alleles(alleles.data(), nsites);
                            }
                        }));
    }
    report("read alleles", best, bestfloor, 6);
}

void writetext(const std::string &path, const std::string &text)
{
    outfile out(path);
    out.write(text);
    out.close();
}

// One chromosome of nblock blocks, with a chip of nsnp sites spread over it.
void setup(openstate &s, int64 nindiv, int64 nblock, int64 nsnp)
{
    s.founders.nchrom = 1;
    s.pop.ngen = 1;
    s.pop.ngensel = 0;
    s.pop.nindivp = nindiv;
    s.pedi.nindivinthisgen.allocate({0, 1});
    s.pedi.cumindivnbtogen.allocate({0, 1});
    s.pedi.nindivinthisgen(1) = s.pedi.cumindivnbtogen(1) = nindiv;
    s.run.specstartgen = s.run.specendgen = 1;
    s.chips.nchip = s.chips.tmpchip = 1;
    s.random.idum = -1;
    s.haplo.tmpgenome.allocate(nindiv, nblock);
    for (int64 k = 1; k <= nindiv; ++k)
        for (int64 m = 1; m <= 2; ++m)
            for (int64 b = 1; b <= nblock; ++b)
                s.haplo.tmpgenome(k, b, m) = static_cast<int64>(ran1(s.random) * 1073741824.0)
                                                 << 30 |
                                             static_cast<int64>(ran1(s.random) * 1073741824.0);
    const int64 nsites = nblock * lociperblock;
    std::string information, map;
    for (int64 k = 1; k <= nsnp; ++k)
        information +=
            std::to_string(k) + " " + std::to_string((k - 1) * nsites / nsnp + 1) + " 0.5 0.5\n";
    for (int64 site = 1; site <= nsites; ++site) map += std::to_string(site) + " 1 0.5 0 0\n";
    writetext(chromosome + "Chip1SnpInformation.txt", information);
    writetext(chromosome + "PhysicalMapIncluded.txt", map);
    s.sites.nsegreginclglobal.allocate(1, nsites);
    s.loci.nsnponthischipchrom.allocate(1, 1, nsnp);
}

void measurechips()
{
    constexpr int64 nindiv = 1000, nblock = 1000, nsnp = 50000;
    openstate s;
    setup(s, nindiv, nblock, nsnp);
    const std::string phases = chromosome + "Chip1PhaseGeneration1.txt";
    comparewriting("chip text from blocks", {phases, chromosome + "Chip1GenotypeGeneration1.txt"},
                   1.5, [&] { fillarray(s, 1, 1, 1, 1, nindiv); });
    comparereading(phases, 2 * nindiv, nsnp);
    s.run.specstartgen = 2; // the folder is there
    const std::string folder = "SimulatedData/AllIndividualsSnpChips/";
    comparewriting("gather chips", {folder + "Chip1Phase.txt", folder + "Chip1Genotype.txt"}, 2,
                   [&] { writeoutsnpchips(s, 1, 1); }, {phases});
}

// From packed blocks to the text of the whole genome, the binary files between them included.
void measuresequence()
{
    constexpr int64 nindiv = 300, nblock = 834;
    openstate s;
    setup(s, nindiv, nblock, 1);
    comparewriting("sequence from blocks to text",
                   {"SimulatedData/FullSequencePhase.txt", "SimulatedData/FullSequenceGenotype.txt",
                    chromosome + "SequencePhaseGeneration1.bin",
                    chromosome + "SequenceGenotypeGeneration1.bin"},
                   1.5, [&] {
                       writeoutindivphase(s, 1, 1, 1, nindiv);
                       writeoutsequence(s, 1, 1);
                   });
}
} // namespace

int main()
{
    std::string pattern = (fs::temp_directory_path() / "solvantobenchXXXXXX").string();
    if (!mkdtemp(pattern.data())) return 1;
    fs::current_path(pattern);
    fs::create_directories(chromosome);
    fs::create_directories("SimulatedData/AllIndividualsSnpChips");
    measurechips();
    measuresequence();
    fs::current_path("/");
    fs::remove_all(pattern);
}
