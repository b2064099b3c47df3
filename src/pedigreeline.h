// pedigreeline.h - one row of the pedigree table.
#pragma once

#include "arrays.h"

#include <string>

// Row k of the table is individual k; a parent 0 is unknown. A new row is all zero.
struct pedigreeline {
    int64 generation = 0;
    int64 oldglobalid = 0; // identifier that the individual entered the table with
    int64 newid = 0;       // row number
    int64 newsire = 0;
    int64 newdam = 0;
    bool initialised = false;
    std::string path; // working directory of the run that made the row, up to 512 characters
};
