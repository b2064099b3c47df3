#include "founders.h"

#include "macs/draws.h"
#include "macs/siteoutput.h"
#include "variantreader.h"

#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{
// Why a site can't be taken.
enum class defect {
    none,
    multiallelic,
    doubled,
    beyond,
    nogenotypes,
    missing,
    unphased,
    ploidy,
};
constexpr std::size_t ndefects = 8;
constexpr const char *defectnames[ndefects] = {"",
                                               "with more than two alleles",
                                               "at the position of the record before",
                                               "beyond the chromosome",
                                               "without genotypes",
                                               "with missing genotypes",
                                               "unphased",
                                               "with another ploidy"};

struct founderreader {
    const founderfile &settings;
    const macs::macsoptions &options;
    int64 seed;
    variantreader in;
    std::vector<int64> ploidy;   // of the samples, by the first record taken; empty before
    std::vector<char> taken;     // haplotypes of the file, 1 for those that are written
    std::vector<char> alleles{}; // 0 and 1, as characters, of all haplotypes of the file
    int64 lastposition = 0, nseen = 0, nalike = 0;
    int64 nskipped[ndefects] = {};

    std::string remedy(defect what) const;
    std::string told(defect what) const;
    defect judgeplace();
    defect readgenotypes();
    void takeploidy(const std::int32_t *entries, int64 width);
    void choosehaplotypes();
    void write(macs::sitewriter &out);
    void readall(macs::sitewriter &out);
    void note() const;
};

std::string founderreader::told(defect what) const
{
    switch (what) {
    case defect::multiallelic:
        return "has " + numbertext(in.nalleles()) + " alleles, two are wanted";
    case defect::doubled:
        return "a record at this position came before";
    case defect::beyond:
        return "lies beyond the chromosome's " + numbertext(static_cast<int64>(options.length)) +
               " bases";
    case defect::nogenotypes:
        return "has no genotypes (GT)";
    case defect::missing:
        return "has a missing genotype";
    case defect::unphased:
        return "has an unphased genotype";
    case defect::ploidy:
        return "has another number of alleles for a sample than the records before";
    case defect::none:
        break;
    }
    return "";
}

std::string founderreader::remedy(defect what) const
{
    const std::string skip = ", or --skip in Founders.txt, which leaves such sites out";
    switch (what) {
    case defect::multiallelic:
        return "keep biallelic sites (bcftools view -m2 -M2)" + skip;
    case defect::doubled:
        return "join or remove such records (bcftools norm -m +any, -d all)" + skip;
    case defect::beyond:
        return "raise ChromosomeLengthBasesMaCS" + skip;
    case defect::nogenotypes:
        return "the file must hold genotypes" + skip;
    case defect::missing:
        return "impute genotypes before" + skip;
    case defect::unphased:
        return "phase genotypes before (0|1 in place of 0/1)" + skip;
    case defect::ploidy:
        return "keep autosomes alone" + skip;
    case defect::none:
        break;
    }
    return "";
}

// What can be told before the genotypes are looked at.
defect founderreader::judgeplace()
{
    const int64 position = in.position();
    if (position < lastposition)
        in.complain("lies before the record before it: sort the file (bcftools sort)");
    const bool isdoubled = position == lastposition;
    lastposition = position;
    if (in.nalleles() > 2) return defect::multiallelic;
    if (static_cast<double>(position) > options.length) return defect::beyond;
    return isdoubled ? defect::doubled : defect::none;
}

void founderreader::takeploidy(const std::int32_t *entries, int64 width)
{
    for (int64 i = 0; i < in.nsamples(); ++i) {
        int64 n = 0;
        while (n < width && entries[i * width + n] != bcf_int32_vector_end) ++n;
        ploidy.push_back(n);
    }
    choosehaplotypes();
}

// Which haplotypes of the file are written.
void founderreader::choosehaplotypes()
{
    int64 nhaplotypes = 0;
    for (const int64 n : ploidy) nhaplotypes += n;
    const int64 wanted = options.nhaplotypes;
    if (nhaplotypes < wanted)
        ioerror(in.path(), "has " + numbertext(nhaplotypes) + " haplotypes (of " +
                               numbertext(in.nsamples()) + " samples), and " + numbertext(wanted) +
                               " are asked for: lower NumberOfHaplotypes");
    taken.assign(static_cast<std::size_t>(nhaplotypes), 0);
    alleles.resize(taken.size());
    macs::randomstream random(seed);
    int64 left = nhaplotypes, missing = wanted;
    for (char &one : taken) {
        if (settings.first || nhaplotypes == wanted)
            one = missing > 0;
        else if (missing > 0)
            one = random.uniform() * static_cast<double>(left) < static_cast<double>(missing);
        missing -= one;
        --left;
    }
}

