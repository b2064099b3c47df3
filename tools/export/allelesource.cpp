#include "allelesource.h"

#include "allelerows.h"
#include "bitsquares.h"
#include "exportsamples.h"
#include "newfiles.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cstring>

namespace
{
[[noreturn]] void refuse(const std::string &reason)
{
    std::fprintf(stderr, "ERROR: %s\n", reason.c_str());
    plainstop(2);
}

// ------------------------------------------------------------------ packed genomes

void addgeneration(const finishedrun &run, allelesource &source, int64 generation)
{
    samplepart &part = source.parts.emplace_back();
    part.path = [generation](int64 chrom) { return genomefile(chrom, generation); };
    const auto g = static_cast<std::size_t>(generation);
    part.nrows = run.cumindiv[g] - run.cumindiv[g - 1];
}

allelesource packedgenomes(const finishedrun &run, const std::vector<int64> &individuals)
{
    allelesource source;
    source.told = "the packed genomes, " + genomefile(1, run.generationof(individuals.back())) +
                  " and the like";
    source.nsites = run.nsites;
    int64 before = 0;
    for (const int64 individual : individuals) {
        const int64 generation = run.generationof(individual);
        if (generation != before) addgeneration(run, source, generation);
        before = generation;
        source.parts.back().rows.push_back(
            individual - run.cumindiv[static_cast<std::size_t>(generation - 1)] - 1);
    }
    return source;
}

bool haspackedgenomes(const finishedrun &run, const std::vector<int64> &individuals)
{
    std::vector<int64> generations;
    for (const int64 individual : individuals) {
        const int64 generation = run.generationof(individual);
        if (generations.empty() || generations.back() != generation)
            generations.push_back(generation);
    }
    for (int64 h = 1; h <= run.nchrom(); ++h)
        for (const int64 generation : generations)
            if (!pathexists(genomefile(h, generation))) return false;
    return true;
}

allelesource founderhaplotypes(const finishedrun &run)
{
    allelesource source;
    source.origin = alleleorigin::founders;
    source.told = haplotypeblocksfile(1) + " and the like";
    source.nsites = run.nsites;
    samplepart &part = source.parts.emplace_back();
    part.path = haplotypeblocksfile;
    for (int64 h = 1; h <= run.nchrom(); ++h) {
        const std::string path = haplotypeblocksfile(h);
        if (!pathexists(path))
            refuse(path + " is missing: KeepChromosomesFolderYesNo,Yes in the specification of a "
                          "run whose founders are to be exported");
        const int64 nbytes = framereader(path).recordlength();
        part.nrows = nbytes / (source.nblock(h) * 8);
        if (part.nrows * source.nblock(h) * 8 != nbytes)
            ioerror(path, "holds no whole number of haplotypes");
    }
    source.nsamples = (part.nrows + 1) / 2;
    source.lasthaploid = part.nrows % 2 == 1;
    return source;
}

// ------------------------------------------------------------------ text, packed on the way

// Genomes of some individuals on all chromosomes, written when the next ones are begun.
class textpacker
{
  public:
    textpacker(allelesource &packed, std::shared_ptr<scratchfolder> to)
        : source(packed), folder(std::move(to)), genomes(packed.nsites.size())
    {
        for (int64 h = 1; h <= nchrom(); ++h) {
            nsites += source.nsites[static_cast<std::size_t>(h - 1)];
            bytesperindiv += 16 * source.nblock(h);
        }
        rows[0].resize(static_cast<std::size_t>(nsites + lociperblock));
        rows[1] = rows[0];
    }
    // Reads the two rows of an individual.
    void add(infile &in, int64 individual)
    {
        if (nheld == 0) begin();
        ++nheld;
        for (int64 m = 1; m <= 2; ++m) {
            std::vector<int8> &row = rows[m - 1];
            readallelerow(in, individual, row.data(), nsites, 1);
            pack(row, m);
        }
        if (nheld == capacity()) end();
    }
    void finish()
    {
        if (nheld > 0) end();
    }

