// coalescentoutput.h - the output of the coalescent simulator, read line by line and kept packed.
//
// The file: a "COMMAND:" and a "SEED:" line; for each segregating site a line "SITE:", index from
// 0, position, age, alleles; then a closing block with the number of haplotypes, the number of
// selected sites and their indices. Words are separated by tabs and blanks; numbers may stand in
// any form. An output that ends behind its "SEED:" line has no site. Lines with trees
// ("NEWICK_TREE:") are passed over.
#pragma once

#include "arrays.h"

#include <cstdint>
#include <string>
#include <vector>

// Sites with their alleles, one bit per allele. Stored in chunks of about a megabyte, so that the
// store grows without copies.
class sitestore
{
  public:
    explicit sitestore(int64 nhaplotypes);
    int64 nhaplos() const { return n; }
    int64 nsites() const { return sites; }
    // Packs n alleles, characters 0 and 1, behind the last site. False, and nothing kept, if
    // there is another character among them.
    bool add(double position, const char *alleles);
    // Site k, from 0.
    double position(int64 k) const { return chunks[chunkof(k)].positions[placeof(k)]; }
    // Alleles of haplotypes 8 x byte .. 8 x byte + 7 at site k, all from 0; the first in the
    // lowest bit. Bits behind the last haplotype are 0.
    const std::uint8_t *row(int64 k) const
    {
        return chunks[chunkof(k)].bits.data() + placeof(k) * static_cast<std::size_t>(rowbytes);
    }
    int64 bytesperrow() const { return rowbytes; }

  private:
    struct chunk {
        std::vector<double> positions;
        std::vector<std::uint8_t> bits;
    };
    std::size_t chunkof(int64 k) const { return static_cast<std::size_t>(k >> chunkbits); }
    std::size_t placeof(int64 k) const
    {
        return static_cast<std::size_t>(k & ((int64{1} << chunkbits) - 1));
    }
    std::vector<chunk> chunks;
    int64 n, rowbytes, sites = 0;
    int chunkbits; // a chunk holds 2 to this power sites
};

// Reads the whole output. All its sites go to store; selected gets the places (from 0, ascending)
// of those that the closing block names.
// Stops: an I/O error that names the line for an output that breaks off, is none of the
// simulator's, has another number of haplotypes than store, or holds more than one chromosome.
void readcoalescentoutput(const std::string &path, sitestore &store, std::vector<int64> &selected);
