#include "values/coancestry.h"

#include "files.h"
#include "textlayout.h"

array1<double> parentshares(const state &s, int64 currentgen, int64 firstindiv, int64 lastindiv)
{
    const int64 n = lastindiv - firstindiv + 1;
    array1<double> shares(n);
    double matings = 0;
    const auto count = [&](int64 parent) {
        if (parent < firstindiv || parent > lastindiv) return;
        shares(parent - firstindiv + 1) += 1;
        matings += 1;
    };
    for (int64 i = 1; i <= s.pedi.nindivinthisgen(currentgen); ++i) {
        count(s.pedi.ped(lastindiv + i).newsire);
        count(s.pedi.ped(lastindiv + i).newdam);
    }
    if (matings > 0)
        for (double &share : shares) share /= matings;
    return shares;
}

void writecoancestry(const state &s, int64 selectioncycle, const coancestries &values)
{
    outfile out;
    textline line;
    if (selectioncycle == 1) {
        out.open(coancestrytable);
        puta(line, "Generation      SelectionCycle     BeforeSelection      AfterSelection", 70);
        out.writeline(line);
    } else {
        out.openandkeep(coancestrytable, selectioncycle, {}, s.marks.get());
    }
    puti(line, s.pop.ngen + selectioncycle - 1, 10);
    if (selectioncycle == 1)
        puta(line, "-", 20);
    else
        puti(line, selectioncycle - 1, 20);
    putf(line, values.before, 20, 10);
    putf(line, values.after, 20, 10);
    out.writeline(line);
    out.close();
}

void writelastcoancestry(const state &s, int64 selectioncycle, double before)
{
    outfile out;
    out.openandkeep(coancestrytable, 1 + selectioncycle, {}, s.marks.get());
    textline line;
    puti(line, s.pop.ngen + selectioncycle, 10);
    puti(line, selectioncycle, 20);
    putf(line, before, 20, 10);
    puta(line, "-", 10);
    out.writeline(line);
    out.close();
}
