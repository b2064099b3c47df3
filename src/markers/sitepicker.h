// sitepicker.h - the alleles of some sites of a gamete, packed into blocks of their own.
//
// Picking a site at a time and writing it as text costs more than writing the file. So the wanted
// sites are first moved together, many at once, into full blocks of 60, and these are expanded by
// the tables of blocks.h.
#pragma once

#include "haplotypes/blocks.h"
#include "markers/sitesets.h"

class sitepicker
{
  public:
    // sites: ascending, from 1.
    explicit sitepicker(const sitelist &sites);
    int64 nsites() const { return count; }
    // Blocks that pick() fills; the last one is padded with alleles 0.
    int64 npickedblocks() const { return (count + lociperblock - 1) / lociperblock; }
    // gamete1, gamete2: the blocks of both gametes, block 1 at offset 0.
    // picked1, picked2: out, npickedblocks() blocks each.
    void pick(const int64 *gamete1, const int64 *gamete2, int64 *picked1, int64 *picked2) const;

  private:
    // The wanted sites of one block.
    struct blockmask {
        int64 block = 0; // from 0
        int nwanted = 0;
        std::size_t firststep = 0; // of the moves that gather them
        std::uint64_t mask = 0;
    };
    std::uint64_t gather(const blockmask &from, std::uint64_t blockid) const;
    std::vector<blockmask> masks;
    std::vector<std::uint64_t> moves; // six for each block
    int64 count = 0;
};

// Writes the alleles of n sites, two columns each, from their packed blocks; gives the end of the
// text. Up to 120 characters behind the end are overwritten.
char *putpickedalleles(char *text, const int64 *picked, int64 n);
// The same for the genotypes of two gametes.
char *putpickedgenotypes(char *text, const int64 *picked1, const int64 *picked2, int64 n);
