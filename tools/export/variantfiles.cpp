#include "variantfiles.h"

#include "programinfo.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <array>
#include <bit>
#include <cstring>
#include <htslib/bgzf.h>
#include <htslib/vcf.h>
#include <memory>

namespace
{
// ------------------------------------------------------------------ where bytes go

// Framed has the frames of compressed files around bytes as they are.
enum class packing { none, framed, compressed };

class bytesink
{
  public:
    bytesink(const std::string &path, packing how, int nthreads) : name(path)
    {
        if (how == packing::none) {
            plain.open(path);
            return;
        }
        // Level 4 takes less than half the time of the usual 6, for files a sixth larger.
        packed = ::bgzf_open(path.c_str(), how == packing::compressed ? "w4" : "w0");
        if (!packed) ioerrno(path, "can't open for writing");
        if (nthreads > 1 && ::bgzf_mt(packed, nthreads, 256) != 0)
            ioerror(path, "its threads can't be started");
    }
    bytesink(const bytesink &) = delete;
    bytesink &operator=(const bytesink &) = delete;
    ~bytesink()
    {
        if (packed) ::bgzf_close(packed);
    }
    // Room for n bytes, to be filled and committed.
    char *reserve(std::size_t n)
    {
        if (!packed) return plain.reserve(n);
        if (buffer.size() < n) buffer.resize(n);
        return buffer.data();
    }
    void commit(std::size_t n)
    {
        if (!packed)
            plain.commit(n);
        else if (::bgzf_write(packed, buffer.data(), n) != static_cast<ssize_t>(n))
            ioerrno(name, "can't write");
    }
    void write(std::string_view bytes)
    {
        std::memcpy(reserve(bytes.size()), bytes.data(), bytes.size());
        commit(bytes.size());
    }
    void close()
    {
        if (!packed) {
            plain.close();
            return;
        }
        BGZF *const closing = std::exchange(packed, nullptr);
        if (::bgzf_close(closing) != 0) ioerrno(name, "can't write");
    }

