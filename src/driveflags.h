// driveflags.h - the table of drive alleles: one flag for each individual, QTN and phase.
#pragma once

#include "arrays.h"

#include <cassert>

// Flags (i, q, m): pedigree row i from 1, QTN q by its number in the whole genome, phase m: 1 from
// the sire, 2 from the dam. In memory the QTN varies fastest, then the phase, since flags
// pass on by chromosomes.
class driveflags
{
  public:
    // Every flag 0.
    void allocate(int64 nindiv, int64 nqtn)
    {
        n = nindiv;
        nqtns = nqtn;
        cells.allocate(2 * nindiv * nqtn);
    }
    void release()
    {
        cells.release();
        n = nqtns = 0;
    }
    int64 nindiv() const { return n; }
    int64 nqtn() const { return nqtns; }
    int8 &operator()(int64 i, int64 q, int64 m) { return cells(place(i, q, m)); }
    int8 operator()(int64 i, int64 q, int64 m) const { return cells(place(i, q, m)); }
    // The flags of phase m of individual i from QTN q on.
    int8 *from(int64 i, int64 q, int64 m) { return cells.data() + place(i, q, m) - 1; }
    const int8 *from(int64 i, int64 q, int64 m) const { return cells.data() + place(i, q, m) - 1; }

  private:
    // A chromosome without QTN begins behind the last.
    int64 place(int64 i, int64 q, int64 m) const
    {
        assert(i >= 1 && i <= n);
        assert(q >= 1 && q <= nqtns + 1);
        assert(m == 1 || m == 2);
        return ((i - 1) * 2 + m - 1) * nqtns + q;
    }
    array1<int8> cells;
    int64 n = 0, nqtns = 0;
};
