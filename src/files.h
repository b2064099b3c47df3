// files.h - all reading and writing of files.
#pragma once

#include "framedrecords.h"
#include "infile.h"
#include "outfile.h"
#include "recordfile.h"

// Whether two files, which must exist, hold the same bytes.
bool samecontent(const std::string &filename1, const std::string &filename2);
