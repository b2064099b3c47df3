#include "markers/extraction.h"

#include "allelerows.h"
#include "haplotypes/blocks.h"
#include "markers/sitepicker.h"
#include "words.h"

#include <cstring>

namespace
{
// The phase and the genotype file. sums: copies of allele 1 per site in the whole generation; none
// are counted for an empty vector.
void writesnpchipsandqtnfiles(const state &s, int64 chrom, siteset of, int64 currentgen,
                              const sitelist &sites, int64 startindiv, int64 endindiv,
                              std::vector<int64> &sums)
{
    sitepicker picker(sites);
    const int64 n = std::ssize(sites);
    outfile phases(phasefile(chrom, of, currentgen));
    outfile genotypes(genotypefile(chrom, of, currentgen));
    for (int64 i = startindiv; i <= endindiv; ++i) {
        const int64 k = i - startindiv + 1;
        picker.pick(s.haplo.tmpgenome.gamete(k, 1), s.haplo.tmpgenome.gamete(k, 2));
        char *const gametes = beginallelerows(phases, i, n, 2);
        char *const both = beginallelerows(genotypes, i, n);
        picker.puttext(gametes, gametes + allelerowlength(n), both);
        for (std::size_t q = 0; q < sums.size(); ++q) sums[q] += both[2 * q + 1] - '0';
        endallelerows(phases, n, 2);
        endallelerows(genotypes, n);
    }
    phases.close();
    genotypes.close();
}

// Of the chromosome at hand.
int64 nsites(const state &s)
{
    return s.haplo.tmpgenome.nblock() * lociperblock;
}
} // namespace

// The sums are taken while the genotypes are written.
void writeqtnfrequencies(int64 chrom, qtnset set, int64 gen, const sitelist &sites,
                         const std::vector<int64> &sums, int64 nindiv)
{
    outfile out(frequencyfile(chrom, set, gen));
    textline line;
    for (std::size_t q = 0; q < sites.size(); ++q) {
        puti(line, static_cast<int64>(q) + 1, 20);
        puti(line, sites[q], 20);
        putf(line, static_cast<double>(sums[q]) / static_cast<double>(2 * nindiv), 20, 10);
        out.writeline(line);
    }
    out.close();
}

void fillarray(state &s, int64 chrom, int64 chip, int64 currentgen, int64 startindiv,
               int64 endindiv)
{
    const siteset of(chip);
    std::vector<int64> nosums;
    writesnpchipsandqtnfiles(s, chrom, of, currentgen, keptsites(s, chrom, of, nsites(s)),
                             startindiv, endindiv, nosums);
}

void fillqtn(state &s, int64 chrom, qtnset set, int64 currentgen, int64 startindiv, int64 endindiv)
{
    const sitelist &sites = keptsites(s, chrom, set, nsites(s));
    std::vector<int64> sums(sites.size());
    writesnpchipsandqtnfiles(s, chrom, set, currentgen, sites, startindiv, endindiv, sums);
    writeqtnfrequencies(chrom, set, currentgen, sites, sums, endindiv - startindiv + 1);
}

// ------------------------------------------------------- all sites

namespace
{
constexpr int64 blockbytes = lociperblock * 8; // the integers of a block

// The alleles of a block, and the genotypes of two, as integers at any address.
void putintegers(char *to, int64 blockid)
{
    for (int i = 0; i < 15; ++i)
        std::memcpy(to + 32 * i, &blocktables::integers[(blockid >> (56 - 4 * i)) & 15], 32);
}
void putintegers(char *to, int64 blockid1, int64 blockid2)
{
    int64 genotypes[lociperblock];
    expandgenotypes(blockid1, blockid2, genotypes);
    std::memcpy(to, genotypes, blockbytes);
}

// One record: the id, and what put(block, to) gives for each block from 0.
template <class maker> void writesequencerecord(outfile &out, int64 id, int64 nblock, maker put)
{
    framewriter record(out, (nblock * lociperblock + 1) * 8);
    record.put(&id, 8);
    for (int64 b = 0; b < nblock; ++b) record.putmade(blockbytes, [&](char *to) { put(b, to); });
    record.finish();
}
} // namespace

std::string sequencephasefileof(int64 chrom, int64 gen)
{
    return chromfolder(chrom) + "SequencePhaseGeneration" + numbertext(gen) + ".bin";
}
std::string sequencegenotypefileof(int64 chrom, int64 gen)
{
    return chromfolder(chrom) + "SequenceGenotypeGeneration" + numbertext(gen) + ".bin";
}

void writeoutindivphase(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                        int64 endindiv)
{
    const int64 nblock = s.haplo.tmpgenome.nblock();
    outfile phases(sequencephasefileof(chrom, currentgen));
    outfile genotypes(sequencegenotypefileof(chrom, currentgen));
    for (int64 i = startindiv; i <= endindiv; ++i) {
        const int64 *const gamete1 = s.haplo.tmpgenome.gamete(i - startindiv + 1, 1);
        const int64 *const gamete2 = s.haplo.tmpgenome.gamete(i - startindiv + 1, 2);
        writesequencerecord(genotypes, i, nblock,
                            [&](int64 b, char *to) { putintegers(to, gamete1[b], gamete2[b]); });
        writesequencerecord(phases, i, nblock,
                            [&](int64 b, char *to) { putintegers(to, gamete1[b]); });
        writesequencerecord(phases, i, nblock,
                            [&](int64 b, char *to) { putintegers(to, gamete2[b]); });
    }
    phases.close();
    genotypes.close();
}
