// programinfo.h - what a program of this system tells of itself when asked: --help, --version.
#pragma once

#include <string>

// Release and commit of the build: "0.1.0 (commit 1d4d3443c0a1)".
std::string versiontext();

// What a program says of itself.
struct programinfo {
    const char *name;
    const char *summary; // one line: "genomic prediction"
    const char *usage;   // the arguments that it takes; empty for none
    const char *details; // files read and written, line by line
};

// Answers --help and --version on standard output, when one stands alone on the command line.
// False for all other command lines.
bool answered(const programinfo &info, int argc, char **argv);

// The same for a program that takes nothing else: another argument is refused on standard error.
// True when the program's work is done, with its exit status (0, or 2 when refused).
bool answeredalone(const programinfo &info, int argc, char **argv, int &status);
