#include "files.h"

#include "descriptors.h"

#include <cstring>
#include <fcntl.h>

bool samecontent(const std::string &filename1, const std::string &filename2)
{
    const filedescriptor descriptors[2] = {openchecked(filename1, O_RDONLY),
                                           openchecked(filename2, O_RDONLY)};
    std::vector<char> chunks[2] = {std::vector<char>(buffersize), std::vector<char>(buffersize)};
    const auto fillchunk = [&](int i) {
        std::size_t n = 0;
        while (n < buffersize) {
            const std::size_t got = readchecked(descriptors[i], i == 0 ? filename1 : filename2,
                                                chunks[i].data() + n, buffersize - n);
            if (got == 0) break;
            n += got;
        }
        return n;
    };
    bool same = true;
    for (std::size_t n = buffersize; same && n == buffersize;) {
        n = fillchunk(0);
        same = fillchunk(1) == n && std::memcmp(chunks[0].data(), chunks[1].data(), n) == 0;
    }
    return same;
}
