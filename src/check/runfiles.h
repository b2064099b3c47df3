// runfiles.h - which files a run will write, and how large they will be: for the estimate of disk.
//
// Sizes are those of the layouts where all rows are equally long, and means where they aren't
// (free-form numbers, crossings, what gzip makes of alleles).
#pragma once

#include "check/inputs.h"
#include "state.h"

#include <map>
#include <string>
#include <vector>

// A file by its path from the working folder, without "./".
struct runfile {
    std::string path;
    double bytes = 0;   // as it is written, earlier runs' rows included
    double atend = 0;   // what is left of it: packed by the run, or removed (0)
    double written = 0; // by this run
};
// Needs numbers of sites, SNP and QTN in s. Files below a hundred bytes a chromosome are left out.
std::vector<runfile> filesofrun(const state &s, const runfacts &facts);

// What the files take, in bytes.
struct disksize {
    double atend = 0;  // when the run is at its end
    double atmost = 0; // on the way there
};
// Of each of the run's folders, of what stands there from earlier runs and is kept, too.
std::map<std::string, disksize> expecteddisk(const state &s, const runfacts &facts);