  private:
    std::string name;
    outfile plain;
    BGZF *packed = nullptr;
    std::vector<char> buffer;
};

// ------------------------------------------------------------------ header

using headerpointer = std::unique_ptr<bcf_hdr_t, decltype(&bcf_hdr_destroy)>;

headerpointer makeheader(const exportjob &job)
{
    headerpointer header(bcf_hdr_init("w"), bcf_hdr_destroy);
    bcf_hdr_t *const h = header.get();
    bool good = h && bcf_hdr_set_version(h, "VCFv4.3") == 0;
    const auto line = [&](const std::string &text) {
        good = good && bcf_hdr_append(h, text.c_str()) == 0;
    };
    line("##source=solvanto-export " + versiontext());
    line("##solvantoSeed=" + numbertext(job.run.seed));
    line("##solvantoSpecificationMD5=" + job.run.specificationchecksum);
    for (const int64 chrom : job.chromosomes)
        line("##contig=<ID=" + numbertext(chrom) + ",length=" + numbertext(job.run.chrlength) +
             ">");
    line("##INFO=<ID=AC,Number=A,Type=Integer,Description=\"Copies of the alternate allele\">");
    line("##INFO=<ID=AN,Number=1,Type=Integer,Description=\"Number of alleles\">");
    line("##INFO=<ID=MUT,Number=0,Type=Flag,Description=\"De novo mutation\">");
    line("##INFO=<ID=QTN,Number=.,Type=String,Description=\"Sets of QTN in which the site is\">");
    line("##FORMAT=<ID=GT,Number=1,Type=String,Description=\"Alleles of gamete 1 (sire) and 2 "
         "(dam)\">");
    for (const std::string &sample : job.samples)
        good = good && bcf_hdr_add_sample(h, sample.c_str()) == 0;
    if (!good || bcf_hdr_sync(h) != 0) ioerror(job.options.output, "the header can't be made");
    return header;
}

std::string headertext(const bcf_hdr_t *header, bool isbcf)
{
    kstring_t text = KS_INITIALIZE;
    if (bcf_hdr_format(header, isbcf, &text) != 0) ioerror("header", "can't be laid out");
    const std::string made(text.s, text.l);
    ks_free(&text);
    return made;
}

// ------------------------------------------------------------------ alleles, four samples at a time

// Index: gamete 1 of four samples in the lower four bits, gamete 2 in the upper; the first sample
// lowest.
using fourtexts = std::array<std::array<char, 16>, 256>; // "\t0|1" each
constexpr fourtexts maketexts()
{
    fourtexts table{};
    for (unsigned i = 0; i < 256; ++i)
        for (unsigned k = 0; k < 4; ++k) {
            table[i][4 * k] = '\t';
            table[i][4 * k + 1] = i >> k & 1 ? '1' : '0';
            table[i][4 * k + 2] = '|';
            table[i][4 * k + 3] = i >> (4 + k) & 1 ? '1' : '0';
        }
    return table;
}
// BCF: (allele + 1) x 2, and 1 more for the phased second allele.
using fourcodes = std::array<std::array<char, 8>, 256>;
constexpr fourcodes makecodes()
{
    fourcodes table{};
    for (unsigned i = 0; i < 256; ++i)
        for (unsigned k = 0; k < 4; ++k) {
            table[i][2 * k] = static_cast<char>(2 * ((i >> k & 1) + 1));
            table[i][2 * k + 1] = static_cast<char>(2 * ((i >> (4 + k) & 1) + 1) + 1);
        }
    return table;
}
constexpr fourtexts texts = maketexts();
constexpr fourcodes codes = makecodes();

// Fills the entries of all samples, and up to 63 behind them.
template <class Table>
char *putsamples(char *to, const Table &table, const std::uint64_t *one, const std::uint64_t *two,
                 int64 nwords)
{
    for (int64 w = 0; w < nwords; ++w) {
        const std::uint64_t a = one[w], b = two[w];
        for (int shift = 0; shift < 64; shift += 4) {
            const auto &entry = table[(a >> shift & 15) | (b >> shift & 15) << 4];
            std::memcpy(to, entry.data(), entry.size());
            to += entry.size();
        }
    }
    return to;
}

int64 countbits(const std::uint64_t *words, int64 nwords)
{
    int64 n = 0;
    for (int64 w = 0; w < nwords; ++w) n += std::popcount(words[w]);
    return n;
}

// ------------------------------------------------------------------ records

struct siterecord {
    int64 chrom = 0;
    const exportsite &site;
    const std::uint64_t *one, *two; // bits of the samples
    int64 nwords = 0, nsamples = 0;
    bool lasthaploid = false;
    int64 ncopies() const { return countbits(one, nwords) + countbits(two, nwords); }
    int64 nalleles() const { return 2 * nsamples - lasthaploid; }
};

// Room for the samples of a site, those behind the last word's end too.
std::size_t roomfor(const siterecord &record, std::size_t bytespersample)
{
    return static_cast<std::size_t>(64 * record.nwords) * bytespersample;
}

class vcfrecords
{
  public:
    void begin(bytesink &out, const bcf_hdr_t *header) { out.write(headertext(header, false)); }
    void write(bytesink &out, const siterecord &record)
    {
        line = numbertext(record.chrom);
        line += '\t';
        puti(line, record.site.bases, 0);
        line += '\t';
        line += siteid(record.chrom, record.site.site);
        line += "\tA\tT\t.\tPASS\tAC=";
        puti(line, record.ncopies(), 0);
        line += ";AN=";
        puti(line, record.nalleles(), 0);
        if (record.site.mutation) line += ";MUT";
        if (record.site.qtnsets != 0) line += ";QTN=" + qtnsetnames(record.site);
        line += "\tGT";
        char *const start = out.reserve(line.size() + roomfor(record, 4) + 1);
        std::memcpy(start, line.data(), line.size());
        char *const samples = start + line.size();
        putsamples(samples, texts, record.one, record.two, record.nwords);
        // A haploid sample has no second allele.
        char *const end = samples + 4 * record.nsamples - (record.lasthaploid ? 2 : 0);
        *end = '\n';
        out.commit(static_cast<std::size_t>(end + 1 - start));
    }