defect founderreader::readgenotypes()
{
    int64 width = 0;
    const std::int32_t *const entries = in.genotypes(width);
    if (width == 0) return defect::nogenotypes;
    const std::int32_t *const end = entries + in.nsamples() * width;
    for (const std::int32_t *entry = entries; entry != end; ++entry)
        if (*entry != bcf_int32_vector_end && bcf_gt_is_missing(*entry)) return defect::missing;
    // The first allele of a sample has nothing before it to be in phase with.
    for (int64 i = 0; i < in.nsamples(); ++i)
        for (int64 k = 1; k < width; ++k) {
            const std::int32_t entry = entries[i * width + k];
            if (entry != bcf_int32_vector_end && !bcf_gt_is_phased(entry)) return defect::unphased;
        }
    if (ploidy.empty()) takeploidy(entries, width);
    char *allele = alleles.data();
    for (int64 i = 0; i < in.nsamples(); ++i) {
        const std::int32_t *const sample = entries + i * width;
        int64 n = 0;
        while (n < width && sample[n] != bcf_int32_vector_end) ++n;
        if (n != ploidy[static_cast<std::size_t>(i)]) return defect::ploidy;
        for (int64 k = 0; k < n; ++k) {
            if (bcf_gt_allele(sample[k]) >= in.nalleles())
                in.complain("a genotype names an allele that the record doesn't have");
            *allele++ = static_cast<char>('0' + bcf_gt_allele(sample[k]));
        }
    }
    return defect::none;
}

void founderreader::write(macs::sitewriter &out)
{
    char first = 0;
    bool alike = true;
    for (std::size_t h = 0; h < taken.size(); ++h)
        if (taken[h]) {
            if (first == 0) first = alleles[h];
            alike = alike && alleles[h] == first;
        }
    if (alike) {
        ++nalike;
        return;
    }
    char *to = out.begin(static_cast<double>(in.position()) / options.length, 0);
    for (std::size_t h = 0; h < taken.size(); ++h)
        if (taken[h]) *to++ = alleles[h];
    out.end();
}

void founderreader::readall(macs::sitewriter &out)
{
    while (in.next()) {
        ++nseen;
        defect what = judgeplace();
        if (what == defect::none) what = readgenotypes();
        if (what != defect::none && !settings.skip) in.complain(told(what) + ": " + remedy(what));
        ++nskipped[static_cast<std::size_t>(what)];
        if (what == defect::none) write(out);
    }
    if (nseen == 0)
        ioerror(in.path(), "has no record of contig " + in.contig() +
                               ": name the contig of chromosome " + numbertext(settings.chrom) +
                               " in Founders.txt (contig " + numbertext(settings.chrom) + " NAME)");
}

void founderreader::note() const
{
    const auto number = [](int64 n) { return static_cast<long long>(n); };
    for (std::size_t k = 1; k < ndefects; ++k)
        if (nskipped[k] > 0)
            std::fprintf(stderr, "NOTE: %lld sites left out, %s\n", number(nskipped[k]),
                         defectnames[k]);
    if (nalike > 0)
        std::fprintf(stderr, "NOTE: %lld sites left out, at which all haplotypes are alike\n",
                     number(nalike));
}
} // namespace

void writefounders(const founderfile &settings, const macs::macsoptions &options, int64 seed,
                   outfile &out)
{
    founderreader reader{settings, options, seed, variantreader(settings), {}, {}};
    macs::sitewriter sites(out, options.nhaplotypes);
    reader.readall(sites);
    reader.note();
    if (sites.nwritten() == 0)
        ioerror(reader.in.path(), "no site is left of the " + numbertext(reader.nseen) +
                                      " of contig " + reader.in.contig());
    sites.close();
    std::fprintf(stderr, "NOTE: %lld sites of contig %s of %s, %lld of %lld haplotypes\n",
                 static_cast<long long>(sites.nwritten()), reader.in.contig().c_str(),
                 reader.in.path().c_str(), static_cast<long long>(options.nhaplotypes),
                 static_cast<long long>(reader.taken.size()));
}
