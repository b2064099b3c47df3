// checkrun.h - looks whether the files of a finished run folder follow from one another.
//
// Nothing of the program is used: files are read, genomes dropped and values computed by other
// routines than those that made them. README.md of tests/trees tells what is looked at.
#pragma once

#include "checkrun/statements.h"

#include <string>

checkrun::statements checkrunfolder(const std::string &folder);
