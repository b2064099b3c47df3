#include "allelerows.h"

#include <cstring>

char *beginallelerows(outfile &out, int64 id, int64 n, int64 nrows)
{
    const auto length = static_cast<std::size_t>(allelerowlength(n));
    textline text;
    puti(text, id, alleleidwidth);
    const auto nbytes = static_cast<std::size_t>(nrows) * length;
    char *const rows = out.reserve(nbytes);
    for (char *row = rows; row != rows + nbytes; row += length) {
        std::memcpy(row, text.data(), alleleidwidth);
        row[length - 1] = '\n';
    }
    return rows + alleleidwidth;
}

void endallelerows(outfile &out, int64 n, int64 nrows)
{
    out.commit(static_cast<std::size_t>(nrows * allelerowlength(n)));
}

void writeallelerow(outfile &out, int64 id, const int8 *alleles, int64 n)
{
    putalleles(beginallelerows(out, id, n), alleles, n);
    endallelerows(out, n);
}

void readallelerow(infile &in, int64 id, int8 *alleles, int64 n)
{
    in.record();
    in.identifier(id, "individual");
    in.alleles(alleles, n);
}

void readallelerow(infile &in, int64 id, int8 *alleles, int64 n, int8 highest)
{
    in.record();
    in.identifier(id, "individual");
    in.alleles(alleles, n, highest);
}
