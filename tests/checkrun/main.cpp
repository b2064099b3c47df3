// checkrun FOLDER - looks whether the files of a finished run folder follow from one another.
// Status 0: they do; 1: some statement is violated; 2: it couldn't be told.
#include "checkrun/checkrun.h"

#include <cstdio>
#include <exception>
#include <filesystem>

int main(int argc, char **argv)
{
    if (argc != 2 || !std::filesystem::is_directory(argv[1])) {
        std::fprintf(stderr, "usage: checkrun FOLDER, a folder in which solvanto has run\n");
        return 2;
    }
    try {
        const checkrun::statements told = checkrunfolder(argv[1]);
        std::fputs(told.report().c_str(), stdout);
        return told.nviolated == 0 ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ERROR: %s\n", error.what());
        return 2;
    }
}
