// pedigreewarnings.h - what looks wrong in a pedigree of the user's, and is taken all the same.
#pragma once

#include "pedigree/pedigree.h"
#include "runoptions.h"
#include "state.h"

#include <string>
#include <vector>

// A parent that no line above its progeny's tells of.
struct missingparent {
    int64 id = 0, linenumber = 0; // the parent's own number; line of the progeny
};

// What has been met while the file was read.
struct pedigreefindings {
    std::vector<missingparent> missing;
    int64 ncontradicted = 0, firstcontradicted = 0; // female sires, male dams; line of the first
    int64 nrowswithout = 0;                         // individuals behind the last line
};

// Notes what the line of row i, with these parents, says. Genders have been drawn.
void noteparents(pedigreefindings &findings, const state &s, int64 i, int64 sire, int64 dam,
                 int64 linenumber);
// index: all individuals of the file.
void warnofpedigree(const runoptions &options, const std::string &path,
                    const pedigreefindings &findings, const pedigreeindex &index);
