#include "trees/treecase.h"

#include "testsupport.h"
#include "words.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <stdexcept>

namespace fs = std::filesystem;

namespace
{
constexpr const char *reportname = "report.txt", *casefolder = "/case";

std::string pathofcase(const std::string &name, const std::string &ending)
{
    return sourcefolder() + "/tests/trees/" + name + ending;
}

// ------------------------------------------------------------------------ the file of a case

// Takes a line of a case apart: its first word, and what stands behind it.
struct caseline {
    explicit caseline(const std::string &line)
        : word(line.substr(0, line.find(' '))),
          rest(line.substr(std::min(line.size(), word.size() + 1)))
    {
    }
    std::string word, rest;
};

// The lines from line i on up to one that holds "end"; i is left on that line.
std::string inlinefile(const std::vector<std::string> &lines, std::size_t &i)
{
    std::string content;
    while (++i < lines.size() && lines[i] != "end") content += lines[i] + "\n";
    if (i == lines.size()) throw std::invalid_argument("a file without a line \"end\"");
    return content;
}
} // namespace

std::vector<std::string> treecases()
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(pathofcase("", "")))
        if (entry.path().extension() == ".case") names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<treerun> readtreecase(const std::string &name)
{
    std::vector<treerun> runs;
    treerun next;
    next.spec = smallrun();
    const std::vector<std::string> lines = readlines(pathofcase(name, ".case"));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty() || lines[i].starts_with('#')) continue;
        const caseline line(lines[i]);
        if (line.word == "run") {
            runs.push_back(next);
            next.actions.clear();
        } else if (line.word == "seed") {
            next.actions.push_back({"Seed.txt", line.rest + "\n"});
        } else if (line.word == "file") {
            next.actions.push_back({line.rest, inlinefile(lines, i)});
        } else if (line.word == "shell") {
            next.actions.push_back({"", line.rest});
        } else if (line.word == "folder") {
            next.folder = line.rest;
        } else if (line.word == "row") {
            const caseline row(line.rest);
            next.spec.addrow(row.word, row.rest);
        } else if (lines[i].find(',') != std::string::npos || lines[i].starts_with('-')) {
            next.spec.change(lines[i]);
        } else {
            throw std::invalid_argument(name + ".case: \"" + lines[i] + "\" is no line of a case");
        }
    }
    if (!next.actions.empty() || runs.empty())
        throw std::invalid_argument(name + ".case doesn't end with a line \"run\"");
    return runs;
}

// ------------------------------------------------------------------------ running

namespace
{
void replaceall(std::string &text, const std::string &what, const std::string &with)
{
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
}

// The path column keeps its width.
void hidefolderinpedigree(std::string &table, const std::string &folder)
{
    const std::string common = casefolder;
    const std::size_t shorter = folder.size() - common.size();
    for (std::size_t at = 0; (at = table.find(folder, at)) != std::string::npos;) {
        table.replace(at, folder.size(), common);
        at = std::min(table.find('\n', at), table.size());
        table.insert(at, shorter, ' ');
    }
}

// The rules of README.md, on what differs between two runs of one program.
void hidewhatvaries(filetree &files, const std::string &folder)
{
    static const std::regex seconds(R"((Time duration of Solvanto =|: ) *[0-9.]+ (s|seconds\.)\n)");
    for (auto &[path, content] : files) {
        const std::string name = fs::path(path).filename();
        if (name == "Pedigree.txt") hidefolderinpedigree(content, folder);
        if (name == reportname || (name.starts_with("out") && !name.ends_with(".txt")))
            content = std::regex_replace(content, seconds, "$1 <time> $2\n");
        if (name == reportname) replaceall(content, folder, casefolder);
        if (name.ends_with(".gz")) // gzip stores when the file was made
            content = runcommand("gzip -dc '" + folder + "/" + path + "'").out;
    }
}

// Acts as the case says; the paths of files that are put or changed get their contents in inputs.
void act(const treerun &run, const std::string &folder, filetree &inputs)
{
    const filetree before = readtree(folder);
    for (const treeaction &action : run.actions) {
        const std::string place = folder + "/" + run.folder;
        if (!action.file.empty()) {
            std::string content = action.text;
            replaceall(content, "<case>", folder);
            writefile(place + "/" + action.file, content);
            continue;
        }
        const commandresult result = runcommand("cd '" + place + "' && " + action.text);
        if (result.status != 0)
            throw std::runtime_error("\"" + action.text + "\" failed: " + result.err);
    }
    writefile(folder + "/" + run.folder + "/SolvantoSpec.txt", run.spec.text());
    const filetree after = readtree(folder);
    for (const std::string &path : differingpaths(before, after))
        if (after.contains(path)) inputs[fs::path(path).lexically_normal()] = after.at(path);
}

std::vector<std::string> pathsbytime(const filetree &files, const std::string &folder)
{
    std::vector<std::pair<fs::file_time_type, std::string>> written;
    for (const auto &[path, content] : files)
        written.emplace_back(fs::last_write_time(folder + "/" + path), path);
    std::sort(written.begin(), written.end());
    std::vector<std::string> paths;
    for (const auto &[time, path] : written) paths.push_back(path);
    return paths;
}

// Copies of programs count by their presence.
void addcopiesofprograms(filetree &files, const std::string &folder)
{
    for (const auto &entry : fs::recursive_directory_iterator(folder))
        if (!entry.is_symlink() && entry.is_regular_file() && isprogram(entry.path()))
            files[entry.path().lexically_relative(folder)] = "a program\n";
}

treeofrun treeafterrun(const std::string &folder, const filetree &inputs)
{
    treeofrun tree;
    tree.files = readtree(folder);
    for (const auto &[path, content] : inputs)
        if (const auto file = tree.files.find(path);
            file != tree.files.end() && file->second == content)
            tree.files.erase(file);
    addcopiesofprograms(tree.files, folder);
    hidewhatvaries(tree.files, folder);
    tree.writingorder = pathsbytime(tree.files, folder);
    return tree;
}
} // namespace

