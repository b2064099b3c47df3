#include "editing/genedrive.h"

#include "files.h"
#include "haplotypes/blocks.h"
#include "stops.h"
#include "textlayout.h"

#include <algorithm>

namespace
{
// First and last QTN of a chromosome, by their numbers in the whole genome.
struct qtnspan {
    int64 first = 1, last = 0;
};
qtnspan qtnofchrom(const state &s, int64 chrom)
{
    int64 before = 0;
    for (int64 h = 1; h < chrom; ++h) before += s.qtn.nqtnonthischrom(h);
    return {before + 1, before + s.qtn.nqtnonthischrom(chrom)};
}

// Where the gamete's source changes to the parent's phase 2: each crossing moves the place on by
// one for every listed QTN that lies before it and behind the site of the list's entry `tracker`.
int64 placeofchange(const state &s, int64 currchrom, qtnspan span,
                    const array1<int64> &recomblocation)
{
    const editingdata &edit = s.editing;
    int64 lastpos = span.first, tracker = 1;
    for (int64 i = 1; i <= recomblocation.size() && recomblocation(i) != -99; ++i)
        for (int64 j = 1; j <= s.qtn.ntotqtn; ++j)
            if (edit.qtnidsortedbyabsvalchrom(j) == currchrom &&
                edit.qtnidsortedbyabsval(j) <= recomblocation(i) &&
                edit.qtnidsortedbyabsval(j) > edit.qtnidsortedbyabsval(tracker)) {
                lastpos = std::min(lastpos + 1, span.last);
                tracker = lastpos;
            }
    return lastpos;
}
} // namespace

void allocatedriveflags(state &s)
{
    array3<int8> &flags = s.editing.genedriveqtnpresence;
    if (flags.extent2().size() < s.qtn.ntotqtn) flags.allocate(s.pop.nindivp, s.qtn.ntotqtn, 2);
}

void setdriveflags(state &s, int64 individ, int64 qtn)
{
    s.editing.genedriveqtnpresence(individ, qtn, 1) = 1;
    s.editing.genedriveqtnpresence(individ, qtn, 2) = 1;
}

void definegenedriveinheritance(state &s, int64 individ, int64 parentgender, int64 currchrom,
                                const array1<int64> &recomblocation)
{
    array3<int8> &flags = s.editing.genedriveqtnpresence;
    const pedigreeline &row = s.pedi.ped(individ);
    const int64 parent = parentgender == 1 ? row.newsire : row.newdam;
    const qtnspan span = qtnofchrom(s, currchrom);
    const bool crossed = recomblocation.size() > 0 && recomblocation(1) != -99;
    const int64 change =
        crossed ? placeofchange(s, currchrom, span, recomblocation) : span.last + 1;
    for (int64 g = span.first; g <= span.last; ++g)
        flags(individ, g, parentgender) = flags(parent, g, g < change ? 1 : 2);
}

void copysireflags(state &s, int64 individ)
{
    array3<int8> &flags = s.editing.genedriveqtnpresence;
    for (int64 g = 1; g <= flags.extent2().size(); ++g) flags(individ, g, 2) = flags(individ, g, 1);
}

std::vector<drivesite> drivesites(const state &s, int64 chrom)
{
    const editingdata &edit = s.editing;
    std::vector<drivesite> sites;
    for (int64 j = 1; j <= s.qtn.ntotqtn; ++j)
        if (edit.qtnidsortedbyabsvalchrom(j) == chrom)
            sites.push_back({edit.qtnidsortedbyabsval(j), edit.qtnidsortedbyabsvalrecodedid(j)});
    return sites;
}

void convertdrives(state &s, const std::vector<drivesite> &sites, int64 individ, int64 indivpos)
{
    for (const drivesite &at : sites)
        for (int64 m = 1; m <= 2; ++m) {
            if (s.editing.genedriveqtnpresence(individ, at.qtn, m) != 1) continue;
            genedriveedit(m, s.haplo.tmpgenome.gamete(indivpos, 1),
                          s.haplo.tmpgenome.gamete(indivpos, 2), at.site);
            setdriveflags(s, individ, at.qtn);
        }
}

void genedriveedit(int64 phasewithgenedrive, int64 *fromsire, int64 *fromdam, int64 qtnid)
{
    if (phasewithgenedrive != 1 && phasewithgenedrive != 2) {
        printline("MAJOR ERROR IN GENE DRIVE");
        plainstop();
    }
    const siteplace place = placeofsite(qtnid);
    int64 &blocksire = fromsire[place.block - 1], &blockdam = fromdam[place.block - 1];
    const int64 wanted = alleleat(phasewithgenedrive == 1 ? blocksire : blockdam, place.position);
    genomeedition(lociperblock, blocksire, blockdam, place.position, blocksire, blockdam, wanted);
}

void writegenedriveinformation(const state &s, int64 currendgen)
{
    const editingdata &edit = s.editing;
    const array3<int8> &flags = edit.genedriveqtnpresence;
    const int64 nindiv = s.pop.cumindivnbtogen(currendgen);
    array1<int8> carries(nindiv); // 1 for an individual with any flag: few, and the table is wide
    for (int64 g = 1; g <= flags.extent2().size(); ++g)
        for (int64 k = 1; k <= 2; ++k)
            for (int64 i = 1; i <= nindiv; ++i) carries(i) |= flags(i, g, k);

    outfile out("./SimulatedData/GeneDriveQtnPresence.txt");
    textline line;
    puta(line, "    IndividualID        QtnWithGeneDrive        PhaseWithGeneDrive", 70);
    out.writeline(line);
    for (int64 i = 1; i <= nindiv; ++i) {
        if (carries(i) == 0) continue;
        for (int64 j = 1; j <= s.qtn.ntotqtn; ++j)
            for (int64 k = 1; k <= 2; ++k) {
                if (flags(i, edit.qtnidsortedbyabsvalrecodedid(j), k) != 1) continue;
                puti(line, s.pedi.ped(i).newid, 10);
                puti(line, edit.qtnidsortedbyabsval(j), 10);
                puti(line, k, 10);
                out.writeline(line);
            }
    }
    out.close();
}
