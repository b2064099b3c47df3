// arrays.h - arrays of one, two and three dimensions, indexed from 1 unless a bound is given.
//
// Contiguous, the first index varies fastest, as in the binary files. Bounds are checked in
// builds with SOLVANTO_CHECKBOUNDS (debug and sanitizer builds), where a bad index aborts with
// its value and the bounds; release builds pay for the address arithmetic alone.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

using int64 = std::int64_t;
using int8 = std::int8_t;

// First and last index of one dimension. A plain number n stands for 1 to n.
struct extent {
    int64 lo = 1;
    int64 hi = 0;
    extent() = default;
    extent(int64 n) : lo(1), hi(n) {}
    extent(int64 first, int64 last) : lo(first), hi(last) {}
    int64 size() const { return hi < lo ? 0 : hi - lo + 1; }
};

namespace arraydetail
{
[[noreturn]] inline void outofbounds(int dimension, int64 index, extent e)
{
    std::fflush(stdout);
    std::fprintf(stderr, "array index %lld outside %lld to %lld in dimension %d\n",
                 static_cast<long long>(index), static_cast<long long>(e.lo),
                 static_cast<long long>(e.hi), dimension);
    std::abort();
}

inline int64 offset([[maybe_unused]] int dimension, int64 index, extent e)
{
#ifdef SOLVANTO_CHECKBOUNDS
    if (index < e.lo || index > e.hi) outofbounds(dimension, index, e);
#endif
    return index - e.lo;
}
} // namespace arraydetail

// What the three arrays share: storage, filling, freeing.
template <class T> class arraystore
{
  public:
    bool allocated() const { return exists; }
    int64 size() const { return static_cast<int64>(cells.size()); }
    T *data() { return cells.data(); }
    const T *data() const { return cells.data(); }
    T *begin() { return cells.data(); }
    T *end() { return cells.data() + cells.size(); }
    const T *begin() const { return cells.data(); }
    const T *end() const { return cells.data() + cells.size(); }
    void fill(const T &value) { std::fill(cells.begin(), cells.end(), value); }
    // Frees the memory at once; freeing an array that does not exist changes nothing.
    void release()
    {
        std::vector<T>().swap(cells);
        exists = false;
    }

  protected:
    void make(int64 n, const T &value)
    {
        std::vector<T>().swap(cells); // never two copies of a large array at once
        cells.assign(static_cast<std::size_t>(n), value);
        exists = true;
    }
    std::vector<T> cells;
    bool exists = false;
};

template <class T> class array1 : public arraystore<T>
{
  public:
    array1() = default;
    explicit array1(extent e, const T &value = T()) { allocate(e, value); }
    // Makes the array anew, every entry set to value.
    void allocate(extent e, const T &value = T())
    {
        e1 = e;
        this->make(e.size(), value);
    }
    void release()
    {
        arraystore<T>::release();
        e1 = extent();
    }
    T &operator()(int64 i) { return this->cells[at(i)]; }
    const T &operator()(int64 i) const { return this->cells[at(i)]; }
    int64 lower() const { return e1.lo; }
    int64 upper() const { return e1.hi; }

  private:
    std::size_t at(int64 i) const
    {
        return static_cast<std::size_t>(arraydetail::offset(1, i, e1));
    }
    extent e1;
};

template <class T> class array2 : public arraystore<T>
{
  public:
    array2() = default;
    array2(extent ei, extent ej, const T &value = T()) { allocate(ei, ej, value); }
    void allocate(extent ei, extent ej, const T &value = T())
    {
        e1 = ei;
        e2 = ej;
        this->make(ei.size() * ej.size(), value);
    }
    void release()
    {
        arraystore<T>::release();
        e1 = e2 = extent();
    }
    T &operator()(int64 i, int64 j) { return this->cells[at(i, j)]; }
    const T &operator()(int64 i, int64 j) const { return this->cells[at(i, j)]; }
    // Column j: contiguous, first index fastest.
    T *column(int64 j) { return this->cells.data() + arraydetail::offset(2, j, e2) * e1.size(); }
    const T *column(int64 j) const
    {
        return this->cells.data() + arraydetail::offset(2, j, e2) * e1.size();
    }
    extent extent1() const { return e1; }
    extent extent2() const { return e2; }

  private:
    std::size_t at(int64 i, int64 j) const
    {
        return static_cast<std::size_t>(arraydetail::offset(1, i, e1) +
                                        arraydetail::offset(2, j, e2) * e1.size());
    }
    extent e1, e2;
};

template <class T> class array3 : public arraystore<T>
{
  public:
    array3() = default;
    array3(extent ei, extent ej, extent ek, const T &value = T()) { allocate(ei, ej, ek, value); }
    void allocate(extent ei, extent ej, extent ek, const T &value = T())
    {
        e1 = ei;
        e2 = ej;
        e3 = ek;
        this->make(ei.size() * ej.size() * ek.size(), value);
    }
    void release()
    {
        arraystore<T>::release();
        e1 = e2 = e3 = extent();
    }
    T &operator()(int64 i, int64 j, int64 k) { return this->cells[at(i, j, k)]; }
    const T &operator()(int64 i, int64 j, int64 k) const { return this->cells[at(i, j, k)]; }
    // Column (j, k): contiguous, first index fastest.
    T *column(int64 j, int64 k)
    {
        return this->cells.data() +
               (arraydetail::offset(2, j, e2) + arraydetail::offset(3, k, e3) * e2.size()) *
                   e1.size();
    }
    const T *column(int64 j, int64 k) const { return const_cast<array3 *>(this)->column(j, k); }
    extent extent1() const { return e1; }
    extent extent2() const { return e2; }
    extent extent3() const { return e3; }

  private:
    std::size_t at(int64 i, int64 j, int64 k) const
    {
        return static_cast<std::size_t>(
            arraydetail::offset(1, i, e1) +
            (arraydetail::offset(2, j, e2) + arraydetail::offset(3, k, e3) * e2.size()) *
                e1.size());
    }
    extent e1, e2, e3;
};

// One record for each value of an enumeration, which counts from 0.
template <class Enum, class T, std::size_t n> struct enumarray {
    T &operator[](Enum e) { return records[static_cast<std::size_t>(e)]; }
    const T &operator[](Enum e) const { return records[static_cast<std::size_t>(e)]; }
    T records[n];
};