void runtreecase(const std::string &name, const std::string &bin, const std::string &folder,
                 const std::function<bool(const treeofrun &)> &withrun,
                 const std::function<void(const std::string &)> &beforerun)
{
    filetree inputs;
    for (const treerun &run : readtreecase(name)) {
        const std::string place = folder + "/" + run.folder;
        if (!fs::exists(place + "/solvanto")) {
            fs::create_directories(place);
            linkprograms(bin, place);
        }
        act(run, folder, inputs);
        if (beforerun) beforerun(place);
        const commandresult result = runcommand("cd '" + place + "' && ./solvanto --quiet");
        writefile(folder + "/" + reportname, "status " + std::to_string(result.status) +
                                                 "\nstandard output:\n" + result.out +
                                                 "\nstandard error:\n" + result.err);
        treeofrun tree = treeafterrun(folder, inputs);
        tree.folder = place;
        tree.status = result.status;
        if (!withrun(tree)) return;
    }
}

void setcommonmachine()
{
    // The C library has two versions of exp, log and pow; the one for processors with FMA rounds
    // otherwise now and then.
    setenv("GLIBC_TUNABLES", "glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4", 1);
    // OpenBLAS sums in another order on each kind of processor. Prescott is the kind that every
    // x86-64 processor can do.
    setenv("OPENBLAS_CORETYPE", "Prescott", 1);
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    setenv("LC_ALL", "C", 1);
}

// ------------------------------------------------------------------------ sums

filetree sumsof(const filetree &files)
{
    filetree sums;
    for (const auto &[path, content] : files) {
        std::uint64_t sum = 0xcbf29ce484222325ULL;
        for (const char c : content) sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
        char digits[17];
        std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(sum));
        sums[path] = digits;
    }
    return sums;
}

std::vector<filetree> readsums(const std::string &name)
{
    const std::string file = pathofcase(name, ".sums");
    std::vector<filetree> sums;
    if (!fs::exists(file)) return sums;
    for (const std::string &line : readlines(file)) {
        const caseline entry(line);
        if (entry.word == "run")
            sums.push_back(sums.empty() ? filetree{} : sums.back());
        else if (entry.word == "gone")
            sums.back().erase(entry.rest);
        else
            sums.back()[entry.rest] = entry.word;
    }
    return sums;
}

void writesums(const std::string &name, const std::vector<filetree> &sums)
{
    std::string text;
    filetree before;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        text += "run " + std::to_string(i + 1) + "\n";
        for (const std::string &path : differingpaths(before, sums[i])) {
            const auto sum = sums[i].find(path);
            text += (sum == sums[i].end() ? "gone" : sum->second) + " " + path + "\n";
        }
        before = sums[i];
    }
    writefile(pathofcase(name, ".sums"), text);
}
