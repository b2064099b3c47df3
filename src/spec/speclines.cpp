#include "spec/speclines.h"

#include "files.h"
#include "textlayout.h"
#include "words.h"

#include <cmath>

std::vector<std::string> readspeclines(const std::string &filename)
{
    infile in(filename);
    std::vector<std::string> records;
    while (in.nextrecord()) records.emplace_back(in.line());
    return records;
}

bool isemptyrecord(std::string_view line)
{
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

void parseline(std::string_view line, std::string &first, std::vector<std::string> &second)
{
    first.clear();
    second.clear();
    std::string *open = &first;
    for (const char c : trim(line)) {
        if (c == ' ' || c == '\t') continue;
        if (c == ',')
            open = &second.emplace_back();
        else if (open->size() < settingwidth)
            open->push_back(c);
    }
}

bool readrow(const std::vector<std::string> &records, std::size_t &at, int64 n,
             std::vector<double> &values)
{
    constexpr std::string_view separators = " \t,";
    values.clear();
    for (;; ++at) {
        if (at >= records.size()) return false;
        std::string_view rest = records[at];
        for (;;) {
            const std::size_t begin = rest.find_first_not_of(separators);
            if (begin == std::string_view::npos) break;
            rest.remove_prefix(begin);
            const std::string_view word = rest.substr(0, rest.find_first_of(separators));
            double value = 0;
            if (!readreal(word, value) || !std::isfinite(value)) return false;
            values.push_back(value);
            if (static_cast<int64>(values.size()) == n) return true;
            rest.remove_prefix(word.size());
        }
    }
}
