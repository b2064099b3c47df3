#include "spec/specvalues.h"

#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <cmath>

namespace
{
[[noreturn]] void stopofkey(const speckey &key)
{
    if (*key.message) printline(key.message);
    stopwithcode(key.code);
}
} // namespace

void failkey(const specreader &r, int64 i, std::string_view reason)
{
    explainvalue(r, i, reason);
    stopofkey(*r.key);
}

void failkey(const specreader &r, std::string_view name, std::string_view reason)
{
    explainkeys(r, {name}, reason);
    stopofkey(*findkey(name));
}

const std::string &valuetext(const specreader &r, int64 i)
{
    if (static_cast<int64>(r.second.size()) < i) failkey(r, i);
    return r.second[static_cast<std::size_t>(i - 1)];
}

const std::string &valueword(const specreader &r, int64 i)
{
    const std::string &word = valuetext(r, i);
    if (word.empty()) failkey(r, i);
    return word;
}

bool valueis(const specreader &r, std::string_view word)
{
    return isword(valuetext(r, 1), word);
}

bool tryinteger(const specreader &r, int64 i, int64 &variable, int64 lowest, int64 highest)
{
    int64 value = 0;
    if (!readinteger(valuetext(r, i), value)) return false;
    if (value < lowest || value > highest) failkey(r, i);
    variable = value;
    return true;
}

bool tryreal(const specreader &r, int64 i, double &variable, double lowest)
{
    double value = 0;
    if (!readreal(valuetext(r, i), value) || !std::isfinite(value)) return false;
    if (value < lowest) failkey(r, i);
    variable = value;
    return true;
}

int64 valueinteger(const specreader &r, int64 i, int64 lowest, int64 highest)
{
    int64 value = 0;
    if (!tryinteger(r, i, value, lowest, highest)) failkey(r, i);
    return value;
}

double valuereal(const specreader &r, int64 i, double lowest)
{
    double value = 0;
    if (!tryreal(r, i, value, lowest)) failkey(r, i);
    return value;
}

void needcount(const specreader &r, int64 n)
{
    if (!r.second.empty() && static_cast<int64>(r.second.size()) == n) return;
    const auto nvalues = static_cast<int64>(r.second.size());
    failkey(r, 0,
            "the number of values is " + numbertext(nvalues) + ", wanted are " + numbertext(n) +
                (nvalues > n ? " (decimals have a point)" : ""));
}

const std::string &valuepath(const specreader &r, int64 i)
{
    const std::string &path = valuetext(r, i);
    constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                         "0123456789._-/+=@:,";
    if (path.find_first_not_of(allowed) != std::string::npos)
        failkey(r, i, "a name may hold letters, digits and . _ - / + = @ : , alone");
    return path;
}

bool hasgenerations(specreader &r)
{
    if (!r.b1 && !r.tooearly) r.tooearly = r.key;
    return r.b1;
}
