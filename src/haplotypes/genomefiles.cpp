#include "haplotypes/genomefiles.h"

#include "stops.h"

#include <algorithm>
#include <cassert>
#include <vector>

namespace
{
// Blocks of every row that are gone through at a time: a buffer of about 4 MB, but at least the
// eight blocks of a cache line of memory, since each line of the store is fetched once per pass.
int64 blocksatatime(int64 nrows, int64 nblock)
{
    const int64 fitting = (int64(1) << 19) / std::max<int64>(nrows, 1);
    return std::min(std::max<int64>(fitting, 8), std::max<int64>(nblock, 1));
}

constexpr int64 tile = 16; // rows and blocks of a tile: both sides of it stay in the cache

// rows: the first of nrows rows of blocks, each stride integers behind the last; buffer(row,
// block) with the row fastest. Moves nwide blocks of every row.
void gatherrows(const int64 *rows, int64 stride, int64 nrows, int64 nwide, int64 *buffer)
{
    for (int64 k0 = 0; k0 < nrows; k0 += tile) {
        const int64 k1 = std::min(k0 + tile, nrows);
        for (int64 b0 = 0; b0 < nwide; b0 += tile) {
            const int64 b1 = std::min(b0 + tile, nwide);
            for (int64 b = b0; b < b1; ++b)
                for (int64 k = k0; k < k1; ++k) buffer[b * nrows + k] = rows[k * stride + b];
        }
    }
}

void scatterrows(const int64 *buffer, int64 stride, int64 nrows, int64 nwide, int64 *rows)
{
    for (int64 k0 = 0; k0 < nrows; k0 += tile) {
        const int64 k1 = std::min(k0 + tile, nrows);
        for (int64 b0 = 0; b0 < nwide; b0 += tile) {
            const int64 b1 = std::min(b0 + tile, nwide);
            for (int64 k = k0; k < k1; ++k)
                for (int64 b = b0; b < b1; ++b) rows[k * stride + b] = buffer[b * nrows + k];
        }
    }
}

// Bits that no locus uses: those of the blocks, taken together, tell whether one has them. So has a
// block of -99, which stands for one that was never made.
constexpr std::uint64_t unusedbits = ~std::uint64_t{0} << lociperblock;

// All bits of n blocks together.
std::uint64_t allbits(const int64 *blocks, int64 n)
{
    std::uint64_t bits = 0;
    for (int64 b = 0; b < n; ++b) bits |= static_cast<std::uint64_t>(blocks[b]);
    return bits;
}

void stopifunused(std::uint64_t bits, const std::string &path)
{
    if ((bits & unusedbits) != 0)
        ioerror(path, "holds a block that no genome has: bits that stand for no locus are set");
}

// One matrix (nrows, nblock) of the record.
void putmatrix(framewriter &record, const int64 *rows, int64 stride, int64 nrows, int64 nblock)
{
    const int64 nwide = blocksatatime(nrows, nblock);
    std::vector<int64> buffer(static_cast<std::size_t>(nwide * nrows));
    for (int64 b = 0; b < nblock; b += nwide) {
        const int64 n = std::min(nwide, nblock - b);
        gatherrows(rows + b, stride, nrows, n, buffer.data());
        record.put(buffer.data(), n * nrows * 8);
    }
}

void getmatrix(framereader &record, int64 *rows, int64 stride, int64 nrows, int64 nblock)
{
    const int64 nwide = blocksatatime(nrows, nblock);
    std::vector<int64> buffer(static_cast<std::size_t>(nwide * nrows));
    std::uint64_t bits = 0;
    for (int64 b = 0; b < nblock; b += nwide) {
        const int64 n = std::min(nwide, nblock - b);
        record.get(buffer.data(), n * nrows * 8);
        bits |= allbits(buffer.data(), n * nrows);
        scatterrows(buffer.data(), stride, nrows, n, rows + b);
    }
    stopifunused(bits, record.path());
}
} // namespace

void readgenome(const std::string &path, genomestore &g, int64 nindiv, int64 nblock)
{
    framereader in(path);
    in.begin(2 * nindiv * nblock * 8);
    if (!g.allocated() || g.nindiv() != nindiv || g.nblock() != nblock) g.allocate(nindiv, nblock);
    for (int64 m = 1; m <= 2 && nindiv > 0; ++m)
        getmatrix(in, g.gamete(1, m), 2 * nblock, nindiv, nblock);
    in.finish();
    in.stopifmore();
}

