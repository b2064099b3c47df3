// snpchips.h - the chip data of the whole genome and of all generations, gathered from the files
// per chromosome and generation at the end of a run.
//
// Files, <e> the chip, nsnp its SNP over all chromosomes, in chromosome order:
//   SimulatedData/AllIndividualsSnpChips/Chip<e>Phase.txt      I20, then nsnp items I2: individual,
//       alleles; two lines per individual: gamete 1 (from the sire), gamete 2 (from the dam)
//   SimulatedData/AllIndividualsSnpChips/Chip<e>Genotype.txt   the same with genotypes 0, 1, 2; one
//       line per individual
//   SimulatedData/Chip<e>SnpInformation.txt   title, then 3I20, 2F20.10: running number,
//       chromosome, site on the chromosome, minor allele frequency, position
// Lines of earlier generations stay; what stands behind them is replaced. The map is written anew.
#pragma once

#include "markers/sitesets.h"
#include "state.h"

#include <string>
#include <vector>

constexpr const char *chipfolder = "./SimulatedData/AllIndividualsSnpChips";
inline std::string chipphasefile(int64 chip)
{
    return std::string(chipfolder) + "/Chip" + std::to_string(chip) + "Phase.txt";
}
inline std::string snpinformationfile(int64 chip)
{
    return "./SimulatedData/" + chipinformationname(chip);
}
inline std::string chipgenotypefile(int64 chip)
{
    return std::string(chipfolder) + "/Chip" + std::to_string(chip) + "Genotype.txt";
}

// The SNP of a chip, in the order of the chip, as its map has them.
struct snpsite {
    int64 chrom = 0, site = 0;
    double maf = 0, pos = 0;
};
std::vector<snpsite> readsnpmap(int64 chip);

// Gathers generations firsttmpgen to lasttmpgen. Individuals are numbered by the counts; the
// numbers in the files per chromosome are dropped.
// Draws, stops: none. A file that is missing, too short or malformed is an I/O error. A folder that
// can't be made is reported, and the run goes on.
// Cost: rows in the usual columns are checked and copied, never parsed. The files of one generation
// are open at a time.
void writeoutsnpchips(state &s, int64 firsttmpgen, int64 lasttmpgen);
