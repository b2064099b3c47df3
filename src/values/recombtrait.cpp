#include "values/recombtrait.h"

#include "files.h"
#include "haplotypes/crossingfiles.h"
#include "pedigree/pedigree.h"
#include "sortstat.h"
#include "textlayout.h"
#include "values/qtnsums.h"

#include <algorithm>
#include <cmath>

namespace
{
void addrawvalues(state &s, int64 startindiv, int64 endindiv)
{
    const qtnsetdata &set = s.loci.sets[qtnset::recombination];
    sumoverqtn(set.qtngenos, s.loci.ntotqtnrecomb, {&s.values.tbvrecomb(startindiv)},
               endindiv - startindiv + 1, [&](int64 q, const double *x, double *sums) {
                   adddeviations(sums, x, s.loci.addeffrecomb(q), set.referencefreq(q));
               });
}

void standardise(state &s, int64 startindiv, int64 endindiv)
{
    valuedata &v = s.values;
    double adev, var, skew, curt;
    const double *const first = &v.tbvrecomb(startindiv);
    moment(first, v.nindivinsimulrun, v.recombmeanz, adev, v.recombstddevz, var, skew, curt);
    // Equal values may still leave a standard deviation of rounding errors: that is no variance.
    const auto [lowest, highest] = std::minmax_element(first, first + v.nindivinsimulrun);
    const bool varies = *lowest < *highest && v.recombstddevz > 0;

    const double nchrom = static_cast<double>(s.founders.nchrom);
    const double maplength = s.founders.morgans * nchrom;
    v.vararecombt = (s.traits.heritrecomb * (1 / maplength)) / (1 - s.traits.heritrecomb);
    for (int64 i = startindiv; i <= endindiv; ++i) {
        v.tbvrecombz(i) =
            varies ? ((v.tbvrecomb(i) - v.recombmeanz) / v.recombstddevz) * std::sqrt(v.vararecombt)
                   : 0;
        v.recombperindperchr(i) = std::exp(std::log(maplength) + v.tbvrecombz(i)) / nchrom;
    }
}

void writevalues(const state &s, int64 currentgen, int64 startindiv, int64 endindiv)
{
    outfile out;
    textline line;
    if (currentgen == 1) {
        out.open(recombinationtable);
        puta(line,
             "Generation      Indiv   Father    Mother          TbvRecombZ  RecombPerIndPerChr   "
             "RecombCountFather   RecombCountMother      TotRecombCount",
             140);
        out.writeline(line);
    } else {
        out.openandkeep(recombinationtable, startindiv, {{0, s.pedi.ped(startindiv - 1).newid}},
                        s.marks.get());
    }
    for (int64 i = startindiv; i <= endindiv; ++i) {
        int64 id, sire, dam;
        getidsiredamfromline(s.pedi.ped(i), id, sire, dam);
        for (const int64 key : {currentgen, id, sire, dam}) puti(line, key, 10);
        putf(line, s.values.tbvrecombz(i), 20, 10);
        putf(line, s.values.recombperindperchr(i), 20, 10);
        const int64 fromsire = s.haplo.recombcount(i, 1), fromdam = s.haplo.recombcount(i, 2);
        for (const int64 count : {fromsire, fromdam, fromsire + fromdam}) puti(line, count, 20);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void computetbvrecomb(state &s, int64 currentgen, int64 startindiv, int64 endindiv)
{
    s.haplo.recombcount.fill(0);
    readrecombcounts(s, lastindivofgen(s, currentgen));
    addrawvalues(s, startindiv, endindiv);
    standardise(s, startindiv, endindiv);
    writevalues(s, currentgen, startindiv, endindiv);
}
