#include "variantreader.h"

#include "descriptors.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>

namespace
{
void closefile(htsFile *file)
{
    hts_close(file);
}
} // namespace

variantreader::variantreader(const founderfile &settings)
    : name(settings.file), file(nullptr, closefile), header(nullptr, bcf_hdr_destroy),
      record(bcf_init(), bcf_destroy), textindex(nullptr, tbx_destroy),
      index(nullptr, hts_idx_destroy), range(nullptr, hts_itr_destroy)
{
    openchecked(name, O_RDONLY); // its message tells why a file can't be read
    file.reset(hts_open(name.c_str(), "r"));
    const htsFormat *const format = file ? hts_get_format(file.get()) : nullptr;
    if (!format || (format->format != vcf && format->format != bcf))
        ioerror(name, "is neither VCF nor BCF");
    if (format->compression == bgzf && hts_check_EOF(file.get()) == 0)
        ioerror(name, "has been cut: the mark that ends a file of bgzip is missing");
    header.reset(bcf_hdr_read(file.get()));
    if (!header) ioerror(name, "has no header that can be read");
    if (bcf_hdr_nsamples(header.get()) == 0) ioerror(name, "holds no samples");
    choosesamples(settings);
    choosecontig(settings);
    useindex();
}

variantreader::~variantreader()
{
    ks_free(&line);
    std::free(entries);
}

void variantreader::choosesamples(const founderfile &settings)
{
    if (settings.samples.empty()) return;
    const std::set<std::string> known(header->samples,
                                      header->samples + bcf_hdr_nsamples(header.get()));
    for (const std::string &sample : settings.samples)
        if (!known.contains(sample))
            ioerror(settings.samplesfile, "sample " + sample + " is not in " + name);
    if (bcf_hdr_set_samples(header.get(), settings.samplesfile.c_str(), 1) != 0)
        ioerror(settings.samplesfile, "its samples can't be chosen in " + name);
}

// The name in the settings; else the chromosome's number, or that with chr before it.
void variantreader::choosecontig(const founderfile &settings)
{
    const std::string number = numbertext(settings.chrom);
    const auto declared = [&](const std::string &contig) {
        return bcf_hdr_name2id(header.get(), contig.c_str()) >= 0;
    };
    wanted = settings.contig;
    if (wanted.empty())
        wanted = !declared(number) && declared("chr" + number) ? "chr" + number : number;
}

void variantreader::useindex()
{
    namespace fs = std::filesystem;
    const bool isbcf = hts_get_format(file.get())->format == bcf;
    std::string indexname;
    for (const char *ending : {".csi", ".tbi"})
        if (pathexists(name + ending)) indexname = name + ending;
    if (indexname.empty() || fs::last_write_time(indexname) < fs::last_write_time(name)) return;
    if (isbcf) {
        index.reset(bcf_index_load2(name.c_str(), indexname.c_str()));
        const int contig = bcf_hdr_name2id(header.get(), wanted.c_str());
        if (index && contig >= 0) range.reset(bcf_itr_queryi(index.get(), contig, 0, HTS_POS_MAX));
    } else {
        textindex.reset(tbx_index_load2(name.c_str(), indexname.c_str()));
        const int contig = textindex ? tbx_name2id(textindex.get(), wanted.c_str()) : -1;
        if (contig >= 0) range.reset(tbx_itr_queryi(textindex.get(), contig, 0, HTS_POS_MAX));
    }
    if (!index && !textindex) ioerror(indexname, "can't be read: make the index anew");
}

// 0, -1 behind the last, or below for a failure.
int variantreader::readrecord()
{
    if (!range) return bcf_read(file.get(), header.get(), record.get());
    if (index) {
        const int status = bcf_itr_next(file.get(), range.get(), record.get());
        if (status >= 0 && header->keep_samples) bcf_subset_format(header.get(), record.get());
        return status < 0 ? status : 0;
    }
    const int status = tbx_itr_next(file.get(), textindex.get(), range.get(), &line);
    if (status < 0) return status;
    return vcf_parse(&line, header.get(), record.get()) == 0 ? 0 : -2;
}

bool variantreader::next()
{
    for (;;) {
        const int status = readrecord();
        if (status == -1) return false;
        if (status < -1 || record->errcode != 0)
            ioerror(name, "the record behind " + (contigname() ? place() : "the header") +
                              " can't be read: it is cut or no VCF");
        if (contigname() && wanted == contigname()) break;
    }
    bcf_unpack(record.get(), BCF_UN_ALL);
    return true;
}

const std::int32_t *variantreader::genotypes(int64 &ploidy)
{
    const int n = bcf_get_genotypes(header.get(), record.get(), &entries, &nentries);
    ploidy = n <= 0 ? 0 : n / nsamples();
    return entries;
}

const char *variantreader::contigname() const
{
    const bool isknown = record->rid >= 0 && record->rid < header->n[BCF_DT_CTG];
    return isknown ? bcf_hdr_id2name(header.get(), record->rid) : nullptr;
}

std::string variantreader::place() const
{
    return std::string(contigname()) + ":" + numbertext(position());
}

void variantreader::complain(const std::string &reason) const
{
    ioerror(name, "record " + place() + ": " + reason);
}
