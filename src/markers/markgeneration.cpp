#include "markers/markgeneration.h"

#include "markers/chips.h"
#include "markers/extraction.h"

namespace
{
void extractgeneration(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv)
{
    for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
        fillarray(s, chrom, chip, currentgen, startindiv, endindiv);
    for (const qtnset set : setsinuse(s)) fillqtn(s, chrom, set, currentgen, startindiv, endindiv);
    if (s.run.fullseqoutonoff) writeoutindivphase(s, chrom, currentgen, startindiv, endindiv);
}
} // namespace

void markgeneration(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv)
{
    if (currentgen == 1) createsnpchipsandqtnarrays(s, chrom);
    extractgeneration(s, chrom, currentgen, startindiv, endindiv);
}
