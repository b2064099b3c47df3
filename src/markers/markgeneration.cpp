#include "markers/markgeneration.h"

#include "haplotypes/blocks.h"
#include "markers/chips.h"
#include "markers/extraction.h"

namespace
{
void extractgeneration(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                       int64 endindiv)
{
    const int64 nblock = s.haplo.nblock;
    for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
        fillarray(s, chrom, chip, currentgen, startindiv, endindiv, nblock, lociperblock,
                  s.loci.nsnponthischipchrom(chip, chrom));
    const int64 nqtn = s.loci.nqtnonthischrom(chrom);
    fillqtnunrestricted(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock, nqtn);
    fillqtnrestricted(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock, nqtn);
    if (s.selection.recombselonoff)
        fillqtnrecombination(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock,
                             s.loci.nqtnrecombonthischrom(chrom));
    if (s.run.fullseqoutonoff)
        writeoutindivphase(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock);
}
} // namespace

void markgeneration(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv)
{
    if (currentgen == 1) createsnpchipsandqtnarrays(s, chrom);
    extractgeneration(s, chrom, currentgen, startindiv, endindiv);
}
