#include "plinkfiles.h"

#include "bitsquares.h"
#include "exportsamples.h"
#include "shell.h"
#include "stops.h"
#include "values/phenotypes.h"
#include "words.h"

#include <algorithm>
#include <cstring>

namespace
{
[[noreturn]] void refuse(const std::string &reason)
{
    std::fprintf(stderr, "ERROR: %s\n", reason.c_str());
    plainstop(2);
}

// ------------------------------------------------------------------ individuals

// 1 male, 2 female, 0 unknown, of all individuals of the run; individual i at offset i - 1.
std::vector<int64> sexes(const finishedrun &run)
{
    const auto n = static_cast<std::size_t>(run.nindividuals());
    std::vector<char> issire(n + 1), isdam(n + 1);
    const auto mark = [&](std::vector<char> &role, int64 parent) {
        if (parent >= 1 && parent <= run.nindividuals()) role[static_cast<std::size_t>(parent)] = 1;
    };
    for (int64 i = 1; i <= run.nindividuals(); ++i) {
        mark(issire, run.line(i).newsire);
        mark(isdam, run.line(i).newdam);
    }
    std::vector<int64> sex = run.gender;
    for (std::size_t i = 1; i <= n; ++i)
        if (issire[i] || isdam[i]) sex[i - 1] = issire[i] && isdam[i] ? 0 : issire[i] ? 1 : 2;
    return sex;
}

std::string parentname(int64 parent)
{
    return parent > 0 ? samplename(parent) : "0";
}

// The text of the phenotype asked for; -9 where none is.
std::string phenotypetext(const exportjob &job, int64 individual)
{
    const exportoptions &options = job.options;
    if (options.phenotype == phenotypekind::none) return "-9";
    const state &s = *job.run.s;
    const array3<double> &values =
        options.phenotype == phenotypekind::tbv ? s.values.tbv : s.values.tpv;
    return filedvalue(values(individual, s.qtn.qtnmodel, options.trait));
}

struct familyline {
    std::string id, sire, dam, phenotype;
    int64 sex = 0;
};

std::vector<familyline> familylines(const exportjob &job, const std::vector<int64> &individuals)
{
    if (job.options.phenotype != phenotypekind::none) {
        if (job.options.trait > job.run.s->traits.ntraits)
            refuse("--phenotype: the run has " + numbertext(job.run.s->traits.ntraits) + " traits");
        loadvalues(job.run);
    }
    const std::vector<int64> sex = sexes(job.run);
    std::vector<familyline> lines;
    for (const int64 i : individuals) {
        const pedigreeline &row = job.run.line(i);
        lines.push_back({samplename(i), parentname(row.newsire), parentname(row.newdam),
                         phenotypetext(job, i), sex[static_cast<std::size_t>(i - 1)]});
    }
    return lines;
}

void writefam(const exportjob &job, const std::vector<int64> &individuals, const std::string &path)
{
    outfile out(path);
    for (const familyline &line : familylines(job, individuals))
        out.writeline("0\t" + line.id + "\t" + line.sire + "\t" + line.dam + "\t" +
                      numbertext(line.sex) + "\t" + line.phenotype);
    out.close();
}

void writepsam(const exportjob &job, const std::vector<int64> &individuals, const std::string &path)
{
    const bool hasphenotype = job.options.phenotype != phenotypekind::none;
    const std::string name = (job.options.phenotype == phenotypekind::tbv ? "tbv" : "trait") +
                             numbertext(job.options.trait);
    outfile out(path);
    out.writeline("#IID\tPAT\tMAT\tSEX" + (hasphenotype ? "\t" + name : std::string()));
    for (const familyline &line : familylines(job, individuals))
        out.writeline(line.id + "\t" + line.sire + "\t" + line.dam + "\t" +
                      (line.sex == 0 ? "NA" : numbertext(line.sex)) +
                      (hasphenotype ? "\t" + line.phenotype : std::string()));
    out.close();
}

// ------------------------------------------------------------------ sites

void writebimline(outfile &out, textline &line, int64 chrom, const exportsite &site)
{
    line.clear();
    puti(line, chrom, 0);
    line += '\t';
    putsiteid(line, chrom, site.site);
    line += '\t';
    putg(line, site.centimorgan, 0, 10);
    line += '\t';
    puti(line, site.bases, 0);
    line += "\tT\tA";
    out.writeline(line);
}

// 00 two copies of T, 10 one, 11 none; two bits for each sample, the first lowest.
class bedwriter
{
  public:
    bedwriter(const std::string &path, int64 nsamplesin) : out(path), nsamples(nsamplesin)
    {
        out.write(std::string_view("\x6c\x1b\x01", 3)); // a .bed, site by site
    }
    // Both alleles of each sample, one behind the other.
    void write(const std::uint64_t *pairs, int64 nwords)
    {
        const auto n = static_cast<std::size_t>(nwords);
        char *const start = out.reserve(8 * n);
        countpairs(pairs, n, start);
        const int64 nbytes = (nsamples + 3) / 4;
        // What is behind the last sample in its byte is 0.
        const int64 rest = nsamples % 4;
        if (rest > 0) start[nbytes - 1] &= static_cast<char>((1 << 2 * rest) - 1);
        out.commit(static_cast<std::size_t>(nbytes));
    }
    void close() { out.close(); }

