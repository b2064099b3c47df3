#include "merge/mergefrequencies.h"

#include "allelerows.h"
#include "markers/extraction.h"
#include "pedigree/pedigreefiles.h"
#include "results/snpchips.h"
#include "traits/effectfiles.h"
#include "values/qtngenotypes.h"
#include "words.h"

#include <algorithm>
#include <vector>

namespace
{
// A line of an information file, with what is counted.
struct siteinformation {
    int64 number = 0, chrom = 0, site = 0; // columns 1 to 3
    double maf = 0, freq = 0, position = 0;
    int64 mutation = 0, carrier = 0; // QTN only
    double het = 0;
};

struct sitetable {
    siteset of;
    std::string title;
    std::vector<siteinformation> sites;
};

std::string wholegenomefile(siteset of)
{
    return of.ischip() ? snpinformationfile(of.chip) : informationfile(of.set);
}
std::string wholegenomegenotypes(siteset of)
{
    return of.ischip() ? chipgenotypefile(of.chip) : qtngenotypefile(of.set);
}

void readinformation(sitetable &table, int64 nsites)
{
    infile in(wholegenomefile(table.of), author::system);
    in.record();
    table.title = in.line();
    for (int64 k = 1; k <= nsites; ++k) {
        siteinformation site;
        in.record();
        in.identifier(k, "site");
        site.number = k;
        site.chrom = in.integer();
        site.site = in.integer();
        in.skipwords(table.of.ischip() ? 1 : 2); // the frequencies of before
        site.position = in.fraction();
        if (!table.of.ischip()) {
            site.mutation = in.integer();
            site.carrier = in.integer();
        }
        table.sites.push_back(site);
    }
    in.stopifmore();
}

// Counts a column of genotypes by value, row by row.
class genotypecounter
{
  public:
    explicit genotypecounter(std::size_t nsites) : counts(nsites), row(nsites) {}
    void read(infile &in, int64 id)
    {
        readallelerow(in, id, row.data(), static_cast<int64>(row.size()));
        for (std::size_t k = 0; k < row.size(); ++k) {
            genotypecounts &c = counts[k];
            c.n0 += row[k] == 0;
            c.n1 += row[k] == 1;
            c.n2 += row[k] == 2;
            c.nother += row[k] < 0 || row[k] > 2;
        }
    }
    const genotypecounts &operator[](std::size_t k) const { return counts[k]; }

  private:
    std::vector<genotypecounts> counts;
    std::vector<int8> row;
};

void countfrequencies(sitetable &table, int64 nindividuals)
{
    infile in(wholegenomegenotypes(table.of), author::system);
    genotypecounter counts(table.sites.size());
    for (int64 i = 1; i <= nindividuals; ++i) counts.read(in, i);
    for (std::size_t k = 0; k < table.sites.size(); ++k)
        calcallelefreqmerge(counts[k], table.sites[k].maf, table.sites[k].het, table.sites[k].freq);
}

void putvalues(textline &line, const sitetable &table, const siteinformation &site)
{
    putf(line, site.maf, 20, 10);
    if (!table.of.ischip()) putf(line, site.freq, 20, 10);
    putf(line, site.position, 20, 10);
    if (table.of.ischip()) return;
    puti(line, site.mutation, 20);
    puti(line, site.carrier, 20);
}

void writewholegenome(const sitetable &table)
{
    outfile out(wholegenomefile(table.of));
    out.writeline(textline(table.title));
    textline line;
    for (const siteinformation &site : table.sites) {
        for (const int64 key : {site.number, site.chrom, site.site}) puti(line, key, 20);
        putvalues(line, table, site);
        out.writeline(line);
    }
    out.close();
}

void writechromosome(const sitetable &table, int64 chrom)
{
    outfile information(informationfile(chrom, table.of));
    textline line;
    double het = 0;
    for (const siteinformation &site : table.sites) {
        if (site.chrom != chrom) continue;
        het += site.het;
        puti(line, site.number, 20);
        puti(line, site.site, 20);
        putvalues(line, table, site);
        information.writeline(line);
    }
    information.close();

    outfile summary(summaryfile(chrom, table.of));
    putf(line, het / static_cast<double>(table.sites.size()), 20, 10);
    summary.writeline(line);
    summary.close();

    if (table.of.ischip()) return;
    outfile frequencies(frequencyfile(chrom, table.of.set, 1));
    for (const bool own : {true, false})
        for (const siteinformation &site : table.sites) {
            if ((site.chrom == chrom) != own) continue;
            puti(line, site.number, 20);
            puti(line, site.site, 20);
            putf(line, site.freq, 20, 10);
            frequencies.writeline(line);
        }
    frequencies.close();
}
} // namespace

void calculatebothsnpandqtn(const state &s, int64 nindividuals, siteset of)
{
    sitetable table{of, {}, {}};
    readinformation(table, nsitesintotal(s, of));
    countfrequencies(table, nindividuals);
    writewholegenome(table);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) writechromosome(table, h);
}

void calcallelefreqmerge(const genotypecounts &genotypes, double &maf, double &het,
                         double &nonzeroallelefreq)
{
    for (int64 i = 1; i <= genotypes.nother; ++i) printline("Error in CalcAlleleFreqMerge case");
    const auto count0 = static_cast<float>(2 * genotypes.n0 + genotypes.n1);
    const auto count1 = static_cast<float>(2 * genotypes.n2 + genotypes.n1);
    const float freq0 = count0 / (count0 + count1), freq1 = count1 / (count0 + count1);
    maf = std::min(freq0, freq1);
    het = static_cast<double>(genotypes.n1) /
          static_cast<double>(genotypes.n0 + genotypes.n1 + genotypes.n2 + genotypes.nother);
    nonzeroallelefreq = freq1;
}

void calculatenewnbindivigen(int64 nindividuals)
{
    std::vector<generationcounts> generations;
    int64 gen = 0;
    for (const genderline &line : readgenderlines(nindividuals)) {
        if (line.generation != gen) generations.push_back({});
        gen = line.generation;
        generationcounts &counts = generations.back();
        ++counts.nindiv;
        ++(line.gender == 1 ? counts.nmal : counts.nfem);
    }
    writegenerationcounts(1, generations);
}

namespace
{
void writesetfrequencies(const state &s, qtnset set, int64 chrom, int64 gen, int64 firstindiv,
                         int64 nindividuals)
{
    const sitelist sites = readsites(informationfile(chrom, set), nsitesonchrom(s, set, chrom),
                                     s.sites.nsegreginclglobal(chrom));
    infile in(genotypefile(chrom, set, gen), author::system);
    genotypecounter counts(sites.size());
    for (int64 i = 0; i < nindividuals; ++i) counts.read(in, firstindiv + i);
    std::vector<int64> sums;
    for (std::size_t q = 0; q < sites.size(); ++q) sums.push_back(counts[q].n1 + 2 * counts[q].n2);
    writeqtnfrequencies(chrom, set, gen, sites, sums, nindividuals);
}
} // namespace

void writegenerationfrequencies(const state &s, int64 gen, int64 firstindiv, int64 nindividuals)
{
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        for (const qtnset set : setsinuse(s))
            if (gen > 1 || set == qtnset::recombination)
                writesetfrequencies(s, set, h, gen, firstindiv, nindividuals);
    }
}
