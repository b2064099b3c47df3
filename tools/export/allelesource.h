// allelesource.h - where alleles come from, and how they are had site by site.
//
// Samples are numbered from 0 in the order in which they are written. Of a site the alleles of
// gamete m (1 or 2) are bits: sample k is bit k % 64 of word k / 64, and bits behind the last
// sample are 0; words are a multiple of four.
//
// Packed genomes are read as they lie. Text, which holds a row for each gamete, is packed first
// into files of the same layout, some individuals at a time, in a folder of its own that goes with
// the source.
#pragma once

#include "exportsites.h"
#include "haplotypes/blocks.h"
#include "haplotypes/genomefiles.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

enum class alleleorigin { packedgenomes, chiptext, sequencetext, founders };

// Samples that lie in one file of each chromosome.
struct samplepart {
    std::function<std::string(int64 chrom)> path;
    int64 nrows = 0;         // of the file
    std::vector<int64> rows; // of the samples, from 0
};

struct allelesource {
    alleleorigin origin = alleleorigin::packedgenomes;
    std::string told;              // what was taken, for the user
    std::vector<samplepart> parts; // the samples of all, one behind the other
    std::vector<int64> nsites;     // of chromosome h at offset h - 1, in the files
    int64 nsamples = 0;
    bool lasthaploid = false;      // an odd number of founder haplotypes
    std::shared_ptr<void> scratch; // the folder of what was packed, if any
    int64 nblock(int64 chrom) const
    {
        const int64 n = nsites[static_cast<std::size_t>(chrom - 1)];
        return (n + lociperblock - 1) / lociperblock;
    }
    // Place of a site in the files, from 1.
    int64 placeof(const exportsite &site) const
    {
        return origin == alleleorigin::chiptext ? site.chipplace : site.site;
    }
};

// Finds the alleles of the individuals. A plain stop with status 2 where the run didn't leave them,
// which tells the keys that would. scratchprefix: what the name of the folder for packed text begins
// with.
allelesource openalleles(const finishedrun &run, const exportoptions &options,
                         const sitetables &tables, const std::vector<int64> &individuals,
                         const std::string &scratchprefix);

// How both gametes' bits of a site lie: in words of their own, or those of sample k at 2k and 2k + 1.
enum class bitorder { bygamete, bysample };

// The alleles of a chromosome, block by block of 60 places, in rising order.
class chromalleles
{
  public:
    chromalleles(const allelesource &from, int64 chrom, bitorder order = bitorder::bygamete);
    // The bits of a place of a gamete, or of both, valid until the next block is gone to.
    const std::uint64_t *bits(int64 place, int64 m = 1)
    {
        const siteplace at = placeofsite(place);
        if (at.block != current) load(at.block);
        return words.data() + static_cast<std::size_t>(((m - 1) * 64 + 60 - at.position) * nwords);
    }
    int64 nwordspersite() const { return nwords; }

  private:
    void load(int64 block);
    void gather(int64 block, int64 m);
    void turn(const std::int64_t *even, const std::int64_t *odd, std::uint64_t *to);
    const allelesource &source;
    bitorder order;
    std::vector<genomeblocks> files; // of the parts
    int64 nwords, current = 0;
    std::vector<std::int64_t> columns[2]; // a block of all samples, by gamete
    std::vector<std::int64_t> haplotypes; // the same of the founders, two for each sample
    std::vector<std::uint64_t> words; // (2, 64, nwords) gamete, bit of the block, word; or one of
                                      // all, which has twice as many bits in a row
};
