#include "filetree.h"

#include "testsupport.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace
{
const std::set<std::string> programs{
    "solvanto", "macs",      "Vintrecaskelle",  "Quillomere",     "QuillomereP",
    "Brenvask", "Corvalind", "solvanto-export", "foundersfromvcf"};

// Offset of the line that holds the offset at.
std::size_t linestart(const std::string &text, std::size_t at)
{
    return at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
}

// The text of a line around a place in it, bytes that can't be shown as dots.
std::string excerpt(const std::string &text, std::size_t at)
{
    constexpr std::size_t before = 40, behind = 40;
    const std::size_t start = linestart(text, at),
                      from = std::max(start, at - std::min(at, before));
    const std::size_t end = std::min({text.find('\n', at), text.size(), at + behind});
    std::string shown = text.substr(from, end - from);
    for (char &c : shown)
        if (static_cast<unsigned char>(c) < ' ' || static_cast<unsigned char>(c) > '~') c = '.';
    return (from > start ? "..." : "") + shown;
}
} // namespace

void linkprograms(const std::string &bin, const std::string &folder)
{
    for (const std::string &program : programs)
        if (fs::exists(bin + "/" + program))
            fs::create_symlink(bin + "/" + program, folder + "/" + program);
}

bool isprogram(const std::string &path)
{
    return programs.contains(fs::path(path).filename().string());
}

filetree readtree(const std::string &folder)
{
    filetree tree;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.is_symlink() || isprogram(entry.path())) continue;
        const std::string path = entry.path().lexically_relative(folder).string();
        tree[path] = readfile(entry.path());
    }
    return tree;
}

std::vector<std::string> differingpaths(const filetree &was, const filetree &is)
{
    std::set<std::string> paths;
    for (const auto &[path, content] : was)
        if (const auto other = is.find(path); other == is.end() || other->second != content)
            paths.insert(path);
    for (const auto &[path, content] : is)
        if (!was.contains(path)) paths.insert(path);
    return {paths.begin(), paths.end()};
}

std::string firstdifference(const std::string &path, const filetree &was, const filetree &is)
{
    if (!is.contains(path)) return path + " is missing";
    if (!was.contains(path)) return path + " is new";
    const std::string &old = was.at(path), &now = is.at(path);
    std::size_t at = 0;
    while (at < old.size() && at < now.size() && old[at] == now[at]) ++at;
    const auto line = std::count(old.begin(), old.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    return path + ": line " + std::to_string(line + 1) + ", column " +
           std::to_string(at - linestart(old, at) + 1) + " (" + std::to_string(old.size()) +
           " and " + std::to_string(now.size()) + " bytes)\n  old: " + excerpt(old, at) +
           "\n  new: " + excerpt(now, at);
}