void checkgenomeblocks(const std::string &path, int64 nindiv, int64 nblock)
{
    framereader in(path);
    in.begin(2 * nindiv * nblock * 8);
    std::vector<int64> buffer(static_cast<std::size_t>(std::max<int64>(nindiv, 1) * tile));
    std::uint64_t bits = 0;
    const int64 nrows = 2 * nindiv * nblock, most = static_cast<int64>(buffer.size());
    for (int64 done = 0; done < nrows; done += most) {
        const int64 n = std::min(most, nrows - done);
        in.get(buffer.data(), n * 8);
        bits |= allbits(buffer.data(), n);
    }
    stopifunused(bits, path);
    in.finish();
    in.stopifmore();
}

void writegenome(const std::string &path, const genomestore &g, int64 limit)
{
    outfile out(path);
    framewriter record(out, 2 * g.nindiv() * g.nblock() * 8, limit);
    for (int64 m = 1; m <= 2 && g.nindiv() > 0; ++m)
        putmatrix(record, g.gamete(1, m), 2 * g.nblock(), g.nindiv(), g.nblock());
    record.finish();
    out.close();
}

void readgenomerows(const std::string &path, int64 nindiv, int64 nblock, const array1<int64> &rows,
                    genomestore &g, int64 firstplace)
{
    assert(std::all_of(rows.begin(), rows.end(),
                       [&](int64 row) { return row >= 1 && row <= nindiv; }));
    assert(firstplace >= 1 && firstplace + rows.size() - 1 <= g.nindiv());
    framereader in(path);
    in.begin(2 * nindiv * nblock * 8);
    std::vector<int64> column(static_cast<std::size_t>(nindiv));
    std::uint64_t bits = 0;
    for (int64 m = 1; m <= 2; ++m) {
        for (int64 b = 1; b <= nblock; ++b) {
            in.get(column.data(), nindiv * 8);
            bits |= allbits(column.data(), nindiv);
            for (int64 r = 1; r <= rows.size(); ++r)
                g(firstplace + r - 1, b, m) = column[static_cast<std::size_t>(rows(r) - 1)];
        }
    }
    stopifunused(bits, path);
    in.finish();
    in.stopifmore();
}

genomeblocks::genomeblocks(const std::string &path, int64 nrowsin, int64 nblock, int64 ngametes,
                           std::size_t bytesatatime)
    : nrows(nrowsin)
{
    const int64 nbytes = ngametes * nrows * nblock * 8;
    for (int64 m = 1; m <= ngametes; ++m) {
        gametereader &gamete = gametes.emplace_back();
        gamete.in.open(path, bytesatatime);
        gamete.in.begin(nbytes);
        gamete.in.skip((m - 1) * nrows * nblock * 8);
        gamete.rows.resize(static_cast<std::size_t>(nrows));
    }
    // A file that is cut is refused before anything is made of its beginning.
    if (gametes[0].in.recordlength() != nbytes) ioerror(path, "does not hold one whole record");
}

const int64 *genomeblocks::block(int64 b, int64 m)
{
    gametereader &gamete = gametes[static_cast<std::size_t>(m - 1)];
    assert(b >= gamete.next);
    gamete.in.skip((b - gamete.next) * nrows * 8);
    gamete.in.get(gamete.rows.data(), nrows * 8);
    gamete.next = b + 1;
    stopifunused(allbits(gamete.rows.data(), nrows), gamete.in.path());
    return gamete.rows.data();
}

void readhaplotypes(const std::string &path, haplotypestore &h, int64 nblock)
{
    framereader in(path);
    const int64 nbytes = in.recordlength(), nhaplos = nblock > 0 ? nbytes / (nblock * 8) : 0;
    if (nhaplos * nblock * 8 != nbytes)
        ioerror(path,
                "holds no whole number of haplotypes of " + std::to_string(nblock) + " blocks");
    in.begin(nbytes);
    h.allocate(nhaplos, nblock);
    if (nhaplos > 0) getmatrix(in, h.haplotype(1), nblock, nhaplos, nblock);
    in.finish();
    in.stopifmore();
}

void writehaplotypes(const std::string &path, const haplotypestore &h, int64 limit)
{
    outfile out(path);
    framewriter record(out, h.nhaplos() * h.nblock() * 8, limit);
    if (h.nhaplos() > 0) putmatrix(record, h.haplotype(1), h.nblock(), h.nhaplos(), h.nblock());
    record.finish();
    out.close();
}
