#include "haplotypes/burnindrop.h"

#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "haplotypes/burningeneration.h"
#include "haplotypes/droplines.h"
#include "runplan.h"
#include "words.h"

#include <algorithm>

namespace
{
void makesitearrays(state &s, arrayscope &arrays)
{
    const int64 nsites = s.sites.nsegregincl;
    arrays.make(s.sites.snponarrays, nsites);
    arrays.make(s.sites.minorallelefreq, nsites);
    makeincludedsites(s, arrays);
    arrays.make(s.haplo.recombrateperblock, s.haplo.nblock);
    arrays.make(s.haplo.recombfactperblock, s.haplo.nblock);
    arrays.hold(s.haplo.haplotypes); // read by the first generation with an unknown parent
    arrays.hold(s.haplo.tmpgenome);
    arrays.hold(s.haplo.oldtmpgenome);
}

void prepareforchromosome(state &s, arrayscope &arrays, int64 chrom)
{
    s.sites.nsegregincl = s.sites.nsegreginclglobal(chrom);
    s.haplo.nblock = s.sites.nsegregincl / lociperblock;
    makesitearrays(s, arrays);
    readsegsitesdataperchrom(s, chrom);
    setburninrecombrates(s, chrom);
    s.haplo.globalrecomblocationmax(chrom) = 1;
}

// parentsloaded: oldtmpgenome holds the generation before.
void dropgeneration(state &s, int64 chrom, int64 gen, bool parentsloaded,
                    generationstep finishgeneration)
{
    const int64 startindiv = firstindivofgen(s, gen), endindiv = lastindivofgen(s, gen);
    s.haplo.tmpgenome.allocate(s.pedi.nindivinthisgen(gen), s.haplo.nblock);
    genedropburninindiv(s, chrom, gen, startindiv, endindiv, parentsloaded);
    if (gen == 1) computeminorallelefrequency(s, chrom);
    finishgeneration(s, chrom, gen, startindiv, endindiv);
}

void dropchromosome(state &s, int64 chrom, generationspan span, generationstep finishgeneration)
{
    arrayscope arrays;
    prepareforchromosome(s, arrays, chrom);
    for (int64 j = span.first; j <= span.last; ++j) {
        const int64 ngenerations = span.last - span.first + 1;
        tellpart(s, runpart::burnindrop, (chrom - 1) * ngenerations + j - span.first + 1,
                 s.founders.nchrom * ngenerations,
                 "chromosome " + numbertext(chrom) + ", generation " + numbertext(j));
        dropgeneration(s, chrom, j, j > span.first, finishgeneration);
        // The generation just made has the parents of the next: no need to read its file.
        std::swap(s.haplo.oldtmpgenome, s.haplo.tmpgenome);
    }
    textline line;
    puta(line, "  Haplotypes dropped in burnin generations for chromosome", 57);
    puti(line, chrom, 4);
    printline(line);
}
} // namespace

void drophaploburninandmakearrays(state &s, generationstep finishgeneration)
{
    const generationspan span = burningenerations(s);
    arrayscope arrays;
    arrays.make(s.haplo.globalrecomblocationmax, s.founders.nchrom);
    arrays.make(s.haplo.recombcount, s.pop.nindivp, 2);
    writehighestcrossings(s.haplo.globalrecomblocationmax, 0);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        dropchromosome(s, h, span, finishgeneration);
        writehighestcrossings(s.haplo.globalrecomblocationmax, h);
    }
    printline(" ");
}
