#include "harness.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <unistd.h>

namespace
{
std::string &scratchfolder()
{
    static std::string folder;
    return folder;
}

void removescratch()
{
    std::error_code error;
    std::filesystem::remove_all(scratchfolder(), error);
}

[[noreturn]] void giveup(const std::string &what)
{
    std::perror(what.c_str());
    std::_Exit(1);
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    char name[] = "/dev/shm/solvanto-fuzz.XXXXXX";
    if (!mkdtemp(name) || chdir(name) != 0) giveup(name);
    scratchfolder() = name;
    std::atexit(removescratch);
    if (!std::freopen("/dev/null", "w", stdout)) giveup("/dev/null");
    return 0;
}

void putfile(const std::string &path, std::string_view content)
{
    static std::set<std::string> known;
    if (known.insert(path).second) {
        const std::filesystem::path folder = std::filesystem::path(path).parent_path();
        if (!folder.empty()) std::filesystem::create_directories(folder);
    }
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) giveup(path);
    if (write(file, content.data(), content.size()) != static_cast<ssize_t>(content.size()))
        giveup(path);
    close(file);
}

std::vector<std::string_view> partsof(const std::uint8_t *data, std::size_t size, std::size_t n)
{
    constexpr std::string_view mark = "%%%\n";
    std::string_view text(reinterpret_cast<const char *>(data), size);
    std::vector<std::string_view> parts;
    while (parts.size() + 1 < n) {
        const std::size_t at = text.find(mark);
        parts.push_back(text.substr(0, at));
        text.remove_prefix(at == text.npos ? text.size() : at + mark.size());
    }
    parts.push_back(text);
    return parts;
}

const runsettings &smallsettings()
{
    static const runsettings settings = [] {
        std::ifstream from(SOLVANTO_SMALLSPEC);
        const std::string text{std::istreambuf_iterator<char>(from), {}};
        putfile("SolvantoSpec.txt", text);
        runoptions quiet;
        quiet.quiet = true;
        return readinparameters(quiet);
    }();
    return settings;
}
