#include "markers/extraction.h"

#include "haplotypes/blocks.h"
#include "markers/sitepicker.h"
#include "words.h"

#include <cstring>

namespace
{
constexpr std::size_t idwidth = 20;

// The phase and the genotype file. sums: copies of allele 1 per site in the whole generation; none
// are counted for an empty vector.
void writesnpchipsandqtnfiles(const state &s, const std::string &phasefile,
                              const std::string &genotypefile, const sitelist &sites,
                              int64 startindiv, int64 endindiv, std::vector<int64> &sums)
{
    sitepicker picker(sites);
    const std::size_t rowlength = idwidth + 2 * sites.size() + 1;
    outfile phases(phasefile), genotypes(genotypefile);
    textline id;
    for (int64 i = startindiv; i <= endindiv; ++i) {
        const int64 k = i - startindiv + 1;
        picker.pick(s.haplo.tmpgenome.gamete(k, 1), s.haplo.tmpgenome.gamete(k, 2));
        char *const row1 = phases.reserve(2 * rowlength);
        char *const row2 = row1 + rowlength;
        char *const both = genotypes.reserve(rowlength);
        puti(id, i, idwidth);
        for (char *const row : {row1, row2, both}) {
            id.copy(row, idwidth);
            row[rowlength - 1] = '\n';
        }
        id.clear();
        picker.puttext(row1 + idwidth, row2 + idwidth, both + idwidth);
        for (std::size_t q = 0; q < sums.size(); ++q) sums[q] += both[idwidth + 2 * q + 1] - '0';
        phases.commit(2 * rowlength);
        genotypes.commit(rowlength);
    }
    phases.close();
    genotypes.close();
}

std::string generationfile(int64 chrom, const std::string &name, int64 gen, const char *ending)
{
    return chromfolder(chrom) + name + "Generation" + numbertext(gen) + ending;
}

} // namespace

// The sums are taken while the genotypes are written.
void writeqtnallelefrequency(int64 chrom, const std::string &set, int64 gen, const sitelist &sites,
                             const std::vector<int64> &sums, int64 nindiv)
{
    outfile out(generationfile(chrom, set + "AlleleFreq", gen, ".txt"));
    textline line;
    for (std::size_t q = 0; q < sites.size(); ++q) {
        puti(line, static_cast<int64>(q) + 1, 20);
        puti(line, sites[q], 20);
        putf(line, static_cast<double>(sums[q]) / static_cast<double>(2 * nindiv), 20, 10);
        out.writeline(line);
    }
    out.close();
}

namespace
{
void fillqtn(const state &s, const char *information, const std::string &name, int64 chrom,
             int64 currentgen, int64 startindiv, int64 endindiv, int64 nsites, int64 nsnponarray)
{
    const sitelist sites = readsites(chromfolder(chrom) + information, nsnponarray, nsites);
    std::vector<int64> sums(sites.size());
    writesnpchipsandqtnfiles(s, generationfile(chrom, name + "Phase", currentgen, ".txt"),
                             generationfile(chrom, name + "Genotype", currentgen, ".txt"), sites,
                             startindiv, endindiv, sums);
    writeqtnallelefrequency(chrom, name, currentgen, sites, sums, endindiv - startindiv + 1);
}
} // namespace

void fillarray(const state &s, int64 chrom, int64 chip, int64 currentgen, int64 startindiv,
               int64 endindiv, int64 nblock, int64 nloci, int64 nsnponarray)
{
    const std::string name = "Chip" + numbertext(chip);
    const sitelist sites =
        readsites(chromfolder(chrom) + name + "SnpInformation.txt", nsnponarray, nblock * nloci);
    std::vector<int64> nosums;
    writesnpchipsandqtnfiles(s, generationfile(chrom, name + "Phase", currentgen, ".txt"),
                             generationfile(chrom, name + "Genotype", currentgen, ".txt"), sites,
                             startindiv, endindiv, nosums);
}

void fillqtnunrestricted(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                         int64 endindiv, int64 nblock, int64 nloci, int64 nsnponarray)
{
    fillqtn(s, "UnRestrictedQtnInformation.txt", "UnrestrictedQtn", chrom, currentgen, startindiv,
            endindiv, nblock * nloci, nsnponarray);
}

void fillqtnrestricted(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                       int64 endindiv, int64 nblock, int64 nloci, int64 nsnponarray)
{
    fillqtn(s, "RestrictedQtnInformation.txt", "RestrictedQtn", chrom, currentgen, startindiv,
            endindiv, nblock * nloci, nsnponarray);
}

void fillqtnrecombination(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                          int64 endindiv, int64 nblock, int64 nloci, int64 nsnponarray)
{
    fillqtn(s, "RecombinationQtnInformation.txt", "RecombinationQtn", chrom, currentgen, startindiv,
            endindiv, nblock * nloci, nsnponarray);
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

void writeoutindivphase(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                        int64 endindiv, int64 nblock, int64)
{
    outfile phases(generationfile(chrom, "SequencePhase", currentgen, ".bin"));
    outfile genotypes(generationfile(chrom, "SequenceGenotype", currentgen, ".bin"));
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
