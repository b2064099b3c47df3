#include "spec/specreader.h"

#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <cmath>

std::vector<speckey> allspeckeys()
{
    std::vector<speckey> keys;
    for (const auto table :
         {keyspopulation(), keysgenome(), keysrecombinationediting(), keysselectiontraits()})
        keys.insert(keys.end(), table.begin(), table.end());
    return keys;
}

const speckey *findkey(std::string_view name)
{
    for (const auto table :
         {keyspopulation(), keysgenome(), keysrecombinationediting(), keysselectiontraits()})
        for (const speckey &key : table)
            if (name == key.name) return &key;
    return nullptr;
}

void failkey(const speckey &key)
{
    if (*key.message) printline(key.message);
    stopwithcode(key.code);
}

void failkey(const specreader &r)
{
    failkey(*r.key);
}

void failkey(std::string_view name)
{
    failkey(*findkey(name));
}

const std::string &valuetext(const specreader &r, int64 i)
{
    if (static_cast<int64>(r.second.size()) < i) failkey(r);
    return r.second[static_cast<std::size_t>(i - 1)];
}

const std::string &valueword(const specreader &r, int64 i)
{
    const std::string &word = valuetext(r, i);
    if (word.empty()) failkey(r);
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
    if (value < lowest || value > highest) failkey(r);
    variable = value;
    return true;
}

bool tryreal(const specreader &r, int64 i, double &variable, double lowest)
{
    double value = 0;
    if (!readreal(valuetext(r, i), value) || !std::isfinite(value)) return false;
    if (value < lowest) failkey(r);
    variable = value;
    return true;
}

int64 valueinteger(const specreader &r, int64 i, int64 lowest, int64 highest)
{
    int64 value = 0;
    if (!tryinteger(r, i, value, lowest, highest)) failkey(r);
    return value;
}

double valuereal(const specreader &r, int64 i, double lowest)
{
    double value = 0;
    if (!tryreal(r, i, value, lowest)) failkey(r);
    return value;
}

void needcount(const specreader &r, int64 n)
{
    if (r.second.empty() || static_cast<int64>(r.second.size()) != n) failkey(r);
}

const std::string &valuepath(const specreader &r, int64 i)
{
    const std::string &path = valuetext(r, i);
    constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                         "0123456789._-/+=@:,";
    if (path.find_first_not_of(allowed) != std::string::npos) failkey(r);
    return path;
}

bool hasgenerations(specreader &r)
{
    if (!r.b1 && !r.tooearly) r.tooearly = r.key;
    return r.b1;
}
