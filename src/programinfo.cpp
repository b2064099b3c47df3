#include "programinfo.h"

#include "versionnames.h"

#include <cstdio>
#include <string_view>

std::string versiontext()
{
    return SOLVANTO_RELEASE " (commit " SOLVANTO_COMMIT ")";
}

bool answered(const programinfo &info, int argc, char **argv)
{
    if (argc != 2) return false;
    const std::string_view word = argv[1];
    if (word == "--version") {
        std::printf("%s %s\n", info.name, versiontext().c_str());
        return true;
    }
    if (word != "--help") return false;
    std::printf("%s - %s\n\nusage: %s%s%s\n       %s --help | --version\n\n%s", info.name,
                info.summary, info.name, *info.usage ? " " : "", info.usage, info.name,
                info.details);
    return true;
}

bool answeredalone(const programinfo &info, int argc, char **argv, int &status)
{
    status = 0;
    if (argc <= 1) return false;
    if (answered(info, argc, argv)) return true;
    status = 2;
    std::fprintf(stderr, "ERROR: argument %s: %s takes none but --help or --version\n", argv[1],
                 info.name);
    return true;
}
