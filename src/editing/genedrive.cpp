#include "editing/genedrive.h"

#include "files.h"
#include "haplotypes/blocks.h"
#include "haplotypes/droplines.h"
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
    for (int64 h = 1; h < chrom; ++h) before += s.loci.nqtnonthischrom(h);
    return {before + 1, before + s.loci.nqtnonthischrom(chrom)};
}

// Where the gamete's source changes to the parent's phase 2: each crossing moves the place on by
// one for every listed QTN that lies before it and behind the site of the list's entry `tracker`.
int64 placeofchange(const state &s, int64 currchrom, qtnspan span,
                    const array1<int64> &recomblocation)
{
    const editdata &edits = s.edits;
    int64 lastpos = span.first, tracker = 1;
    for (int64 i = 1; i <= recomblocation.size() && recomblocation(i) != -99; ++i)
        for (int64 j = 1; j <= s.loci.ntotqtn; ++j)
            if (edits.qtnidsortedbyabsvalchrom(j) == currchrom &&
                edits.qtnidsortedbyabsval(j) <= recomblocation(i) &&
                edits.qtnidsortedbyabsval(j) > edits.qtnidsortedbyabsval(tracker)) {
                lastpos = std::min(lastpos + 1, span.last);
                tracker = lastpos;
            }
    return lastpos;
}
} // namespace

void allocatedriveflags(state &s)
{
    driveflags &flags = s.edits.genedriveqtnpresence;
    flags.allocate(s.pop.nindivp, s.loci.ntotqtn);
}

void setdriveflags(state &s, int64 individ, int64 qtn)
{
    s.edits.genedriveqtnpresence(individ, qtn, 1) = 1;
    s.edits.genedriveqtnpresence(individ, qtn, 2) = 1;
}

void definegenedriveinheritance(state &s, int64 individ, int64 parentgender, int64 currchrom,
                                const array1<int64> &recomblocation)
{
    driveflags &flags = s.edits.genedriveqtnpresence;
    const pedigreeline &row = s.pedi.ped(individ);
    const int64 parent = parentgender == 1 ? row.newsire : row.newdam;
    const qtnspan span = qtnofchrom(s, currchrom);
    const int8 *const phase1 = flags.from(parent, span.first, 1);
    const int8 *const phase2 = flags.from(parent, span.first, 2);
    const int64 n = span.last - span.first + 1;
    const bool crossed = recomblocation(1) != -99;
    // Behind a conversion both phases agree, and it doesn't matter where the source changes.
    const int64 fromphase1 = crossed && !std::equal(phase1, phase1 + n, phase2)
                                 ? placeofchange(s, currchrom, span, recomblocation) - span.first
                                 : n;
    int8 *const gamete = flags.from(individ, span.first, parentgender);
    std::copy(phase1, phase1 + fromphase1, gamete);
    std::copy(phase2 + fromphase1, phase2 + n, gamete + fromphase1);
}

void copysireflags(state &s, int64 individ)
{
    driveflags &flags = s.edits.genedriveqtnpresence;
    const int8 *const sireside = flags.from(individ, 1, 1);
    std::copy(sireside, sireside + flags.nqtn(), flags.from(individ, 1, 2));
}

std::vector<drivesite> drivesites(const state &s, int64 chrom)
{
    const editdata &edits = s.edits;
    std::vector<drivesite> sites;
    for (int64 j = 1; j <= s.loci.ntotqtn; ++j)
        if (edits.qtnidsortedbyabsvalchrom(j) == chrom)
            sites.push_back({edits.qtnidsortedbyabsval(j), edits.qtnidsortedbyabsvalrecodedid(j)});
    return sites;
}

void convertdrives(state &s, const std::vector<drivesite> &sites, int64 individ, int64 indivpos)
{
    for (const drivesite &at : sites)
        for (int64 m = 1; m <= 2; ++m) {
            if (s.edits.genedriveqtnpresence(individ, at.qtn, m) != 1) continue;
            genedriveedit(m, s.haplo.tmpgenome.gamete(indivpos, 1),
                          s.haplo.tmpgenome.gamete(indivpos, 2), at.site);
            setdriveflags(s, individ, at.qtn);
        }
}

void drivezygotes(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv)
{
    const std::vector<drivesite> sites = drivesites(s, chrom);
    for (int64 i = startindiv; i <= endindiv; ++i) {
        if (isdoubledhaploid(s, currentgen)) copysireflags(s, i);
        convertdrives(s, sites, i, i - startindiv + 1);
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
    const editdata &edits = s.edits;
    const driveflags &flags = edits.genedriveqtnpresence;
    outfile out("./SimulatedData/GeneDriveQtnPresence.txt");
    textline line;
    puta(line, "    IndividualID        QtnWithGeneDrive        PhaseWithGeneDrive", 70);
    out.writeline(line);
    for (int64 i = 1; i <= s.pedi.cumindivnbtogen(currendgen); ++i) {
        const int8 *const own = flags.from(i, 1, 1);
        if (std::find(own, own + 2 * flags.nqtn(), 1) == own + 2 * flags.nqtn()) continue;
        for (int64 j = 1; j <= s.loci.ntotqtn; ++j)
            for (int64 k = 1; k <= 2; ++k) {
                if (flags(i, edits.qtnidsortedbyabsvalrecodedid(j), k) != 1) continue;
                puti(line, s.pedi.ped(i).newid, 10);
                puti(line, edits.qtnidsortedbyabsval(j), 10);
                puti(line, k, 10);
                out.writeline(line);
            }
    }
    out.close();
}
