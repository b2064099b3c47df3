// runfiles.h - reads the files of a run folder, by means of its own: a second opinion on what the
// program writes must not read as the program does.
#pragma once

#include "checkrun/statements.h"

#include <functional>
#include <limits>

namespace checkrun
{
inline constexpr double any = std::numeric_limits<double>::quiet_NaN(); // isn't looked at
inline constexpr double tendecimals = 0.6e-10; // how far a value in ten decimals may be off

// Indices from 1.
template <class T> struct list : std::vector<T> {
    using std::vector<T>::vector;
    T &operator()(int64 i) { return (*this)[static_cast<std::size_t>(i - 1)]; }
    const T &operator()(int64 i) const { return (*this)[static_cast<std::size_t>(i - 1)]; }
    int64 n() const { return static_cast<int64>(this->size()); }
};
using reals = list<double>;

// The words of a line as numbers; not a number for one that is none and behind the last one.
struct numberline {
    reals values;
    double operator()(int64 k) const { return k >= 1 && k <= n() ? values(k) : any; }
    int64 whole(int64 k) const; // -1 if it isn't a whole number
    int64 n() const { return values.n(); }
};
numberline numbersof(std::string_view line);

struct textfile {
    std::string path;
    std::vector<char> content;
    list<std::string_view> lines; // into content
    int64 n() const { return lines.n(); }
    numberline operator()(int64 i) const; // none behind the last line
};

struct runfiles {
    std::string folder;
    statements &told;

    bool there(const std::string &path) const;    // as it is, or compressed
    textfile read(const std::string &path) const; // that it isn't there is a violation
    // The 64-bit integers of all framed records, one behind the other; none if the file doesn't
    // consist of records of that many.
    list<int64> records(const std::string &path, int64 recordsize) const;
    // The lines behind the titles hold, value by value, what of() gives; there are so many of them.
    void table(const std::string &path, int64 ntitles, int64 nlines, std::string_view what,
               const std::function<reals(int64 line)> &of, double tolerance = tendecimals) const;
};

// The keys of a specification in lower case, with their values.
struct settings {
    std::map<std::string, std::vector<std::string>> values;
    std::string word(const std::string &key) const; // first value in lower case, or empty
    double number(const std::string &key, int64 which = 1) const; // not a number without it
};
settings readsettings(const runfiles &files);
} // namespace checkrun
