// exportsites.h - which sites of a chromosome are written, and where they lie.
#pragma once

#include "exportoptions.h"
#include "finishedrun.h"
#include "results/snpchips.h"
#include "traits/effectfiles.h"

#include <array>
#include <string>
#include <vector>

struct exportsite {
    int64 site = 0;      // included site of the chromosome, from 1
    int64 chipplace = 0; // its place among the chip's SNP of the chromosome, from 1; 0 for none
    int64 bases = 0;     // 1 to the chromosome's length, rising
    double relative = 0; // position as the run has it
    double centimorgan = 0;
    bool mutation = false;
    unsigned qtnsets = 0; // bit k: it is a QTN of qtnsets[k]
};

// What tells the sites of all chromosomes.
struct sitetables {
    std::vector<snpsite> snp;                   // of the chip, where one is wanted
    std::array<std::vector<qtnsite>, 3> qtn;    // of qtnsets
    bool storedmaps = false;                    // the chromosomes' own maps are there
    std::vector<std::vector<double>> positions; // else by the map of the sequence, where there is
                                                // one: of chromosome h at offset h - 1, by site
};

// Reads them; resolves the chip of selection into options.chip. A plain stop with status 2 where the
// run has no such data, which tells the key that would leave it.
sitetables readsitetables(const finishedrun &run, exportoptions &options);
// The chromosomes asked for.
std::vector<int64> chosenchromosomes(const finishedrun &run, const exportoptions &options);

// The sites of a chromosome, in map order.
//
// Positions in bases are position x length, rounded, within 1 to the length, and pushed on by one
// where they would not rise; those that this would push beyond the end lie before it, one by one.
// Centimorgans follow the recombination of the run: the share of each block of 60 sites of the
// chromosome's length in Morgans, evenly within a block.
std::vector<exportsite> sitesofchrom(const finishedrun &run, const exportoptions &options,
                                     const sitetables &tables, int64 chrom);

// 1_35: site 35 of chromosome 1.
std::string siteid(int64 chrom, int64 site);
void putsiteid(textline &line, int64 chrom, int64 site);
// Unrestricted,Restricted: the sets of a site.
std::string qtnsetnames(const exportsite &site);
