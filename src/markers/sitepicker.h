// sitepicker.h - the alleles of some sites of both gametes of an individual, as text.
//
// Picking a site at a time and writing it as text costs more than writing the file. So the wanted
// sites are first moved together, many at once, into full words of 64, and these are expanded by a
// table of eight alleles.
#pragma once

#include "markers/sitesets.h"

class sitepicker
{
  public:
    // sites: ascending, from 1. usepext: by the processor's own instruction, if it has one.
    explicit sitepicker(const sitelist &sites, bool usepext = true);
    int64 nsites() const { return count; }
    // Takes the alleles of an individual from the blocks of its gametes, block 1 at offset 0.
    void pick(const int64 *gamete1, const int64 *gamete2);
    // Writes what was picked, two columns each: the alleles of both gametes, and the genotypes.
    // Each text has 2 x nsites() characters.
    void puttext(char *alleles1, char *alleles2, char *genotypes) const;

  private:
    // The wanted sites of one block.
    struct blockmask {
        int64 block = 0; // from 0
        int nwanted = 0;
        std::uint64_t mask = 0;
        int nmoves = 0;
        std::uint64_t moves[6] = {}; // that gather them
    };
    template <bool bypext>
    static std::uint64_t gather(const blockmask &from, std::uint64_t blockid);
    template <bool bypext> void pickby(const int64 *gamete1, const int64 *gamete2);
    std::vector<blockmask> masks;
    std::vector<std::uint64_t> picked1, picked2; // first site highest, the last word padded
    int64 count = 0;
    bool usepext = false;
};
