// foundersettings.h - which file, contig and samples founders are taken from.
//
// The working folder of the run lies two folders above that of the chromosome. There stands
// Founders.vcf.gz or Founders.bcf, or what Founders.txt names, a setting a line, # before a comment:
//   file PATH         from the working folder, or absolute
//   contig H NAME     the contig of chromosome H, when it isn't called H or chrH
//   samples PATH      a file with a sample's name on each line; all samples without
//   first             the first haplotypes in place of drawn ones, when there are more
//   --skip            leaves out what would else be an error: sites that can't be taken
#pragma once

#include "arrays.h"

#include <string>
#include <vector>

struct founderfile {
    std::string file; // as seen from the folder of the chromosome
    int64 chrom = 0;
    std::string contig;               // empty where the file's own names decide
    std::vector<std::string> samples; // empty for all
    std::string samplesfile;
    bool first = false, skip = false;
};

// For the chromosome whose folder is the working directory: Chromosome<h>. Stops: an I/O error that
// names file and line.
founderfile readfoundersettings();
