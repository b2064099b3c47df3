#include "haplotypes/droplines.h"

#include "haplotypes/genomefiles.h"

#include <algorithm>
#include <cassert>

void opendrop(state &s, dropwork &work, int64 chrom, int64 startindiv)
{
    work.files.open(chrom, startindiv, startindiv > 1 ? s.pedi.ped(startindiv - 1).newid : 0,
                    *s.marks);
    assert(startindiv >= 1 && startindiv <= s.pop.nindivp);
    work.recomblocation.allocate(s.haplo.nblock, -99);
}

void closedrop(dropwork &work)
{
    work.files.close();
}

namespace
{
void writetrackingline(const state &s, dropwork &work, int64 individ)
{
    work.files.writegamete(s.pedi.ped(individ).newid, work.firstpos, work.nrecombperind,
                           work.recomblocation);
}
} // namespace

void dropgamete(state &s, dropwork &work, int64 chrom, int64 individ, int64 indivpos,
                int64 parentgender, const parentstrands &strands)
{
    work.firstpos = 1 + static_cast<int64>(2 * ran1(s.random));
    recombinegametes(s, chrom, individ, parentgender, strands, work.firstpos, work.nrecombperind,
                     work.recomblocation, s.haplo.tmpgenome.gamete(indivpos, parentgender));
    writetrackingline(s, work, individ);
}

void repeatsiregamete(state &s, dropwork &work, int64 individ)
{
    s.haplo.recombcount(individ, 2) = s.haplo.recombcount(individ, 1);
    writetrackingline(s, work, individ);
}

void finishindividual(state &s, dropwork &work, int64 chrom, int64 currentgen, int64 individ,
                      int64 indivpos)
{
    work.files.writecounts(individ, s.haplo.recombcount(individ, 1),
                           s.haplo.recombcount(individ, 2));
    if (s.sites.indivmutindicator(chrom, individ) == 1) addmutinped(s, chrom, individ, indivpos);
    if (isdoubledhaploid(s, currentgen)) {
        const int64 *sireside = s.haplo.tmpgenome.gamete(indivpos, 1);
        std::copy(sireside, sireside + s.haplo.nblock, s.haplo.tmpgenome.gamete(indivpos, 2));
    }
}

std::vector<int64> parentsbetween(const state &s, int64 startindiv, int64 endindiv, int64 firstid,
                                  int64 lastid)
{
    std::vector<int64> ids;
    for (int64 i = startindiv; i <= endindiv; ++i) {
        for (int64 parent : {s.pedi.ped(i).newsire, s.pedi.ped(i).newdam})
            if (parent >= firstid && parent <= lastid) ids.push_back(parent);
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

void readgenomesof(const state &s, int64 chrom, const std::vector<int64> &ids, genomestore &g)
{
    assert(std::is_sorted(ids.begin(), ids.end()));
    assert(ids.empty() || (ids.front() >= 1 && ids.back() <= s.pop.nindivp));
    g.allocate(static_cast<int64>(ids.size()), s.haplo.nblock);
    int64 place = 1;
    auto first = ids.begin();
    for (int64 gen = 1; first != ids.end(); ++gen) {
        const auto last = std::upper_bound(first, ids.end(), lastindivofgen(s, gen));
        if (last == first) continue;
        array1<int64> rows(last - first);
        for (int64 r = 1; r <= rows.size(); ++r)
            rows(r) = *(first + r - 1) - s.pedi.cumindivnbtogen(gen - 1);
        readgenomerows(genomefile(chrom, gen), s.pedi.nindivinthisgen(gen), s.haplo.nblock, rows, g,
                       place);
        place += rows.size();
        first = last;
    }
}