  private:
    textline line;
};

// The layout of a BCF record: VCF specification 4.3, section 6.3.
class bcfrecords
{
  public:
    ~bcfrecords() { ks_free(&shared); }
    void begin(bytesink &out, const bcf_hdr_t *header)
    {
        const std::string text = headertext(header, true);
        const auto length = static_cast<std::uint32_t>(text.size() + 1); // with its end of string
        std::string bytes = "BCF\2\2";
        bytes.append(reinterpret_cast<const char *>(&length), 4);
        out.write(bytes + text + '\0');
        const auto number = [&](const char *name) {
            return bcf_hdr_id2int(header, BCF_DT_ID, name);
        };
        pass = number("PASS");
        ac = number("AC");
        an = number("AN");
        mut = number("MUT");
        qtn = number("QTN");
        gt = number("GT");
        contigs = header;
    }
    void write(bytesink &out, const siterecord &record)
    {
        layshared(record);
        const std::size_t genotypehead = 2 + (gt > 127 ? 1 : 0) + 1;
        const std::size_t nsamplebytes = static_cast<std::size_t>(2 * record.nsamples);
        char *const start = out.reserve(8 + 24 + shared.l + genotypehead + roomfor(record, 2));
        const auto sharedlength = static_cast<std::uint32_t>(24 + shared.l);
        const auto samplelength = static_cast<std::uint32_t>(genotypehead + nsamplebytes);
        const std::int32_t chrom = contig(record.chrom);
        const auto position = static_cast<std::int32_t>(record.site.bases - 1);
        const std::int32_t referencelength = 1;
        const std::uint32_t noquality = bcf_float_missing;
        const std::uint32_t alleles = 2u << 16 | ninfo;
        const std::uint32_t samples = 1u << 24 | static_cast<std::uint32_t>(record.nsamples);
        char *to = start;
        const auto put = [&](const auto &value) {
            std::memcpy(to, &value, sizeof value);
            to += sizeof value;
        };
        put(sharedlength);
        put(samplelength);
        put(chrom);
        put(position);
        put(referencelength);
        put(noquality);
        put(alleles);
        put(samples);
        std::memcpy(to, shared.s, shared.l);
        to += shared.l;
        *to++ = 1 << 4 | BCF_BT_INT8;
        *to++ = static_cast<char>(gt);
        *to++ = 2 << 4 | BCF_BT_INT8; // two alleles of each sample
        putsamples(to, codes, record.one, record.two, record.nwords);
        to += nsamplebytes;
        if (record.lasthaploid) to[-1] = static_cast<char>(bcf_int8_vector_end);
        out.commit(static_cast<std::size_t>(to - start));
    }

