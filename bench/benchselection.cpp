// What a selection cycle reads for every trait: the table of all values and the phases on the
// selection chip. Each ratio is to counting the line ends of the same files with memchr, measured
// in turns in the same run; medians of processor time. Works in a temporary folder.
#include "evaluation/selectionchip.h"
#include "files.h"
#include "openstate.h"

#include <benchmark/benchmark.h>

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
constexpr int64 nindiv = 20000, nvalues = 12; // four models, one trait
constexpr int64 ncandidates = 1000, nsnp = 10000;
const std::string table = "./PedigreeTbvTdvTpv.txt";
const std::string phases = "./Chromosomes/Chromosome1/Chip1PhaseGeneration1.txt";

void maketable(randomstream &random)
{
    outfile out(table);
    textline line;
    for (int64 i = 1; i <= nindiv; ++i) {
        for (const int64 column : {int64(1), i, int64(0), int64(0)}) puti(line, column, 10);
        for (int64 k = 0; k < nvalues; ++k) putf(line, 3 * gasdev(random), 20, 10);
        out.writeline(line);
    }
    out.close();
}

void makephases(randomstream &random)
{
    std::filesystem::create_directories("Chromosomes/Chromosome1");
    std::filesystem::create_directories("Selection/SelectionFolder1");
    outfile out(phases);
    textline line;
    std::vector<int8> alleles(nsnp);
    for (int64 i = 1; i <= 2 * ncandidates; ++i) {
        for (int8 &allele : alleles) allele = ran1(random) < 0.5 ? 0 : 1;
        puti(line, (i + 1) / 2, 20);
        putalleles(line, alleles.data(), nsnp);
        out.writeline(line);
    }
    out.close();
}

int64 countlineends(const std::string &path)
{
    static std::vector<char> chunk(1 << 20);
    const int descriptor = ::open(path.c_str(), O_RDONLY);
    int64 n = 0;
    for (ssize_t got; (got = ::read(descriptor, chunk.data(), chunk.size())) > 0;) {
        const char *p = chunk.data(), *const end = p + got;
        while ((p = static_cast<const char *>(
                    std::memchr(p, '\n', static_cast<std::size_t>(end - p))))) {
            ++n;
            if (++p == end) break;
        }
    }
    ::close(descriptor);
    return n;
}

double readtable()
{
    infile in(table);
    double values[nvalues], sum = 0;
    for (int64 i = 1; i <= nindiv; ++i) {
        in.record();
        in.skipwords(4);
        in.reals(values, nvalues);
        sum += values[nvalues - 1];
    }
    return sum;
}

int64 readphases()
{
    infile in(phases);
    static std::vector<int8> alleles(nsnp);
    int64 sum = 0;
    for (int64 i = 1; i <= 2 * ncandidates; ++i) {
        in.record();
        in.skipwords(1);
        in.alleles(alleles.data(), nsnp);
        sum += alleles[nsnp / 2];
    }
    return sum;
}

// The pass of a cycle under selection on true values: phases read, genotypes written.
void writetestfile(openstate &s)
{
    selectionchipfiles files = openchipfiles(s, 1);
    generationphases opened = openphases(s, 1);
    writetestchip(s, files, opened, 1, ncandidates);
    closechipfiles(files);
}

double processorseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double secondsof(const std::function<void()> &body)
{
    const double start = processorseconds();
    body();
    return processorseconds() - start;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void printratio(const char *name, const std::string &path, const std::function<void()> &body,
                double allowed)
{
    std::vector<double> bodytimes, floortimes;
    for (int repeat = 0; repeat < 21; ++repeat) {
        floortimes.push_back(secondsof([&] { benchmark::DoNotOptimize(countlineends(path)); }));
        bodytimes.push_back(secondsof(body));
    }
    std::printf("%s ratio %.2f allowed %.2f\n", name, median(bodytimes) / median(floortimes),
                allowed);
}
} // namespace

int main()
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::string folder = (std::filesystem::temp_directory_path() / "benchselectionXXXXXX").string();
    if (!::mkdtemp(folder.data())) return 1;
    std::filesystem::current_path(folder);

    openstate s;
    s.random.idum = -1;
    maketable(s.random);
    makephases(s.random);
    s.founders.nchrom = s.chips.tmpchip = 1;
    s.loci.nsnp = nsnp;
    s.loci.nsnponthischipchrom.allocate(1, 1, nsnp);
    s.selection.selontbvyes1no0 = 1;
    s.cycle.starttestindiv = 1;
    s.cycle.endtestindiv = ncandidates;

    printratio(
        "readvalues", table, [] { benchmark::DoNotOptimize(readtable()); }, 6);
    printratio(
        "readphases", phases, [] { benchmark::DoNotOptimize(readphases()); }, 6);
    printratio(
        "chiptestfile", phases, [&] { writetestfile(s); }, 6);

    std::filesystem::current_path(before);
    std::filesystem::remove_all(folder);
    return 0;
}
