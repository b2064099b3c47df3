#include "macs/siteoutput.h"

#include "textlayout.h"

#include <cstring>

namespace macs
{
char *sitewriter::begin(double position, double age)
{
    head = "SITE:\t";
    puti(head, nsites++, 0);
    head += '\t';
    putg(head, position, 15, 12);
    head += '\t';
    putg(head, age, 15, 9);
    head += '\t';
    char *const line = out.reserve(head.size() + static_cast<std::size_t>(n) + 1);
    std::memcpy(line, head.data(), head.size());
    line[head.size() + static_cast<std::size_t>(n)] = '\n';
    return line + head.size();
}

void sitewriter::end()
{
    out.commit(head.size() + static_cast<std::size_t>(n) + 1);
}

void sitewriter::close()
{
    if (nsites == 0) return;
    out.write("TOTAL_SAMPLES:\t" + std::to_string(n) + "\nTOTAL_SITES:\t" + std::to_string(nsites) +
              "\nBEGIN_SELECTED_SITES\n");
    for (int64 i = 0; i < nsites; ++i) {
        head = i > 0 ? "\t" : "";
        puti(head, i, 0);
        out.write(head);
    }
    out.write("\nEND_SELECTED_SITES\n");
}
} // namespace macs
