// exportoptions.h - the command line of solvanto-export.
#pragma once

#include "arrays.h"

#include <string>
#include <vector>

enum class exportformat { unset, vcf, bcf, plink, pgen, tables };
enum class exportdata { selectionchip, chip, sequence, founders };
enum class sampleset { unset, last, all, training, candidates };
// Which sites beside those of the data, or of them.
enum class qtnchoice { asis, only, without, with };
enum class phenotypekind { none, trait, tbv };

struct exportoptions {
    std::string folder; // of the run
    exportformat format = exportformat::unset;
    exportdata data = exportdata::selectionchip;
    int64 chip = 0;            // with exportdata::chip, and once the run is known
    int64 firstgeneration = 0; // 0 for all
    int64 lastgeneration = 0;
    std::string individualsfile;    // empty for all
    std::vector<int64> chromosomes; // ascending; empty for all
    sampleset samples = sampleset::unset;
    qtnchoice qtn = qtnchoice::asis;
    phenotypekind phenotype = phenotypekind::none;
    int64 trait = 0;    // of the phenotype
    std::string output; // what names of files begin with
    int nthreads = 1;
    bool uncompressed = false, force = false;
};

// The usage, for --help.
extern const char exportusage[], exportdetails[];

// Reads the words behind the program's name. Stops: a plain stop with status 2 behind a message on
// standard error.
exportoptions readexportoptions(const std::vector<std::string> &words);

// A list such as 1,3,7-9: ascending, each once. False where it is none.
bool readnumberlist(const std::string &text, std::vector<int64> &numbers);
