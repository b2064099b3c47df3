// The haplotype engine: draws, gametes, expansion of blocks, genome files, a whole generation.
// The last lines are ratios to floors measured in the same run: the bare recurrence with its
// table shuffle, and such draws with a plain copy of the gamete. Medians of processor time over
// many alternating repetitions, so that both sides of a ratio see the same machine.
#include "haplotypes/blocks.h"
#include "haplotypes/burningeneration.h"
#include "haplotypes/gametes.h"
#include "haplotypes/genomefiles.h"
#include "openstate.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <functional>
#include <vector>

namespace
{
constexpr int64 nblock = 1000;

// A chromosome of 1,000 blocks and 1 Morgan, and the two strands of a parent.
struct workbench {
    openstate s;
    std::vector<int64> strands[2];
    std::vector<int64> gamete = std::vector<int64>(nblock);
    array1<int64> locations = array1<int64>(nblock, -99);
    workbench()
    {
        s.random.idum = -12345;
        s.haplo.nblock = nblock;
        s.haplo.recombrateperblock.allocate(nblock, 1.0 / nblock);
        s.haplo.globalrecomblocationmax.allocate(1, 1);
        s.haplo.recombcount.allocate(1, 2);
        for (auto &strand : strands)
            for (int64 b = 0; b < nblock; ++b)
                strand.push_back(static_cast<int64>(ran1(s.random) * 1e18));
    }
    void makegamete()
    {
        int64 n = 0;
        recombinegametes(s, 1, 1, 1, {strands[0].data(), strands[1].data()}, 1, n, locations,
                         gamete.data());
        benchmark::DoNotOptimize(gamete.data());
    }
};

// The recurrence alone, its state in local variables; gives the sum of the deviates.
double baredraws(uniformstream &stream, int64 n)
{
    std::uint64_t x = static_cast<std::uint64_t>(stream.idum);
    std::uint64_t y = static_cast<std::uint64_t>(stream.iy);
    std::uint64_t table[32];
    for (int j = 0; j < 32; ++j) table[j] = static_cast<std::uint64_t>(stream.iv[j]);
    double sum = 0;
    for (int64 i = 0; i < n; ++i) {
        const std::uint64_t product = 16807 * x;
        x = (product & 2147483647) + (product >> 31);
        x = x >= 2147483647 ? x - 2147483647 : x;
        const std::uint64_t j = y >> 26;
        y = table[j];
        table[j] = x;
        sum += static_cast<double>(static_cast<int64>(y)) * 4.656612873077393e-10;
    }
    stream.idum = static_cast<int64>(x);
    stream.iy = static_cast<int64>(y);
    for (int j = 0; j < 32; ++j) stream.iv[j] = static_cast<int64>(table[j]);
    return sum;
}

double ran1draws(randomstream &random, int64 n)
{
    double sum = 0;
    for (int64 i = 0; i < n; ++i) sum += ran1(random);
    return sum;
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
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void printratio(const char *name, const std::function<void()> &body,
                const std::function<void()> &floor, double allowed)
{
    std::vector<double> bodytimes, floortimes;
    for (int repeat = 0; repeat < 101; ++repeat) {
        floortimes.push_back(secondsof(floor));
        bodytimes.push_back(secondsof(body));
    }
    std::printf("%s ratio %.2f allowed %.2f\n", name, median(bodytimes) / median(floortimes),
                allowed);
}

void ran1each(benchmark::State &bench)
{
    randomstream random;
    random.idum = -1;
    for (auto _ : bench) benchmark::DoNotOptimize(ran1draws(random, 1000));
    bench.SetItemsProcessed(bench.iterations() * 1000);
}
BENCHMARK(ran1each);

void gameteof1000blocks(benchmark::State &bench)
{
    workbench w;
    for (auto _ : bench) w.makegamete();
    bench.SetItemsProcessed(bench.iterations());
}
BENCHMARK(gameteof1000blocks);

void expandtoalleles(benchmark::State &bench)
{
    workbench w;
    std::vector<int8> alleles(60 * nblock);
    for (auto _ : bench) {
        for (int64 b = 0; b < nblock; ++b)
            expandblock(w.strands[0][static_cast<std::size_t>(b)], alleles.data() + 60 * b);
        benchmark::DoNotOptimize(alleles.data());
    }
    bench.SetItemsProcessed(bench.iterations() * 60 * nblock);
}
BENCHMARK(expandtoalleles);

void expandtogenotypetext(benchmark::State &bench)
{
    workbench w;
    std::vector<char> text(120 * nblock);
    for (auto _ : bench) {
        for (std::size_t b = 0; b < nblock; ++b)
            putgenotypetext(text.data() + 120 * b, w.strands[0][b], w.strands[1][b]);
        benchmark::DoNotOptimize(text.data());
    }
    bench.SetBytesProcessed(bench.iterations() * 120 * nblock);
}
BENCHMARK(expandtogenotypetext);

// A generation of base individuals and one of their offspring, of 1,000 blocks each, with all
// files of the drop. Items: individuals dropped.
void dropofgenerations(benchmark::State &bench)
{
    const int64 n = bench.range(0);
    const auto before = std::filesystem::current_path();
    const auto folder = std::filesystem::temp_directory_path() / "solvantobenchdrop";
    std::filesystem::create_directories(folder / "Chromosomes/Chromosome1");
    std::filesystem::create_directories(folder / "SimulatedData");
    std::filesystem::current_path(folder);
    workbench w;
    openstate &s = w.s;
    s.founders.nchrom = 1;
    s.founders.morgans = 1;
    s.pedi.nindivinthisgen.allocate({0, 2}, n);
    s.pedi.cumindivnbtogen.allocate({0, 2});
    for (int64 g = 1; g <= 2; ++g) s.pedi.cumindivnbtogen(g) = g * n;
    s.pedi.ped.allocate(2 * n);
    for (int64 i = 1; i <= 2 * n; ++i) {
        s.pedi.ped(i).newid = i;
        if (i > n) s.pedi.ped(i).newsire = 1 + i * 7919 % n;
        if (i > n) s.pedi.ped(i).newdam = 1 + i * 104729 % n;
    }
    s.haplo.recombcount.allocate(2 * n, 2);
    s.haplo.recombfactperblock.allocate(nblock);
    s.sites.indivmutindicator.allocate(1, 2 * n);
    s.haplo.haplotypes.allocate(200, nblock);
    setburninrecombrates(s, 1);
    for (auto _ : bench) {
        for (int64 gen = 1; gen <= 2; ++gen) {
            s.haplo.tmpgenome.allocate(n, nblock);
            genedropburninindiv(s, 1, gen, (gen - 1) * n + 1, gen * n, gen == 2);
            std::swap(s.haplo.tmpgenome, s.haplo.oldtmpgenome);
        }
    }
    bench.SetItemsProcessed(bench.iterations() * 2 * n);
    std::filesystem::current_path(before);
    std::filesystem::remove_all(folder);
}
BENCHMARK(dropofgenerations)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();

    workbench w;
    uniformstream bare = filledstream(-1);
    const int64 ngametes = 100;
    printratio(
        "ran1", [&] { benchmark::DoNotOptimize(ran1draws(w.s.random, 100000)); },
        [&] { benchmark::DoNotOptimize(baredraws(bare, 100000)); }, 1.5);
    printratio(
        "gamete",
        [&] {
            for (int64 g = 0; g < ngametes; ++g) w.makegamete();
        },
        [&] {
            for (int64 g = 0; g < ngametes; ++g) {
                benchmark::DoNotOptimize(baredraws(bare, nblock));
                std::memcpy(w.gamete.data(), w.strands[g % 2].data(), 8 * nblock);
                benchmark::DoNotOptimize(w.gamete.data());
            }
        },
        1.5);
    return 0;
}