  private:
    int64 nchrom() const { return std::ssize(source.nsites); }
    // 64 MB at a time, or one individual.
    int64 capacity() const
    {
        return std::clamp<int64>((int64{1} << 26) / std::max<int64>(bytesperindiv, 1), 1,
                                 source.nsamples);
    }
    void begin()
    {
        for (int64 h = 1; h <= nchrom(); ++h) {
            genomestore &store = genomes[static_cast<std::size_t>(h - 1)];
            store.allocate(capacity(), source.nblock(h));
            store.fill(0); // the last batch may leave rows empty
        }
    }
    void pack(const std::vector<int8> &row, int64 m)
    {
        const int8 *alleles = row.data();
        for (int64 h = 1; h <= nchrom(); ++h) {
            int64 *const gamete = genomes[static_cast<std::size_t>(h - 1)].gamete(nheld, m);
            const int64 n = source.nsites[static_cast<std::size_t>(h - 1)];
            for (int64 b = 0; b < source.nblock(h); ++b) {
                int8 block[lociperblock] = {};
                const int64 nloci = std::min(lociperblock, n - b * lociperblock);
                std::memcpy(block, alleles + b * lociperblock, static_cast<std::size_t>(nloci));
                gamete[b] = packblock(block);
            }
            alleles += n;
        }
    }
    void end()
    {
        const std::size_t batch = source.parts.size();
        samplepart &part = source.parts.emplace_back();
        part.path = [to = folder, batch](int64 chrom) {
            return to->path + "/" + numbertext(chrom) + "-" + std::to_string(batch);
        };
        part.nrows = capacity();
        for (int64 k = 0; k < nheld; ++k) part.rows.push_back(k);
        for (int64 h = 1; h <= nchrom(); ++h)
            writegenome(part.path(h), genomes[static_cast<std::size_t>(h - 1)]);
        nheld = 0;
    }

    allelesource &source;
    std::shared_ptr<scratchfolder> folder;
    std::vector<genomestore> genomes; // of the chromosomes
    int64 nsites = 0, bytesperindiv = 0, nheld = 0;
    std::vector<int8> rows[2];
};

// ntitles: lines before the first individual's.
allelesource packedtext(const std::string &path, int64 ntitles, std::vector<int64> nsites,
                        const std::vector<int64> &individuals, const std::string &scratchprefix)
{
    allelesource source;
    source.told = textpath(path);
    source.nsites = std::move(nsites);
    source.nsamples = std::ssize(individuals);
    const auto folder = std::make_shared<scratchfolder>(scratchprefix);
    source.scratch = folder;
    textpacker packer(source, folder);
    runtext text(path);
    text.in.skiprecords(ntitles);
    int64 before = 0;
    for (const int64 individual : individuals) {
        text.in.skiprecords(2 * (individual - before - 1));
        packer.add(text.in, individual);
        before = individual;
    }
    packer.finish();
    return source;
}

std::vector<int64> chipcounts(const finishedrun &run, const sitetables &tables)
{
    std::vector<int64> counts(static_cast<std::size_t>(run.nchrom()));
    for (const snpsite &snp : tables.snp) ++counts.at(static_cast<std::size_t>(snp.chrom - 1));
    return counts;
}
} // namespace

allelesource openalleles(const finishedrun &run, const exportoptions &options,
                         const sitetables &tables, const std::vector<int64> &individuals,
                         const std::string &scratchprefix)
{
    if (options.data == exportdata::founders) return founderhaplotypes(run);
    allelesource source;
    const bool onchip = options.data == exportdata::chip &&
                        (options.qtn == qtnchoice::asis || options.qtn == qtnchoice::without);
    if (haspackedgenomes(run, individuals)) {
        source = packedgenomes(run, individuals);
    } else if (onchip && istextthere(chipphasefile(options.chip))) {
        source = packedtext(chipphasefile(options.chip), 0, chipcounts(run, tables), individuals,
                            scratchprefix);
        source.origin = alleleorigin::chiptext;
    } else if (istextthere(sequencephasefile)) {
        source = packedtext(sequencephasefile, 1, run.nsites, individuals, scratchprefix);
        source.origin = alleleorigin::sequencetext;
    } else if (onchip) {
        refuse("the run left neither genomes nor " + chipphasefile(options.chip) +
               ": KeepChromosomesFolderYesNo,Yes in the specification of a run keeps the genomes");
    } else {
        refuse("the run left neither genomes nor " + std::string(sequencephasefile) +
               ": KeepChromosomesFolderYesNo,Yes or WriteFullSequenceOutOnOff,On in the "
               "specification of a run that is to be exported so");
    }
    source.nsamples = std::ssize(individuals);
    return source;
}

