// variantfiles.h - VCF (4.3) and BCF (2.2).
//
// Records are laid out here, by tables of four samples at a time; the header is htslib's, and so are
// compression, threads and the index.
#pragma once

#include "allelesource.h"
#include "newfiles.h"

#include <functional>
#include <future>

// What is written: the chromosomes, sites and alleles of all samples.
struct exportjob {
    const finishedrun &run;
    const exportoptions &options;
    const sitetables &tables;
    const allelesource &alleles;
    std::vector<int64> chromosomes;
    std::vector<std::string> samples; // their names
};

// The sites of one chromosome after the other: those of the next are made while those of the present
// one are used, where there are several processors. Each may be used once as it is made, in order and
// by another thread.
class sitesahead
{
  public:
    using usesite = std::function<void(int64 chrom, const exportsite &site)>;
    explicit sitesahead(const exportjob &from, usesite useeach = nullptr);
    sitesahead(const sitesahead &) = delete;
    sitesahead &operator=(const sitesahead &) = delete;
    // Of the next chromosome asked for, valid until the next call.
    const std::vector<exportsite> &next();

  private:
    void begin();
    const exportjob &job;
    usesite use;
    std::launch how;
    std::size_t nbegun = 0; // chromosomes
    std::vector<exportsite> present;
    std::future<std::vector<exportsite>> coming; // last: it ends before what it uses
};

// PREFIX.vcf.gz or .bcf with an index (.tbi, .csi), or uncompressed PREFIX.vcf or .bcf without one.
// Gives the number of sites.
int64 writevariants(const exportjob &job, newfiles &files);
// The same as BCF for a program that reads it at once, under a name of the caller's.
int64 writepassingbcf(const exportjob &job, const std::string &path);
