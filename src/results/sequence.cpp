#include "results/sequence.h"

#include "founders/stores.h"
#include "markers/extraction.h"
#include "results/gathering.h"
#include "runplan.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

namespace
{
constexpr int64 titlelength = 50 + 1;

int64 countsites(const state &s)
{
    int64 totalsites = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) totalsites += s.sites.nsegreginclglobal(h);
    return totalsites;
}

bool lastgenisreached(const state &s, int64 lasttmpgen)
{
    return lasttmpgen == s.pop.ngensel + s.pop.ngen;
}

// One record: the individual's identifier, and n alleles.
void readsequencerecord(framereader &in, int64 individ, char *to, int64 n)
{
    constexpr int64 chunk = 2048; // alleles at once, small enough for the cache
    int64 id;
    bool right = true;
    in.begin(8 * (n + 1));
    in.get(&id, 8);
    if (id != individ)
        ioerror(in.path(), "holds the record of individual " + numbertext(id) + " where that of " +
                               numbertext(individ) + " is wanted");
    for (int64 i = 0; i < n; i += chunk) {
        const int64 m = std::min(chunk, n - i);
        in.show(8 * m, [&](const char *alleles) {
            right = putintegeralleles(to + 2 * i, alleles, m) && right;
        });
    }
    if (!right) ioerror(in.path(), "holds an allele other than 0 or 1");
    in.finish();
}

void gathergeneration(const state &s, int64 gen, individualrows &rows)
{
    std::vector<framereader> chromfiles;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        chromfiles.emplace_back(sequencephasefileof(h, gen));
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i) {
        rows.begin(i);
        for (int64 h = 1; h <= s.founders.nchrom; ++h) {
            framereader &in = chromfiles[static_cast<std::size_t>(h - 1)];
            const int64 n = s.sites.nsegreginclglobal(h);
            readsequencerecord(in, i, rows.text(1), n);
            readsequencerecord(in, i, rows.text(2), n);
            rows.advance(n);
        }
        rows.write();
    }
    for (framereader &in : chromfiles) in.stopifmore();
}

// The map file is left empty before the last generation of the simulation.
void writemap(const state &s, int64 lasttmpgen)
{
    outfile out(sequencemapfile);
    if (lastgenisreached(s, lasttmpgen)) {
        for (int64 h = 1; h <= s.founders.nchrom; ++h) {
            const array1<double> map = readincludedmap(h, s.sites.nsegreginclglobal(h));
            for (int64 site = 1; site <= map.size(); ++site)
                out.writeline(freeline(h, site, map(site)));
        }
    }
    out.close();
}
} // namespace

void writeoutsequence(state &s, int64 firsttmpgen, int64 lasttmpgen)
{
    const int64 totalsites = countsites(s);
    outfile phases, genotypes;
    openresultfile(phases, s, sequencephasefile, firsttmpgen, 2, totalsites, titlelength);
    openresultfile(genotypes, s, sequencegenotypefile, firsttmpgen, 1, totalsites, titlelength);
    if (firsttmpgen == 1) {
        textline title;
        puti(title, totalsites, 50);
        phases.writeline(textline(title));
        genotypes.writeline(title);
    }
    individualrows rows(phases, genotypes, totalsites);
    for (int64 j = firsttmpgen; j <= lasttmpgen; ++j) {
        tellpart(s, runpart::sequence, j - firsttmpgen + 1, lasttmpgen - firsttmpgen + 1,
                 "generation " + numbertext(j));
        gathergeneration(s, j, rows);
    }
    writemap(s, lasttmpgen);
    phases.close();
    genotypes.close();
}

namespace
{
// The order in which files are compressed, as indices of their paths: the largest first, so that in
// the end no processor waits for one large file; what has no size, such as the files of a pattern,
// before them.
std::vector<std::size_t> largestfirst(const std::vector<std::string> &paths)
{
    std::vector<std::uintmax_t> sizes;
    for (const std::string &path : paths) {
        std::error_code error; // the size is the largest number then
        sizes.push_back(std::filesystem::file_size(path, error));
    }
    std::vector<std::size_t> order(paths.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, std::greater{}, [&](std::size_t k) { return sizes[k]; });
    return order;
}
} // namespace

void zipsequenceoutputfiles(state &s, int64 firsttmpgen, int64 lasttmpgen)
{
    std::vector<std::string> paths;
    const auto zip = [&](const std::string &path) { paths.push_back(path); };
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        for (int64 j = firsttmpgen; j <= lasttmpgen; ++j) {
            zip(sequencegenotypefileof(h, j));
            zip(sequencephasefileof(h, j));
        }
    }
    if (lastgenisreached(s, lasttmpgen)) {
        zip(sequencephasefile);
        zip(sequencegenotypefile);
        zip(sequencemapfile);
        zip("./SimulatedData/AllIndividualsSnpChips/*");
    }
    commandqueue gzips(commandsatonce());
    std::vector<int64> chains(paths.size());
    for (const std::size_t k : largestfirst(paths)) {
        gzips.add({"gzip -f " + paths[k]});
        chains[k] = gzips.size();
    }
    for (const int64 chain : chains) gzips.finish(chain, 1, "ZipSequenceOutputFiles", s.failures);
}
