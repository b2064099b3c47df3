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

// A line of a text file, from 1, or another numbered thing in a file; 0: the file as such.
struct place {
    std::string_view file;
    int64 at = 0;
    const char *unit = "line";
};

// Each routine makes one statement and gives whether it holds. Of a statement about a file the
// first few violations are kept in words, the rest is counted.
struct statements {
    bool holds(bool ok, const place &where, std::string_view what);
    // Not a number is near nothing.
    bool is(const place &where, std::string_view what, double expected, double found,
            double tolerance = 0);
    // What the folder can't tell, once for each pair of texts.
    void leaveout(const std::string &what, const std::string &why);
    // Violations, what was left out, and the counts, line by line.
    std::string report() const;

    int64 nchecked = 0, nviolated = 0;

  private:
    void violate(const place &where, std::string_view what, const std::string &detail);
    std::vector<std::string> violations, left;
    std::map<std::string, int64> ofkind;
};
} // namespace checkrun
