#include "values/qtngenotypes.h"

#include "allelerows.h"
#include "markers/sitesets.h"
#include "textlayout.h"
#include "values/transpose.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{
// Individuals whose rows are held at a time, between a file and the table.
constexpr int64 rowtile = 256;

void readgenotypes(state &s, qtnset set, int64 currentgen, int64 startindiv)
{
    array2<int8> &genos = s.loci.sets[set].qtngenos;
    const int64 nindiv = genos.extent1().size();
    std::vector<int8> rows;
    int64 column = 1;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        const int64 n = s.loci.onthischrom(set)(h);
        if (n == 0) continue;
        infile in(genotypefile(h, set, currentgen), author::system);
        rows.resize(static_cast<std::size_t>(rowtile * n));
        for (int64 k = 1; k <= nindiv; k += rowtile) {
            const int64 nrows = std::min(rowtile, nindiv - k + 1);
            for (int64 r = 0; r < nrows; ++r)
                readallelerow(in, startindiv + k - 1 + r, rows.data() + r * n, n, 2);
            transposebytes(rows.data(), n, genos.column(column) + k - 1, nindiv, nrows, n);
        }
        in.stopifmore();
        column += n;
    }
}

void writegenotypes(const state &s, qtnset set, int64 startindiv)
{
    const array2<int8> &genos = s.loci.sets[set].qtngenos;
    const int64 nindiv = genos.extent1().size(), n = genos.extent2().size();
    outfile out;
    out.openandkeepfixed(qtngenotypefile(set), startindiv - 1, allelerowlength(n), 0,
                         {{startindiv - 1}});
    std::vector<int8> rows(static_cast<std::size_t>(rowtile * n));
    for (int64 k = 1; k <= nindiv; k += rowtile) {
        const int64 nrows = std::min(rowtile, nindiv - k + 1);
        transposebytes(genos.data() + k - 1, nindiv, rows.data(), n, n, nrows);
        for (int64 r = 0; r < nrows; ++r)
            writeallelerow(out, startindiv + k - 1 + r, rows.data() + r * n, n);
    }
    out.close();
}
} // namespace

void compileqtngenotypes(state &s, int64 currentgen, int64 startindiv)
{
    for (const qtnset set : setsinuse(s)) {
        readgenotypes(s, set, currentgen, startindiv);
        writegenotypes(s, set, startindiv);
    }
    if (s.editing.geneditonoff) writefixedqtn(s, currentgen);
}

void writefixedqtn(state &s, int64 currentgen)
{
    const array2<int8> &genos = s.loci.sets[setofselection(s)].qtngenos;
    const int64 nindiv = s.pedi.nindivinthisgen(currentgen);
    outfile out;
    textline line;
    if (currentgen == 1) {
        out.open(fixedqtntable);
        puta(line, "          Generation         GlobalQtnId         FixedYes0No1", 61);
        out.writeline(line);
    } else {
        out.openandkeep(fixedqtntable, 1 + (currentgen - 1) * s.loci.ntotqtn,
                        {{currentgen - 1, s.loci.ntotqtn}}, s.marks.get());
    }
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        int64 sum = 0;
        for (int64 k = 1; k <= nindiv; ++k) sum += genos(k, q);
        puti(line, currentgen, 20);
        puti(line, q, 20);
        puti(line, sum == 0 || sum == 2 * nindiv ? 0 : 1, 20);
        out.writeline(line);
    }
    out.close();
}
