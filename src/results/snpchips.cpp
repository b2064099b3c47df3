#include "results/snpchips.h"

#include "allelerows.h"
#include "folders.h"
#include "results/gathering.h"
#include "runplan.h"
#include "words.h"

#include <vector>

namespace
{
// A row in other columns than usual: read free-form.
void parsealleles(infile &in, char *to, int64 n)
{
    std::vector<int8> alleles(static_cast<std::size_t>(n));
    in.alleles(alleles.data(), n, 1);
    putalleles(to, alleles.data(), n);
}

// The next row of a phase file: the individual's identifier, and n alleles.
void copyphaserow(infile &in, int64 individ, char *to, int64 n)
{
    in.record();
    in.identifier(individ, "individual");
    const std::string_view row = in.line();
    if (std::ssize(row) + 1 != allelerowlength(n) ||
        !copyalleletext(to, row.data() + alleleidwidth, n))
        parsealleles(in, to, n);
}

void gathergeneration(const state &s, int64 chip, int64 gen, individualrows &rows)
{
    std::vector<infile> chromfiles;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        chromfiles.emplace_back(phasefile(h, siteset(chip), gen), author::system);
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i) {
        rows.begin(i);
        for (int64 h = 1; h <= s.founders.nchrom; ++h) {
            infile &in = chromfiles[static_cast<std::size_t>(h - 1)];
            const int64 n = s.loci.nsnponthischipchrom(chip, h);
            copyphaserow(in, i, rows.text(1), n);
            copyphaserow(in, i, rows.text(2), n);
            rows.advance(n);
        }
        rows.write();
    }
    for (infile &in : chromfiles) in.stopifmore();
}

void writesnpmap(const state &s, int64 chip)
{
    outfile out(snpinformationfile(chip));
    textline line;
    puta(line,
         "               SnpId             ChromId     SnpSeqIdOnChrom             SnpFreq   "
         "SnpPhysicalPosOnChrom",
         104);
    out.writeline(line);
    int64 k = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        infile in(informationfile(h, siteset(chip)), author::system);
        for (int64 snp = 1; snp <= s.loci.nsnponthischipchrom(chip, h); ++snp) {
            in.record();
            in.integer(); // rank on the chromosome's part of the chip
            puti(line, ++k, 20);
            puti(line, h, 20);
            puti(line, in.integer(), 20);
            putf(line, in.fraction(), 20, 10);
            putf(line, in.fraction(), 20, 10);
            out.writeline(line);
        }
        in.stopifmore();
    }
    out.close();
}
} // namespace

std::vector<snpsite> readsnpmap(int64 chip)
{
    std::vector<snpsite> sites;
    infile in(snpinformationfile(chip), author::system);
    in.skiprecords(1);
    while (in.nextrecord()) {
        snpsite &snp = sites.emplace_back();
        in.skipwords(1); // its number, which is the line's
        snp.chrom = in.integer();
        snp.site = in.integer();
        snp.maf = in.fraction();
        snp.pos = in.fraction();
    }
    return sites;
}

void writeoutsnpchips(state &s, int64 firsttmpgen, int64 lasttmpgen)
{
    if (s.run.specstartgen == 1) makefolder(chipfolder, "WriteOutSnpChips", s.failures);
    for (int64 e = 1; e <= s.chips.nchip; ++e) {
        const int64 nsnp = nsitesintotal(s, siteset(e));
        outfile phases, genotypes;
        openresultfile(phases, s, chipphasefile(e), firsttmpgen, 2, nsnp, 0);
        openresultfile(genotypes, s, chipgenotypefile(e), firsttmpgen, 1, nsnp, 0);
        individualrows rows(phases, genotypes, nsnp);
        const int64 ngenerations = lasttmpgen - firsttmpgen + 1;
        for (int64 j = firsttmpgen; j <= lasttmpgen; ++j) {
            tellpart(s, runpart::chips, (e - 1) * ngenerations + j - firsttmpgen + 1,
                     s.chips.nchip * ngenerations,
                     "chip " + numbertext(e) + ", generation " + numbertext(j));
            gathergeneration(s, e, j, rows);
        }
        phases.close();
        genotypes.close();
        writesnpmap(s, e);
    }
}
