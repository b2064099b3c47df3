#include "haplotypefiles.h"

#include "bitsquares.h"
#include "files.h"
#include "stops.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace
{
const char *const names[] = {"MacsHaplotypes.txt", "PhysicalMapInput.txt", "SegSites.txt"};

std::string unfinished(const std::string &name)
{
    return name + ".unfinished";
}

// " 0" or " 1" for each of eight alleles, the first in the lowest bit.
struct allelestexts {
    char text[256][16];
    constexpr allelestexts() : text()
    {
        for (int byte = 0; byte < 256; ++byte)
            for (int i = 0; i < 8; ++i) {
                text[byte][2 * i] = ' ';
                text[byte][2 * i + 1] = byte >> i & 1 ? '1' : '0';
            }
    }
};
constexpr allelestexts texts;

// Alleles of up to 64 haplotypes over all selected sites, a row of words for each haplotype.
class haplotypetile
{
  public:
    haplotypetile(const sitestore &sitesin, const std::vector<int64> &selectedin)
        : sites(sitesin), selected(selectedin), wordsperrow((selectedin.size() + 63) / 64),
          rows(static_cast<std::size_t>(std::min<int64>(64, sitesin.nhaplos())) * wordsperrow)
    {
    }
    // Haplotypes first, first + 1, ..., count of them; first is a multiple of 64.
    void load(int64 first, int64 count)
    {
        const std::size_t offset = static_cast<std::size_t>(first / 8);
        const std::size_t nbytes =
            std::min<std::size_t>(8, static_cast<std::size_t>(sites.bytesperrow()) - offset);
        for (std::size_t w = 0; w < wordsperrow; ++w) {
            std::uint64_t words[64] = {};
            const std::size_t nsites = std::min<std::size_t>(64, selected.size() - 64 * w);
            for (std::size_t i = 0; i < nsites; ++i)
                std::memcpy(words + i, sites.row(selected[64 * w + i]) + offset, nbytes);
            transpose64(words);
            for (std::size_t h = 0; h < static_cast<std::size_t>(count); ++h)
                rows[h * wordsperrow + w] = words[h];
        }
    }
    void write(outfile &out, int64 h) const
    {
        const std::uint64_t *row = rows.data() + static_cast<std::size_t>(h) * wordsperrow;
        for (std::size_t w = 0; w < wordsperrow; ++w) {
            char *p = out.reserve(128);
            for (int byte = 0; byte < 8; ++byte)
                std::memcpy(p + 16 * byte, texts.text[row[w] >> 8 * byte & 255], 16);
            out.commit(2 * std::min<std::size_t>(64, selected.size() - 64 * w));
        }
        out.write("\n");
    }

  private:
    const sitestore &sites;
    const std::vector<int64> &selected;
    std::size_t wordsperrow;
    std::vector<std::uint64_t> rows;
};

void writehaplotypes(const sitestore &store, const std::vector<int64> &selected)
{
    outfile out(unfinished("MacsHaplotypes.txt"));
    haplotypetile tile(store, selected);
    for (int64 first = 0; first < store.nhaplos(); first += 64) {
        const int64 count = std::min<int64>(64, store.nhaplos() - first);
        tile.load(first, count);
        for (int64 h = 0; h < count; ++h) tile.write(out, h);
    }
    out.close();
}

void writepositions(const sitestore &store, const std::vector<int64> &selected)
{
    outfile out(unfinished("PhysicalMapInput.txt"));
    textline line;
    for (const int64 k : selected) {
        putf(line, store.position(k), 24, 20);
        out.writeline(line);
    }
    out.close();
}

void writecount(int64 nsites)
{
    outfile out(unfinished("SegSites.txt"));
    out.writeline(freeline(nsites));
    out.close();
}
} // namespace

void removehaplotypefiles()
{
    for (const char *name : names) {
        ::unlink(name);
        ::unlink(unfinished(name).c_str());
    }
}

void writehaplotypefiles(const sitestore &store, const std::vector<int64> &selected)
{
    try {
        writehaplotypes(store, selected);
        writepositions(store, selected);
        writecount(static_cast<int64>(selected.size()));
        for (const char *name : names)
            if (std::rename(unfinished(name).c_str(), name) != 0)
                ioerrno(name, "can't be put in place");
    } catch (...) {
        removehaplotypefiles();
        throw;
    }
}
