#include "tables.h"

#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "words.h"

#include <map>

namespace
{
// A line under construction.
struct tabline {
    textline text;
    void put(const std::string &value)
    {
        if (!text.empty()) text += '\t';
        text += value;
    }
    void put(const char *value) { put(std::string(value)); }
    void put(int64 value) { put(numbertext(value)); }
    void put(double value) { put(filedvalue(value)); }
};

template <class... T> void puttabbed(tabline &line, const T &...values)
{
    (line.put(values), ...);
}

std::string modelname(const state &s, int64 p)
{
    return s.loci.model(p).name;
}

// ------------------------------------------------------------------ individuals

void writeindividuals(const finishedrun &run, const std::vector<int64> &individuals,
                      const std::string &path)
{
    const state &s = *run.s;
    loadvalues(run);
    const std::pair<const char *, const array3<double> *> kinds[] = {
        {"tbv", &s.values.tbv}, {"tdv", &s.values.tdv}, {"tpv", &s.values.tpv}};
    outfile out(path);
    tabline line;
    puttabbed(line, "individual", "generation", "sire", "dam", "gender");
    for (int64 t = 1; t <= s.traits.ntraits; ++t)
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
            for (const auto &[name, values] : kinds)
                line.put(name + numbertext(t) + "." + modelname(s, p));
    out.writeline(line.text);
    for (const int64 i : individuals) {
        const pedigreeline &row = run.line(i);
        puttabbed(line, i, run.generationof(i), row.newsire, row.newdam,
                  run.gender[static_cast<std::size_t>(i - 1)]);
        for (int64 t = 1; t <= s.traits.ntraits; ++t)
            for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
                for (const auto &[name, values] : kinds) line.put((*values)(i, p, t));
        out.writeline(line.text);
    }
    out.close();
}

// ------------------------------------------------------------------ sites

// Minor allele frequencies of the founders, as far as the run told them: of SNP and QTN.
std::map<std::pair<int64, int64>, double> knownfrequencies(const sitetables &tables)
{
    std::map<std::pair<int64, int64>, double> known;
    for (const snpsite &snp : tables.snp) known[{snp.chrom, snp.site}] = snp.maf;
    for (const std::vector<qtnsite> &set : tables.qtn)
        for (const qtnsite &qtn : set) known[{qtn.chrom, qtn.site}] = qtn.maf;
    return known;
}

void writesites(const finishedrun &run, const exportoptions &options, const sitetables &tables,
                const std::string &path)
{
    const auto frequencies = knownfrequencies(tables);
    outfile out(path);
    tabline line;
    puttabbed(line, "chromosome", "site", "id", "bases", "position", "centimorgan", "maf",
              "mutation", "qtn");
    out.writeline(line.text);
    for (const int64 h : chosenchromosomes(run, options))
        for (const exportsite &site : sitesofchrom(run, options, tables, h)) {
            const auto known = frequencies.find({h, site.site});
            puttabbed(line, h, site.site, siteid(h, site.site), site.bases, site.relative,
                      site.centimorgan,
                      known == frequencies.end() ? std::string("NA") : filedvalue(known->second),
                      int64{site.mutation},
                      site.qtnsets == 0 ? std::string("NA") : qtnsetnames(site));
            out.writeline(line.text);
        }
    out.close();
}

// ------------------------------------------------------------------ QTN

// Positions in bases of all QTN, by chromosome and site.
std::map<std::pair<int64, int64>, int64>
basesofqtn(const finishedrun &run, const exportoptions &options, const sitetables &tables)
{
    exportoptions onlyqtn = options;
    onlyqtn.qtn = qtnchoice::only;
    std::map<std::pair<int64, int64>, int64> bases;
    for (const int64 h : chosenchromosomes(run, options))
        for (const exportsite &site : sitesofchrom(run, onlyqtn, tables, h))
            bases[{h, site.site}] = site.bases;
    return bases;
}

void writeqtn(const finishedrun &run, const exportoptions &options, const sitetables &tables,
              const std::string &path)
{
    const auto bases = basesofqtn(run, options, tables);
    std::vector<effecttable> effects;
    for (const qtnset set : setsinuse(*run.s))
        effects.push_back(
            readeffecttable(*run.s, set, std::ssize(tables.qtn[static_cast<std::size_t>(set)])));
    outfile out(path);
    tabline line;
    puttabbed(line, "set", "qtn", "chromosome", "site", "id", "bases", "position", "maf",
              "frequency", "mutation", "carrier");
    for (const effecttable &table : effects)
        for (const std::string &name : table.names) line.put(name);
    out.writeline(line.text);
    for (std::size_t k = 0; k < effects.size(); ++k)
        for (std::size_t q = 0; q < tables.qtn[k].size(); ++q) {
            const qtnsite &qtn = tables.qtn[k][q];
            const auto at = bases.find({qtn.chrom, qtn.site});
            if (at == bases.end()) continue; // of a chromosome that isn't asked for
            puttabbed(line, nameofset(qtnsets[k]), static_cast<int64>(q) + 1, qtn.chrom, qtn.site,
                      siteid(qtn.chrom, qtn.site), at->second, qtn.pos, qtn.maf, qtn.referencefreq,
                      qtn.mutation, qtn.carrier);
            // Effects of the other sets are not this QTN's.
            for (std::size_t other = 0; other < effects.size(); ++other)
                for (std::size_t c = 0; c < effects[other].names.size(); ++c)
                    line.put(other == k ? filedvalue(effects[k].rows[q][c]) : std::string("NA"));
            out.writeline(line.text);
        }
    out.close();
}

// ------------------------------------------------------------------ generations

void writegenerations(const finishedrun &run, const std::string &path)
{
    const state &s = *run.s;
    std::map<std::pair<int64, int64>, std::vector<double>> variances;
    for (const variancesofmodel &line : readgenicvariances(s))
        variances[{line.generation, line.model}] = line.values;
    outfile out(path);
    tabline line;
    puttabbed(line, "generation", "individuals", "trait", "model", "meantbv", "additivegenic",
              "dominancegenic", "additivegenetic", "dominancegenetic");
    out.writeline(line.text);
    for (const meanofgeneration &mean : readmeans()) {
        if (mean.generation < 1 || mean.generation > run.ngenerations()) continue;
        const auto g = static_cast<std::size_t>(mean.generation);
        puttabbed(line, mean.generation, run.cumindiv[g] - run.cumindiv[g - 1], mean.trait,
                  modelname(s, mean.model), mean.meantbv);
        const std::vector<double> &values = variances[{mean.generation, mean.model}];
        for (int64 kind = 0; kind < 4; ++kind) {
            const auto at = static_cast<std::size_t>(kind * s.traits.ntraits + mean.trait - 1);
            line.put(at < values.size() ? filedvalue(values[at]) : std::string("NA"));
        }
        out.writeline(line.text);
    }
    out.close();
}
} // namespace

void writetables(const finishedrun &run, const exportoptions &options, const sitetables &tables,
                 const std::vector<int64> &individuals, newfiles &files)
{
    const auto path = [&](const char *name) {
        return files.add(options.output + "." + name + ".tsv");
    };
    writeindividuals(run, individuals, path("individuals"));
    writesites(run, options, tables, path("sites"));
    writeqtn(run, options, tables, path("qtn"));
    writegenerations(run, path("generations"));
}