  private:
    outfile out;
    int64 nsamples;
};
} // namespace

int64 writeplink(const exportjob &job, const std::vector<int64> &individuals, newfiles &files)
{
    const std::string bed = files.add(job.options.output + ".bed");
    const std::string bim = files.add(job.options.output + ".bim");
    const std::string fam = files.add(job.options.output + ".fam");
    writefam(job, individuals, fam);
    bedwriter genotypes(bed, job.alleles.nsamples);
    outfile sites(bim);
    textline line;
    int64 nwritten = 0;
    // The lines of a chromosome's sites are written as soon as they are known.
    sitesahead ahead(
        job, [&](int64 chrom, const exportsite &site) { writebimline(sites, line, chrom, site); });
    for (const int64 chrom : job.chromosomes) {
        chromalleles alleles(job.alleles, chrom, bitorder::bysample);
        for (const exportsite &site : ahead.next()) {
            genotypes.write(alleles.bits(job.alleles.placeof(site)), alleles.nwordspersite());
            ++nwritten;
        }
    }
    genotypes.close();
    sites.close();
    return nwritten;
}

namespace
{
// The sites with their map, in place of plink2's own, which has none.
void writepvar(const exportjob &job, const std::string &path)
{
    outfile out(path);
    for (const int64 chrom : job.chromosomes)
        out.writeline("##contig=<ID=" + numbertext(chrom) +
                      ",length=" + numbertext(job.run.chrlength) + ">");
    out.writeline("##INFO=<ID=MUT,Number=0,Type=Flag,Description=\"De novo mutation\">");
    out.writeline("##INFO=<ID=QTN,Number=.,Type=String,Description=\"Sets of QTN in which the site "
                  "is\">");
    out.writeline("#CHROM\tPOS\tID\tREF\tALT\tINFO\tCM");
    textline line;
    for (const int64 chrom : job.chromosomes)
        for (const exportsite &site : sitesofchrom(job.run, job.options, job.tables, chrom)) {
            line = numbertext(chrom) + "\t" + numbertext(site.bases) + "\t" +
                   siteid(chrom, site.site) + "\tA\tT\t";
            std::string info = site.mutation ? "MUT" : "";
            if (site.qtnsets != 0) info += (info.empty() ? "" : ";") + ("QTN=" + qtnsetnames(site));
            line += (info.empty() ? "." : info) + "\t";
            putg(line, site.centimorgan, 0, 10);
            out.writeline(line);
        }
    out.close();
}
} // namespace

namespace
{
// Beyond the 22 autosomes of man, which it takes for granted, numbers must not mean X and Y.
int64 autosomes(const exportjob &job)
{
    const int64 most = 95;
    if (job.chromosomes.back() > most)
        refuse("--to pgen: plink2 knows " + numbertext(most) + " chromosomes at most");
    return std::max<int64>(job.run.nchrom(), 22);
}

void runplink2(const exportjob &job, const std::string &folder)
{
    const std::string log = folder + "/out";
    const std::string command = "plink2 --bcf " + shellword(folder + "/all.bcf") + " --chr-set " +
                                numbertext(std::min<int64>(autosomes(job), 95)) + " --threads " +
                                std::to_string(job.options.nthreads) + " --make-pgen --out " +
                                shellword(folder + "/all") + " >" + shellword(log) + " 2>&1";
    const int status = shellstatus(command);
    if (status == 0) return;
    if (status == 127) refuse("--to pgen: plink2 is not installed (Debian: plink2)");
    infile in(log);
    while (in.nextrecord())
        std::fprintf(stderr, "%.*s\n", static_cast<int>(in.line().size()), in.line().data());
    refuse("--to pgen: plink2 failed with status " + std::to_string(status));
}
} // namespace

int64 writepgen(const exportjob &job, const std::vector<int64> &individuals, newfiles &files)
{
    const std::string prefix = job.options.output;
    const std::string pgen = files.add(prefix + ".pgen");
    const std::string pvar = files.add(prefix + ".pvar");
    const std::string psam = files.add(prefix + ".psam");
    autosomes(job);
    const scratchfolder scratch(prefix);
    const int64 nwritten = writepassingbcf(job, scratch.path + "/all.bcf");
    runplink2(job, scratch.path);
    if (std::rename((scratch.path + "/all.pgen").c_str(), pgen.c_str()) != 0)
        ioerrno(pgen, "can't be put in place");
    writepsam(job, individuals, psam);
    writepvar(job, pvar);
    return nwritten;
}
