#include "founders/sitenumbers.h"

#include "founders/stores.h"
#include "stops.h"
#include "words.h"

namespace
{
void checksitenumber(const state &s, int64 nqtnwanted, int64 code)
{
    if (nqtnwanted <= s.sites.nsegregincl) return;
    printline("ERROR: There are not enough QTN segregating");
    stopwithcode(code);
}
} // namespace

void setsitenumbers(state &s, int64 chrom)
{
    for (int64 chip = 1; chip <= s.chips.nchip; ++chip) {
        int64 &nsnponchip = s.loci.nsnponthischipchrom(chip, chrom);
        nsnponchip = s.chips.usesnpchiponoff ? s.chips.nsnpperchipperchrom(chip) : 1;
        if (!s.chips.usesnpchiponoff || nsnponchip <= s.sites.nsegregincl) continue;
        printline("ERROR: There are not enough SNP segregating for chip " + numbertext(chip));
        printline("       Required number of segregating SNPs: " + numbertext(nsnponchip));
        printline("       Found number of segregating SNPs:    " + numbertext(s.sites.nsegregincl));
        stopwithcode(110007);
    }

    // Each included mutation is a QTN beyond those asked for.
    s.loci.nqtnonthischrom(chrom) = s.qtn.nqtn / s.founders.nchrom + s.sites.nmutinclglobal(chrom);
    checksitenumber(s, s.loci.nqtnonthischrom(chrom), 110008);
    if (s.selection.recombselonoff) {
        s.loci.nqtnrecombonthischrom(chrom) = s.qtn.nqtnrecombperchrom;
        checksitenumber(s, s.loci.nqtnrecombonthischrom(chrom), 110009);
    }
}

void determinenbofsnpandqtn(state &s, int64 chrom)
{
    setsitenumbers(s, chrom);
    writesitenumbers(s, chrom);
}
