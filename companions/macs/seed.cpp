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

int64 defaultseed()
{
    const std::string file = "../../Seed.txt";
    if (!pathexists(file)) {
        std::random_device source;
        const std::uint64_t high = source();
        return static_cast<int64>((high << 32 | source()) & seedbits) + 1;
    }
    infile in(file);
    in.record();
    // As a number, so that its layout in the file does not matter.
    const std::string runseed = std::to_string(in.integer());
    return mixedseed(runseed, std::filesystem::path(workingdirectory()).filename().string());
}
} // namespace macs
