// bytebuffer.h - bytes of a file on their way, whose memory is not cleared before.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

class bytebuffer
{
  public:
    char *data() { return bytes.get(); }
    const char *data() const { return bytes.get(); }
    std::size_t size() const { return length; }
    // Room for n bytes; of those before, the first nkept stay.
    void resize(std::size_t n, std::size_t nkept = 0)
    {
        if (n == length) return;
        std::unique_ptr<char[]> next = std::make_unique_for_overwrite<char[]>(n);
        if (nkept > 0) std::memcpy(next.get(), bytes.get(), std::min({nkept, n, length}));
        bytes = std::move(next);
        length = n;
    }

  private:
    std::unique_ptr<char[]> bytes;
    std::size_t length = 0;
};
