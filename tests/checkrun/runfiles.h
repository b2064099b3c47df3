// runfiles.h - reads the files of a run folder, by means of its own: a second opinion on what the
// program writes must not read as the program does.
#pragma once

#include "checkrun/statements.h"

#include <functional>
#include <limits>
#include <map>

namespace checkrun
{
inline constexpr double any =
    std::numeric_limits<double>::quiet_NaN();  // a value that isn't checked
inline constexpr double tendecimals = 0.6e-10; // how far a value in ten decimals may be off

// The words of a line as numbers, columns from 1; not a number for a word that is none and for a
// column that isn't there.
struct numberline {
    std::vector<double> values;
    double operator()(int64 column) const;
    int64 whole(int64 column) const; // -1 if it isn't a whole number
    int64 size() const { return static_cast<int64>(values.size()); }
};
numberline numbersof(std::string_view line);

struct textfile {
    std::string path;
    std::vector<char> content;
    std::vector<std::string_view> lines; // into content
    int64 size() const { return static_cast<int64>(lines.size()); }
    std::string_view line(int64 i) const { return lines[static_cast<std::size_t>(i - 1)]; }
    // None of a line that isn't there.
    numberline numbers(int64 i) const
    {
        return i >= 1 && i <= size() ? numbersof(line(i)) : numberline{};
    }
};

struct runfiles {
    std::string folder;
    statements &told;

    bool there(const std::string &path) const;    // as it is, or compressed
    textfile read(const std::string &path) const; // no lines if it isn't there: that is a violation
    // The 64-bit integers of all framed records, one behind the other, each of which must hold
    // recordsize of them; none if the file isn't so.
    std::vector<int64> records(const std::string &path, int64 recordsize) const;

    // Lines behind the titles hold, each, what fill puts into expected for it (from 1), value by
    // value. The file has nlines of them.
    void tableholds(const std::string &path, int64 ntitles, int64 nlines, std::string_view what,
                    const std::function<void(int64 line, std::vector<double> &expected)> &fill,
                    double tolerance = tendecimals) const;
    // The same for lines of an individual (I20) and alleles or genotypes (I2): individual(line) and
    // value(line, column).
    void allelesholds(const std::string &path, int64 ntitles, int64 nlines, int64 ncolumns,
                      const std::function<int64(int64 line)> &individual,
                      const std::function<int(int64 line, int64 column)> &value) const;
};

// The keys of the specification of the last run, in lower case, with their values.
struct settings {
    std::map<std::string, std::vector<std::string>> values;
    std::string word(const std::string &key) const; // first value in lower case, or empty
    double number(const std::string &key, std::size_t which = 0) const; // not a number without it
};
settings readsettings(const runfiles &files);
} // namespace checkrun
