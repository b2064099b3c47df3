#include "checkrun/runfiles.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace checkrun
{
namespace
{
std::vector<char> contentof(const std::string &path)
{
    std::vector<char> content;
    const bool plain = std::filesystem::exists(path);
    std::FILE *file =
        plain ? std::fopen(path.c_str(), "rb") : popen(("gzip -dc '" + path + ".gz'").c_str(), "r");
    if (!file) return content;
    const std::size_t atatime = plain ? std::filesystem::file_size(path) + 1 : 1 << 18;
    for (std::size_t got = 1, size = 0; got > 0; size += got) {
        content.resize(size + atatime);
        got = std::fread(content.data() + size, 1, atatime, file);
        content.resize(size + got);
    }
    plain ? std::fclose(file) : pclose(file);
    return content;
}

std::string lowercase(std::string text)
{
    for (char &c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}
} // namespace

int64 numberline::whole(int64 k) const
{
    const double x = (*this)(k);
    return x == std::floor(x) && std::fabs(x) < 9e15 ? static_cast<int64>(x) : -1;
}

numberline numbersof(std::string_view line)
{
    numberline row;
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == ','; };
    for (const char *at = line.data(), *end = at + line.size();;) {
        while (at < end && blank(*at)) ++at;
        if (at == end) return row;
        const char *stop = at;
        while (stop < end && !blank(*stop)) ++stop;
        double x = any;
        if (std::from_chars(at, stop, x).ptr != stop) x = any;
        row.values.push_back(x);
        at = stop;
    }
}

numberline textfile::operator()(int64 i) const
{
    return i >= 1 && i <= n() ? numbersof(lines(i)) : numberline{};
}

bool runfiles::there(const std::string &path) const
{
    const std::string full = folder + '/' + path;
    return std::filesystem::exists(full) || std::filesystem::exists(full + ".gz");
}

textfile runfiles::read(const std::string &path) const
{
    textfile file{path, {}, {}};
    if (!told.holds(there(path), {path}, "the file is there")) return file;
    file.content = contentof(folder + '/' + path);
    const char *at = file.content.data(), *end = at + file.content.size();
    while (at < end) {
        const std::size_t left = static_cast<std::size_t>(end - at);
        const char *stop = static_cast<const char *>(std::memchr(at, '\n', left));
        file.lines.emplace_back(at, stop ? static_cast<std::size_t>(stop - at) : left);
        at += file.lines.back().size() + 1;
    }
    return file;
}

list<int64> runfiles::records(const std::string &path, int64 recordsize) const
{
    list<int64> items;
    if (!told.holds(there(path), {path}, "the file is there")) return items;
    const std::vector<char> content = contentof(folder + '/' + path);
    const std::size_t bytes = static_cast<std::size_t>(recordsize) * 8;
    if (!told.holds(bytes > 0 && content.size() % (bytes + 8) == 0, {path},
                    "records of the expected size"))
        return items;
    items.resize(content.size() / (bytes + 8) * bytes / 8);
    for (std::size_t at = 0, to = 0; at < content.size(); at += bytes + 8, to += bytes) {
        std::int32_t frame[2];
        std::memcpy(&frame[0], &content[at], 4);
        std::memcpy(&frame[1], &content[at + 4 + bytes], 4);
        for (const std::int32_t length : frame)
            told.is({path, int64(to / bytes) + 1, "record"}, "length", double(bytes), length);
        std::memcpy(reinterpret_cast<char *>(items.data()) + to, &content[at + 4], bytes);
    }
    return items;
}

void runfiles::table(const std::string &path, int64 ntitles, int64 nlines, std::string_view what,
                     const std::function<reals(int64)> &of, double tolerance) const
{
    const textfile file = read(path);
    told.is({path}, "lines", double(ntitles + nlines), double(file.n()));
    for (int64 i = 1; i <= std::min(nlines, file.n() - ntitles); ++i) {
        const reals expected = of(i);
        const numberline found = file(ntitles + i);
        const place where{path, ntitles + i};
        told.is(where, "values in the line", double(expected.n()), double(found.n()));
        for (int64 k = 1; k <= expected.n(); ++k)
            if (const double x = expected(k); !std::isnan(x))
                told.is(where, what, x, found(k), tolerance * (1 + std::fabs(x)));
    }
}

std::string settings::word(const std::string &key) const
{
    const auto found = values.find(lowercase(key));
    return found == values.end() || found->second.empty() ? "" : lowercase(found->second[0]);
}

double settings::number(const std::string &key, int64 which) const
{
    const auto found = values.find(lowercase(key));
    if (found == values.end() || std::ssize(found->second) < which) return any;
    return numbersof(found->second[static_cast<std::size_t>(which - 1)])(1);
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
        if (parts.size() > 1 && parts[0][0] != '#')
            read.values[lowercase(parts[0])] = {parts.begin() + 1, parts.end()};
    }
    return read;
}
} // namespace checkrun
