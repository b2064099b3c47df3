// statements.h - counts what is found true and false of a run folder, and keeps what to say of it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace checkrun
{
using int64 = std::int64_t;

// A line of a text file, from 1, or another numbered thing in a file.
struct place {
    std::string_view file;
    int64 at = 0; // 0: the file as such
    const char *unit = "line";
};

// Each routine makes one statement and says whether it holds. Of a statement about a file the first
// few violations are kept in words, the rest is counted.
struct statements {
    bool holds(bool ok, const place &where, std::string_view what);
    bool equal(const place &where, std::string_view what, int64 expected, int64 found);
    // Not a number is near nothing.
    bool near(const place &where, std::string_view what, double expected, double found,
              double tolerance);
    // What the folder can't tell, once for each pair of texts.
    void skip(const std::string &what, const std::string &why);
    // What was found, line by line: violations, what was left out, and the counts.
    std::string report() const;

    int64 nchecked = 0, nviolated = 0;
    std::vector<std::string> violations, left;

  private:
    void violate(const place &where, std::string_view what, const std::string &detail);
    std::map<std::string, int64> ofkind;
};
} // namespace checkrun
