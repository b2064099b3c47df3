#include "markers/extraction.h"

#include "markers/sitepicker.h"
#include "words.h"

#include <algorithm>

namespace
{
constexpr std::size_t idwidth = 20;

char *putid(char *text, const textline &id)
{
    std::copy(id.begin(), id.end(), text);
    return text + id.size();
}

// Adds the genotypes of an individual to the sums per site.
void addgenotypes(const std::vector<int64> &picked1, const std::vector<int64> &picked2,
                  std::vector<int64> &sums)
{
    int8 genotypes[lociperblock];
    for (std::size_t k = 0; k < sums.size(); ++k) {
        const std::size_t p = k % lociperblock, b = k / lociperblock;
        if (p == 0) expandgenotypes(picked1[b], picked2[b], genotypes);
        sums[k] += genotypes[p];
    }
}

// The phase and the genotype file. sums: copies of allele 1 per site in the whole generation; none
// are counted for an empty vector.
void writesnpchipsandqtnfiles(const state &s, const std::string &phasefile,
                              const std::string &genotypefile, const sitelist &sites,
                              int64 startindiv, int64 endindiv, std::vector<int64> &sums)
{
    const sitepicker picker(sites);
    const int64 n = picker.nsites();
    const std::size_t rowlength = idwidth + 2 * sites.size() + 1;
    constexpr std::size_t slack = 2 * lociperblock; // the text of the last block is cut
    std::vector<int64> picked1(static_cast<std::size_t>(picker.npickedblocks()));
    std::vector<int64> picked2(picked1.size());
    outfile phases(phasefile), genotypes(genotypefile);
    textline id;
    for (int64 i = startindiv; i <= endindiv; ++i) {
        const int64 k = i - startindiv + 1;
        picker.pick(s.haplo.tmpgenome.gamete(k, 1), s.haplo.tmpgenome.gamete(k, 2), picked1.data(),
                    picked2.data());
        id.clear();
        puti(id, i, idwidth);
        char *text = phases.reserve(2 * rowlength + slack);
        text = putpickedalleles(putid(text, id), picked1.data(), n);
        *text++ = '\n';
        text = putpickedalleles(putid(text, id), picked2.data(), n);
        *text = '\n';
        phases.commit(2 * rowlength);
        text = genotypes.reserve(rowlength + slack);
        text = putpickedgenotypes(putid(text, id), picked1.data(), picked2.data(), n);
        *text = '\n';
        genotypes.commit(rowlength);
        if (!sums.empty()) addgenotypes(picked1, picked2, sums);
    }
    phases.close();
    genotypes.close();
}

// The sums were taken while the genotypes were written.
void computeqtnallelefrequency(const std::string &path, const sitelist &sites,
                               const std::vector<int64> &sums, int64 nindiv)
{
    outfile out(path);
    textline line;
    for (std::size_t q = 0; q < sites.size(); ++q) {
        puti(line, static_cast<int64>(q) + 1, 20);
        puti(line, sites[q], 20);
        putf(line, static_cast<double>(sums[q]) / static_cast<double>(2 * nindiv), 20, 10);
        out.writeline(line);
    }
    out.close();
}

std::string generationfile(int64 chrom, const std::string &name, int64 gen, const char *ending)
{
    return chromfolder(chrom) + name + "Generation" + numbertext(gen) + ending;
}

void fillqtn(const state &s, const char *information, const std::string &name, int64 chrom,
             int64 currentgen, int64 startindiv, int64 endindiv, int64 nsites, int64 nsnponarray)
{
    const sitelist sites = readsites(chromfolder(chrom) + information, nsnponarray, nsites);
    std::vector<int64> sums(sites.size());
    writesnpchipsandqtnfiles(s, generationfile(chrom, name + "Phase", currentgen, ".txt"),
                             generationfile(chrom, name + "Genotype", currentgen, ".txt"), sites,
                             startindiv, endindiv, sums);
    computeqtnallelefrequency(generationfile(chrom, name + "AlleleFreq", currentgen, ".txt"), sites,
                              sums, endindiv - startindiv + 1);
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
// One record: the id, and the integers that expand(block, to) gives for each block from 0.
template <class expansion>
void writesequencerecord(outfile &out, int64 id, int64 nblock, expansion expand)
{
    constexpr int64 chunk = 32; // blocks expanded at once, small enough for the cache
    int64 values[chunk * lociperblock];
    framewriter record(out, (nblock * lociperblock + 1) * 8);
    record.put(&id, 8);
    for (int64 b = 0; b < nblock; b += chunk) {
        const int64 n = std::min(chunk, nblock - b);
        for (int64 c = 0; c < n; ++c) expand(b + c, values + c * lociperblock);
        record.put(values, n * lociperblock * 8);
    }
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
        writesequencerecord(genotypes, i, nblock, [&](int64 b, int64 *values) {
            expandgenotypes(gamete1[b], gamete2[b], values);
        });
        writesequencerecord(phases, i, nblock,
                            [&](int64 b, int64 *values) { expandblock(gamete1[b], values); });
        writesequencerecord(phases, i, nblock,
                            [&](int64 b, int64 *values) { expandblock(gamete2[b], values); });
    }
    phases.close();
    genotypes.close();
}
