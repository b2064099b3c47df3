#include "macs/seed.h"

#include "macs/draws.h"

#include "files.h"
#include "shell.h"

#include <filesystem>
#include <random>

namespace macs
{
namespace
{
constexpr std::uint64_t seedbits = (1ULL << 62) - 1;
constexpr const char *seedfile = "../../Seed.txt";
} // namespace

int64 mixedseed(std::string_view runseed, std::string_view foldername)
{
    // The line end keeps "1" + "23" from being "12" + "3".
    const std::string text = std::string(runseed) + "\n" + std::string(foldername);
    std::uint64_t state = 0, mixed = 0;
    for (const char c : text) {
        state ^= mixed + static_cast<unsigned char>(c);
        mixed = splitmix(state);
    }
    return static_cast<int64>(mixed & seedbits) + 1;
}

int64 seedofrun(std::string_view name)
{
    infile in(seedfile);
    in.record();
    // As a number, so that its layout in the file does not matter.
    return mixedseed(std::to_string(in.integer()), name);
}

int64 defaultseed()
{
    if (!pathexists(seedfile)) {
        std::random_device source;
        const std::uint64_t high = source();
        return static_cast<int64>((high << 32 | source()) & seedbits) + 1;
    }
    return seedofrun(std::filesystem::path(workingdirectory()).filename().string());
}
} // namespace macs
