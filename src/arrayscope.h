// arrayscope.h - arrays of the state that live as long as a stage.
//
// What a stage makes through its scope is freed where the scope ends, also on the way out of a
// stop. The arrays must outlive the scope; those made elsewhere are handed over by hold.
#pragma once

#include <vector>

class arrayscope
{
  public:
    arrayscope() = default;
    arrayscope(const arrayscope &) = delete;
    arrayscope &operator=(const arrayscope &) = delete;
    ~arrayscope()
    {
        for (const held &h : arrays) h.release(h.array);
    }

    // Makes the array anew with these extents (and a value for its entries, 0 if none is given).
    template <class Array, class... Extents> void make(Array &array, const Extents &...extents)
    {
        hold(array);
        array.allocate(extents...);
    }
    // Frees the array at the end, whoever makes it.
    template <class Array> void hold(Array &array)
    {
        arrays.push_back({&array, [](void *a) { static_cast<Array *>(a)->release(); }});
    }

  private:
    struct held {
        void *array;
        void (*release)(void *);
    };
    std::vector<held> arrays;
};
