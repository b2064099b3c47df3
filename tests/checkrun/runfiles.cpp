#include "checkrun/runfiles.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

namespace checkrun
{
namespace
{
std::vector<char> allof(std::FILE *file)
{
    std::vector<char> content;
    if (!file) return content;
    for (std::size_t got = 1, size = 0; got > 0; size += got) {
        content.resize(size + (1 << 18));
        got = std::fread(content.data() + size, 1, 1 << 18, file);
        content.resize(size + got);
    }
    return content;
}

std::vector<char> contentof(const std::string &path)
{
    std::vector<char> content;
    if (fs::exists(path)) {
        std::FILE *file = std::fopen(path.c_str(), "rb");
        content = allof(file);
        if (file) std::fclose(file);
    } else if (std::FILE *pipe = popen(("gzip -dc '" + path + ".gz'").c_str(), "r")) {
        content = allof(pipe);
        pclose(pipe);
    }
    return content;
}

std::string lowercase(std::string text)
{
    for (char &c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}
} // namespace

double numberline::operator()(int64 column) const
{
    return column >= 1 && column <= size() ? values[static_cast<std::size_t>(column - 1)] : any;
}

int64 numberline::whole(int64 column) const
{
    const double x = (*this)(column);
    return x == std::floor(x) && std::fabs(x) < 9e15 ? static_cast<int64>(x) : -1;
}

numberline numbersof(std::string_view line)
{
    numberline row;
    const char *at = line.data(), *end = at + line.size();
    while (true) {
        while (at < end && (*at == ' ' || *at == '\t' || *at == ',')) ++at;
        if (at == end) return row;
        const char *stop = at;
        while (stop < end && *stop != ' ' && *stop != '\t' && *stop != ',') ++stop;
        double x = any;
        if (const auto done = std::from_chars(at, stop, x); done.ptr != stop) x = any;
        row.values.push_back(x);
        at = stop;
    }
}

bool runfiles::there(const std::string &path) const
{
    return fs::exists(folder + '/' + path) || fs::exists(folder + '/' + path + ".gz");
}

textfile runfiles::read(const std::string &path) const
{
    textfile file;
    file.path = path;
    if (!told.holds(there(path), {path}, "the file is there")) return file;
    file.content = contentof(folder + '/' + path);
    const char *at = file.content.data(), *end = at + file.content.size();
    while (at < end) {
        const char *stop =
            static_cast<const char *>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
        if (!stop) stop = end;
        file.lines.emplace_back(at, static_cast<std::size_t>(stop - at));
        at = stop + 1;
    }
    return file;
}

std::vector<int64> runfiles::records(const std::string &path, int64 recordsize) const
{
    std::vector<int64> items;
    if (!told.holds(there(path), {path}, "the file is there")) return items;
    const std::vector<char> content = contentof(folder + '/' + path);
    const std::size_t bytes = static_cast<std::size_t>(recordsize) * 8;
    if (!told.holds(bytes > 0 && content.size() % (bytes + 8) == 0, {path},
                    "whole records of the expected size"))
        return items;
    items.resize(content.size() / (bytes + 8) * bytes / 8);
    for (std::size_t at = 0, n = 0; at < content.size(); at += bytes + 8, ++n) {
        std::int32_t before = 0, behind = 0;
        std::memcpy(&before, &content[at], 4);
        std::memcpy(&behind, &content[at + 4 + bytes], 4);
        const place where{path, static_cast<int64>(n + 1), "record"};
        told.equal(where, "length before the record", static_cast<int64>(bytes), before);
        told.equal(where, "length behind the record", static_cast<int64>(bytes), behind);
        std::memcpy(reinterpret_cast<char *>(items.data()) + n * bytes, &content[at + 4], bytes);
    }
    return items;
}

void runfiles::tableholds(const std::string &path, int64 ntitles, int64 nlines,
                          std::string_view what,
                          const std::function<void(int64, std::vector<double> &)> &fill,
                          double tolerance) const
{
    const textfile file = read(path);
    if (!there(path) || !told.equal({path}, "lines", ntitles + nlines, file.size())) return;
    std::vector<double> expected;
    for (int64 i = 1; i <= nlines; ++i) {
        expected.clear();
        fill(i, expected);
        const numberline found = file.numbers(ntitles + i);
        const place where{path, ntitles + i};
        told.equal(where, "values in the line", static_cast<int64>(expected.size()), found.size());
        for (std::size_t k = 0; k < expected.size(); ++k)
            if (!std::isnan(expected[k]))
                told.near(where, what, expected[k], found(static_cast<int64>(k + 1)),
                          tolerance * (1 + std::fabs(expected[k])));
    }
}

void runfiles::allelesholds(const std::string &path, int64 ntitles, int64 nlines, int64 ncolumns,
                            const std::function<int64(int64)> &individual,
                            const std::function<int(int64, int64)> &value) const
{
    const textfile file = read(path);
    if (!there(path) || !told.equal({path}, "lines", ntitles + nlines, file.size())) return;
    for (int64 i = 1; i <= nlines; ++i) {
        const std::string_view line = file.line(ntitles + i);
        const place where{path, ntitles + i};
        if (!told.equal(where, "columns of the line", 20 + 2 * ncolumns,
                        static_cast<int64>(line.size())))
            continue;
        told.equal(where, "individual", individual(i), numbersof(line.substr(0, 20)).whole(1));
        const char *at = line.data() + 21;
        int64 different = 0;
        for (int64 k = 1; k <= ncolumns && different == 0; ++k, at += 2)
            if (*at != '0' + value(i, k) || at[-1] != ' ') different = k;
        ++told.nchecked;
        if (different > 0) {
            --told.nchecked;
            told.equal(where, "allele or genotype number " + std::to_string(different),
                       value(i, different),
                       line[static_cast<std::size_t>(19 + 2 * different)] - '0');
        }
    }
}

std::string settings::word(const std::string &key) const
{
    const auto found = values.find(lowercase(key));
    return found == values.end() || found->second.empty() ? "" : lowercase(found->second[0]);
}

double settings::number(const std::string &key, std::size_t which) const
{
    const auto found = values.find(lowercase(key));
    return found == values.end() || found->second.size() <= which
               ? any
               : numbersof(found->second[which])(1);
}

settings readsettings(const runfiles &files)
{
    settings read;
    const textfile file = files.read("SolvantoSpec.txt");
    for (const std::string_view line : file.lines) {
        std::vector<std::string> parts(1);
        for (const char c : line) {
            if (c == ',')
                parts.emplace_back();
            else if (c != ' ' && c != '\t' && c != '\r')
                parts.back() += c;
        }
        if (parts.size() > 1 && !parts[0].starts_with('#'))
            read.values[lowercase(parts[0])] = {parts.begin() + 1, parts.end()};
    }
    return read;
}
} // namespace checkrun
