// genomes.h - packed haplotypes in memory: the founders of a chromosome, and a generation.
//
// A block is one 64-bit integer of 60 loci (see haplotypes/blocks.h). In memory each haplotype lies
// contiguous, block after block, since gametes are made and copied whole; the binary files hold
// the individual index fastest, and the transposition is done at the file boundary, in tiles.
#pragma once

#include "arrays.h"

#include <cassert>

constexpr int64 lociperblock = 60;

// Founder haplotypes (h, b): haplotype h from 1, block b from 1.
class haplotypestore
{
  public:
    void allocate(int64 nhaplos, int64 nblock)
    {
        n = nhaplos;
        blocks = nblock;
        cells.allocate(nhaplos * nblock);
    }
    void release()
    {
        cells.release();
        n = blocks = 0;
    }
    bool allocated() const { return cells.allocated(); }
    int64 nhaplos() const { return n; }
    int64 nblock() const { return blocks; }
    int64 &operator()(int64 h, int64 b) { return cells(start(h) + inside(b)); }
    int64 operator()(int64 h, int64 b) const { return cells(start(h) + inside(b)); }
    // The blocks of haplotype h, the first of them at offset 0.
    int64 *haplotype(int64 h) { return cells.data() + start(h); }
    const int64 *haplotype(int64 h) const { return cells.data() + start(h); }

  private:
    int64 start(int64 h) const
    {
        assert(h >= 1 && h <= n);
        return (h - 1) * blocks;
    }
    int64 inside(int64 b) const
    {
        assert(b >= 1 && b <= blocks);
        return b;
    }
    array1<int64> cells;
    int64 n = 0, blocks = 0;
};

// Genomes of a generation on one chromosome (k, b, m): individual k within the generation from
// 1, block b from 1, gamete m: 1 from the sire, 2 from the dam. A cell of -99 is not yet made.
class genomestore
{
  public:
    // Every cell -99. Memory of the same size is used again: the system takes several times as
    // long to hand out a large piece as a generation takes to be cleared.
    void allocate(int64 nindiv, int64 nblock)
    {
        n = nindiv;
        blocks = nblock;
        if (cells.allocated() && cells.size() == 2 * nindiv * nblock)
            cells.fill(-99);
        else
            cells.allocate(2 * nindiv * nblock, -99);
    }
    void release()
    {
        cells.release();
        n = blocks = 0;
    }
    bool allocated() const { return cells.allocated(); }
    void fill(int64 value) { cells.fill(value); }
    int64 nindiv() const { return n; }
    int64 nblock() const { return blocks; }
    int64 &operator()(int64 k, int64 b, int64 m) { return cells(start(k, m) + inside(b)); }
    int64 operator()(int64 k, int64 b, int64 m) const { return cells(start(k, m) + inside(b)); }
    // The blocks of gamete m of individual k, the first of them at offset 0.
    int64 *gamete(int64 k, int64 m) { return cells.data() + start(k, m); }
    const int64 *gamete(int64 k, int64 m) const { return cells.data() + start(k, m); }

  private:
    int64 start(int64 k, int64 m) const
    {
        assert(k >= 1 && k <= n);
        assert(m == 1 || m == 2);
        return ((k - 1) * 2 + m - 1) * blocks;
    }
    int64 inside(int64 b) const
    {
        assert(b >= 1 && b <= blocks);
        return b;
    }
    array1<int64> cells;
    int64 n = 0, blocks = 0;
};
