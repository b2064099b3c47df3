// variantreader.h - the records of one contig of a VCF or BCF, one after the other.
#pragma once

#include "foundersettings.h"

#include <htslib/tbx.h>
#include <htslib/vcf.h>
#include <memory>
#include <string>
#include <vector>

// What the settings choose of a file. By its index, where that is there and not older than the
// file; else the whole file is gone through. Any failure is an I/O error that names the file.
class variantreader
{
  public:
    explicit variantreader(const founderfile &settings);
    const std::string &path() const { return name; }
    const std::string &contig() const { return wanted; }
    int64 nsamples() const { return bcf_hdr_nsamples(header.get()); }
    // Goes to the next record of the contig; false behind the last.
    bool next();
    // Of the record at hand, in bases from 1; the largest number is left as it is.
    int64 position() const { return record->pos + (record->pos < INT64_MAX); }
    int64 nalleles() const { return record->n_allele; }
    // Genotypes of all samples in htslib's form, ploidy() entries each; empty without GT.
    const std::int32_t *genotypes(int64 &ploidy);
    // "1:68189": as errors call it.
    std::string place() const;
    [[noreturn]] void complain(const std::string &reason) const;

  private:
    void choosesamples(const founderfile &settings);
    void choosecontig(const founderfile &settings);
    void useindex();
    int readrecord();
    // Null where the header doesn't have it.
    const char *contigname() const;
    template <class T> using owned = std::unique_ptr<T, void (*)(T *)>;
    std::string name, wanted;
    owned<htsFile> file;
    owned<bcf_hdr_t> header;
    owned<bcf1_t> record;
    owned<tbx_t> textindex;
    owned<hts_idx_t> index;
    owned<hts_itr_t> range;
    kstring_t line = KS_INITIALIZE;
    std::int32_t *entries = nullptr;
    int nentries = 0;

  public:
    ~variantreader();
    variantreader(const variantreader &) = delete;
    variantreader &operator=(const variantreader &) = delete;
};
