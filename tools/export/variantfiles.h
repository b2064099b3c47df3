// variantfiles.h - VCF (4.3) and BCF (2.2).
//
// Records are laid out here, by tables of four samples at a time; the header is htslib's, and so are
// compression, threads and the index.
#pragma once

#include "allelesource.h"
#include "newfiles.h"

// What is written: the chromosomes, sites and alleles of all samples.
struct exportjob {
    const finishedrun &run;
    const exportoptions &options;
    const sitetables &tables;
    const allelesource &alleles;
    std::vector<int64> chromosomes;
    std::vector<std::string> samples; // their names
};

// PREFIX.vcf.gz or .bcf with an index (.tbi, .csi), or uncompressed PREFIX.vcf or .bcf without one.
// Gives the number of sites.
int64 writevariants(const exportjob &job, newfiles &files);
// The same as BCF for a program that reads it at once, under a name of the caller's.
int64 writepassingbcf(const exportjob &job, const std::string &path);
