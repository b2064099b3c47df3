#include "coalescentoutput.h"

#include "files.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little,
              "packing eight characters at once takes the first for the lowest byte");

sitestore::sitestore(int64 nhaplotypes)
    : n(nhaplotypes), rowbytes((nhaplotypes + 7) / 8), chunkbits(12)
{
    while (chunkbits > 0 && rowbytes << chunkbits > 1 << 20) --chunkbits;
}

bool sitestore::add(double position, const char *alleles)
{
    if (placeof(sites) == 0) {
        chunk fresh;
        fresh.positions.resize(std::size_t{1} << chunkbits);
        fresh.bits.resize(static_cast<std::size_t>(rowbytes << chunkbits));
        chunks.push_back(std::move(fresh));
    }
    chunk &last = chunks.back();
    std::uint8_t *bits = last.bits.data() + placeof(sites) * static_cast<std::size_t>(rowbytes);
    std::uint64_t foreign = 0;
    for (int64 h = 0; h < n; h += 8) {
        std::uint64_t eight = 0x3030303030303030; // "00000000"
        std::memcpy(&eight, alleles + h, static_cast<std::size_t>(std::min<int64>(8, n - h)));
        foreign |= (eight & 0xfefefefefefefefe) ^ 0x3030303030303030;
        // The product gathers the lowest bits of the eight bytes in its highest byte.
        *bits++ =
            static_cast<std::uint8_t>((eight & 0x0101010101010101) * 0x0102040810204080 >> 56);
    }
    if (foreign != 0) return false;
    last.positions[placeof(sites)] = position;
    ++sites;
    return true;
}

namespace
{
// Place of the first blank or tab, or the size. Alleles are words of thousands of characters, through
// which only a search for a single character goes at the speed of memory.
std::size_t endofword(std::string_view text)
{
    const std::size_t tab = std::min(text.find('\t'), text.size());
    return std::min(text.substr(0, tab).find(' '), tab);
}

// The next word of a line, separated by blanks and tabs; empty at the end of the line.
std::string_view cutword(std::string_view &line)
{
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        line = {};
        return {};
    }
    line.remove_prefix(first);
    const std::string_view word = line.substr(0, endofword(line));
    line.remove_prefix(word.size());
    return word;
}

bool beginswith(const infile &in, std::string_view word)
{
    return in.line().substr(0, word.size()) == word;
}

// The number of a line such as "SEED:<tab>3", the rest of the line must be empty.
int64 numberof(const infile &in)
{
    std::string_view line = in.line();
    const std::string label(cutword(line));
    int64 value = 0;
    if (!readinteger(cutword(line), value) || !cutword(line).empty())
        in.complain("a whole number is wanted after " + label);
    return value;
}

void gotoline(infile &in, std::string_view label, std::string_view otherwise)
{
    const std::string wanted = "\"" + std::string(label) + "\", ";
    if (!in.nextrecord())
        ioerror(in.path(), "ends after line " + numbertext(in.linenumber()) +
                               " where the next should begin with " + wanted +
                               std::string(otherwise));
    if (!beginswith(in, label))
        in.complain("the line should begin with " + wanted + std::string(otherwise));
}

constexpr std::string_view brokenrun =
    "the run of macs broke off or is not done (its own messages stand in debug.txt)";
constexpr std::string_view foreigninput = "this is not the output of a run of macs that went "
                                          "through (its own messages stand in debug.txt)";

void stopifcutshort(const infile &in)
{
    if (!in.endswithlineend()) in.complain("the line is cut short: " + std::string(brokenrun));
}

void addsite(const infile &in, sitestore &store)
{
    std::string_view line = in.line();
    cutword(line);
    int64 index = 0;
    double position = 0, age = 0;
    if (!readinteger(cutword(line), index) || !readreal(cutword(line), position) ||
        !readreal(cutword(line), age))
        in.complain("a site should have an index, a position and an age");
    if (index != store.nsites())
        in.complain("site " + numbertext(index) + " stands where site " +
                    numbertext(store.nsites()) + " is due");
    if (!(position >= 0 && position <= 1)) in.complain("the position is not between 0 and 1");
    if (store.nsites() > 0 && position < store.position(store.nsites() - 1))
        in.complain("the position lies before that of the site before");
    const std::string_view alleles = cutword(line);
    const int64 found = static_cast<int64>(alleles.size());
    stopifcutshort(in);
    if (found != store.nhaplos())
        in.complain("the site has " + numbertext(found) + " alleles, asked for are " +
                    numbertext(store.nhaplos()) + " haplotypes");
    if (!store.add(position, alleles.data()) || !cutword(line).empty())
        in.complain("alleles should be one word of 0 and 1");
}

void readselectedsites(infile &in, int64 nsites, std::vector<int64> &selected)
{
    gotoline(in, "TOTAL_SITES:", brokenrun);
    const int64 nselected = numberof(in);
    gotoline(in, "BEGIN_SELECTED_SITES", brokenrun);
    if (!in.nextrecord())
        ioerror(in.path(), "ends before the selected sites: " + std::string(brokenrun));
    std::string_view line = in.line();
    for (std::string_view word = cutword(line); !word.empty(); word = cutword(line)) {
        int64 index = 0;
        if (!readinteger(word, index) || index < 0 || index >= nsites ||
            (!selected.empty() && index <= selected.back()))
            in.complain("\"" + std::string(word) +
                        "\" is not the next index of a selected site: " + std::string(brokenrun));
        selected.push_back(index);
    }
    if (static_cast<int64>(selected.size()) != nselected)
        in.complain("there are " + numbertext(static_cast<int64>(selected.size())) +
                    " selected sites, TOTAL_SITES: says " + numbertext(nselected));
    gotoline(in, "END_SELECTED_SITES", brokenrun);
}
} // namespace

void readcoalescentoutput(const std::string &path, sitestore &store, std::vector<int64> &selected)
{
    infile in(path);
    gotoline(in, "COMMAND:", foreigninput);
    gotoline(in, "SEED:", foreigninput);
    numberof(in);
    stopifcutshort(in);
    bool more = in.nextrecord();
    for (; more && !beginswith(in, "TOTAL_SAMPLES:"); more = in.nextrecord()) {
        if (beginswith(in, "NEWICK_TREE:")) continue;
        if (!beginswith(in, "SITE:")) in.complain("an unknown line: " + std::string(foreigninput));
        addsite(in, store);
    }
    if (!more) {
        if (store.nsites() == 0) return;
        ioerror(path, "ends after " + numbertext(store.nsites()) +
                          " sites without the closing block: " + std::string(brokenrun));
    }
    if (numberof(in) != store.nhaplos())
        in.complain("asked for are " + numbertext(store.nhaplos()) + " haplotypes");
    readselectedsites(in, store.nsites(), selected);
    while (in.nextrecord()) {
        if (beginswith(in, "SITE:") || beginswith(in, "NEWICK_TREE:"))
            in.complain("a second chromosome begins here, run macs for one at a time (-i 1)");
        if (!trim(in.line()).empty()) in.complain("an unknown line behind the closing block");
    }
}