// ------------------------------------------------------------------ site by site

chromalleles::chromalleles(const allelesource &from, int64 chrom, bitorder orderin)
    : source(from), order(orderin),
      nwords(orderin == bitorder::bygamete ? (from.nsamples + 255) / 256 * 4
                                           : (from.nsamples + 127) / 128 * 4)
{
    const bool ishaplotypes = source.origin == alleleorigin::founders;
    // However many generations there are, some 32 MB for all of them.
    const std::size_t bytes = std::clamp<std::size_t>(
        (std::size_t{1} << 25) / (2 * source.parts.size()), std::size_t{1} << 12, buffersize);
    for (const samplepart &part : source.parts)
        files.emplace_back(part.path(chrom), part.nrows, source.nblock(chrom), ishaplotypes ? 1 : 2,
                           bytes);
    for (std::vector<std::int64_t> &column : columns)
        column.resize(static_cast<std::size_t>(nwords * 64));
    words.resize(static_cast<std::size_t>(2 * 64 * nwords));
}

// The block of all samples into the gamete's column, zeros behind the last.
void chromalleles::gather(int64 block, int64 m)
{
    std::vector<std::int64_t> &column = columns[m - 1];
    if (source.origin == alleleorigin::founders) {
        const int64 nrows = source.parts[0].nrows;
        // Both gametes come from one block, which can be read once.
        if (m == 1) {
            const int64 *const rows = files[0].block(block, 1);
            haplotypes.assign(rows, rows + nrows);
            haplotypes.resize(static_cast<std::size_t>(2 * source.nsamples));
        }
        for (int64 k = 0; k < source.nsamples; ++k)
            column[static_cast<std::size_t>(k)] =
                haplotypes[static_cast<std::size_t>(2 * k + m - 1)];
        return;
    }
    std::int64_t *to = column.data();
    for (std::size_t p = 0; p < files.size(); ++p) {
        const samplepart &part = source.parts[p];
        const int64 *const rows = files[p].block(block, m);
        if (std::ssize(part.rows) == part.nrows) {
            std::memcpy(to, rows, part.rows.size() * 8);
            to += part.nrows;
        } else {
            for (const int64 row : part.rows) *to++ = rows[row];
        }
    }
}

// Squares of 64 rows, even ones and odd ones, become words of each bit of the block.
void chromalleles::turn(const std::int64_t *even, const std::int64_t *odd, std::uint64_t *to)
{
    const int64 step = order == bitorder::bygamete ? 2 : 1; // between two even rows
    for (int64 w = 0; w < nwords; w += 4, even += 128 * step, odd += 128 * step) {
        fourwords squares[64];
        for (int64 r = 0; r < 32; ++r) {
            const std::int64_t *const one = even + step * r, *const two = odd + step * r;
            const int64 next = 32 * step; // square
            squares[2 * r] =
                fourwords{static_cast<std::uint64_t>(one[0]), static_cast<std::uint64_t>(one[next]),
                          static_cast<std::uint64_t>(one[2 * next]),
                          static_cast<std::uint64_t>(one[3 * next])};
            squares[2 * r + 1] =
                fourwords{static_cast<std::uint64_t>(two[0]), static_cast<std::uint64_t>(two[next]),
                          static_cast<std::uint64_t>(two[2 * next]),
                          static_cast<std::uint64_t>(two[3 * next])};
        }
        transposefour(squares);
        for (int64 bit = 0; bit < lociperblock; ++bit)
            std::memcpy(to + bit * nwords + w, &squares[bit], sizeof squares[bit]);
    }
}

void chromalleles::load(int64 block)
{
    for (int64 m = 1; m <= 2; ++m) gather(block, m);
    const std::int64_t *const one = columns[0].data(), *const two = columns[1].data();
    if (order == bitorder::bysample) {
        turn(one, two, words.data());
    } else {
        turn(one, one + 1, words.data());
        turn(two, two + 1, words.data() + static_cast<std::size_t>(64 * nwords));
    }
    current = block;
}