  private:
    std::int32_t contig(int64 chrom)
    {
        if (chrom != lastchrom) lastcontig = bcf_hdr_name2id(contigs, numbertext(chrom).c_str());
        lastchrom = chrom;
        return lastcontig;
    }
    // Identifier, alleles, filter and INFO.
    void layshared(const siterecord &record)
    {
        shared.l = 0;
        word = siteid(record.chrom, record.site.site);
        bcf_enc_vchar(&shared, static_cast<int>(word.size()), word.data());
        bcf_enc_vchar(&shared, 1, "A");
        bcf_enc_vchar(&shared, 1, "T");
        bcf_enc_vint(&shared, 1, &pass, -1);
        bcf_enc_int1(&shared, ac);
        bcf_enc_int1(&shared, static_cast<std::int32_t>(record.ncopies()));
        bcf_enc_int1(&shared, an);
        bcf_enc_int1(&shared, static_cast<std::int32_t>(record.nalleles()));
        ninfo = 2;
        if (record.site.mutation) {
            bcf_enc_int1(&shared, mut);
            bcf_enc_size(&shared, 0, BCF_BT_NULL);
            ++ninfo;
        }
        if (record.site.qtnsets != 0) {
            word = qtnsetnames(record.site);
            bcf_enc_int1(&shared, qtn);
            bcf_enc_vchar(&shared, static_cast<int>(word.size()), word.data());
            ++ninfo;
        }
    }
    kstring_t shared = KS_INITIALIZE;
    std::string word;
    const bcf_hdr_t *contigs = nullptr;
    std::int32_t pass = 0, ac = 0, an = 0, mut = 0, qtn = 0, gt = 0, lastcontig = 0;
    std::uint32_t ninfo = 0;
    int64 lastchrom = 0;
};

template <class Records> int64 writeall(const exportjob &job, bytesink &out, Records &&records)
{
    const headerpointer header = makeheader(job);
    records.begin(out, header.get());
    int64 nwritten = 0;
    sitesahead ahead(job);
    for (const int64 chrom : job.chromosomes) {
        chromalleles alleles(job.alleles, chrom);
        for (const exportsite &site : ahead.next()) {
            const int64 place = job.alleles.placeof(site);
            records.write(out,
                          {chrom, site, alleles.bits(place, 1), alleles.bits(place, 2),
                           alleles.nwordspersite(), job.alleles.nsamples, job.alleles.lasthaploid});
            ++nwritten;
        }
    }
    out.close();
    return nwritten;
}

// Coordinates of .tbi end at 2^29.
constexpr int64 longestfortbi = int64{1} << 29;

void makeindex(const std::string &path, const std::string &indexpath, bool istbi, int nthreads)
{
    constexpr int csishift = 14;
    if (bcf_index_build3(path.c_str(), indexpath.c_str(), istbi ? 0 : csishift, nthreads) != 0)
        ioerror(indexpath, "the index can't be made");
}
} // namespace

sitesahead::sitesahead(const exportjob &from, usesite useeach)
    : job(from), use(std::move(useeach)),
      how(commandsatonce() > 1 ? std::launch::async : std::launch::deferred)
{
    begin();
}

void sitesahead::begin()
{
    if (nbegun == job.chromosomes.size()) return;
    const int64 chrom = job.chromosomes[nbegun++];
    coming = std::async(how, [this, chrom] {
        std::vector<exportsite> sites = sitesofchrom(job.run, job.options, job.tables, chrom);
        if (use)
            for (const exportsite &site : sites) use(chrom, site);
        return sites;
    });
}

const std::vector<exportsite> &sitesahead::next()
{
    present = coming.get();
    begin();
    return present;
}

int64 writevariants(const exportjob &job, newfiles &files)
{
    const exportoptions &options = job.options;
    const bool isvcf = options.format == exportformat::vcf;
    const bool compressed = !options.uncompressed;
    const std::string path = options.output + (isvcf ? (compressed ? ".vcf.gz" : ".vcf") : ".bcf");
    const bool istbi = isvcf && job.run.chrlength < longestfortbi;
    const std::string written = files.add(path);
    const std::string index = compressed ? files.add(path + (istbi ? ".tbi" : ".csi")) : "";
    bytesink out(written, compressed ? packing::compressed : packing::none, options.nthreads);
    const int64 nsites =
        isvcf ? writeall(job, out, vcfrecords()) : writeall(job, out, bcfrecords());
    if (compressed) makeindex(written, index, istbi, options.nthreads);
    return nsites;
}

int64 writepassingbcf(const exportjob &job, const std::string &path)
{
    bytesink out(path, packing::framed, job.options.nthreads);
    return writeall(job, out, bcfrecords());
}
