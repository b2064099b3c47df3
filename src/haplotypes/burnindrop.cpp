#include "haplotypes/burnindrop.h"

#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "haplotypes/burningeneration.h"
#include "haplotypes/droplines.h"
#include "markers/chips.h"
#include "markers/extraction.h"
#include "pedigree/pedigree.h"
#include "words.h"

#include <algorithm>

namespace
{
void prepareforchromosome(state &s, int64 chrom)
{
    s.sites.nsegregincl = s.sites.nsegreginclglobal(chrom);
    s.haplo.nblock = s.sites.nsegregincl / lociperblock;
    allocatearraysfordrophaploburnin(s, "PerChrom");
    readsegsitesdataperchrom(s, chrom);
    s.haplo.globalrecomblocationmax(chrom) = 1;
}

// parentsloaded: oldtmpgenome holds the generation before.
void dropgeneration(state &s, int64 chrom, int64 gen, bool parentsloaded)
{
    const int64 startindiv = firstindivofgen(s, gen), endindiv = lastindivofgen(s, gen);
    s.haplo.tmpgenome.allocate(s.pop.nindivinthisgen(gen), s.haplo.nblock);
    genedropburninindiv(s, chrom, gen, startindiv, endindiv, parentsloaded);
    if (gen == 1) {
        computeminorallelefrequency(s, chrom);
        createsnpchipsandqtnarrays(s, chrom);
    }
    extractgeneration(s, chrom, gen, startindiv, endindiv);
}

void dropchromosome(state &s, int64 chrom, generationspan span)
{
    prepareforchromosome(s, chrom);
    for (int64 j = span.first; j <= span.last; ++j) {
        dropgeneration(s, chrom, j, j > span.first);
        // The generation just made has the parents of the next: no need to read its file.
        std::swap(s.haplo.oldtmpgenome, s.haplo.tmpgenome);
    }
    textline line;
    puta(line, "  Haplotypes dropped in burnin generations for chromosome", 57);
    puti(line, chrom, 4);
    printline(line);
    deallocatearraysfordrophaploburnin(s, "PerChrom");
}
} // namespace

void drophaploburninandmakearrays(state &s)
{
    const generationspan span = burningenerations(s);
    allocatearraysfordrophaploburnin(s, "AllChrom");
    readpedigreegender(s);
    readsegsitesdatafromallchrom(s);
    outfile locations(highestcrossingsfile);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        dropchromosome(s, h, span);
        locations.writeline(freeline(h, s.haplo.globalrecomblocationmax(h)));
    }
    locations.close();
    printline(" ");
    deallocatearraysfordrophaploburnin(s, "AllChrom");
}

void extractgeneration(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                       int64 endindiv)
{
    const int64 nblock = s.haplo.nblock;
    for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
        fillarray(s, chrom, chip, currentgen, startindiv, endindiv, nblock, lociperblock,
                  s.chips.nsnponthischipchrom(chip, chrom));
    const int64 nqtn = s.qtn.nqtnonthischrom(chrom);
    fillqtnunrestricted(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock, nqtn);
    fillqtnrestricted(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock, nqtn);
    if (s.selection.recombselonoff)
        fillqtnrecombination(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock,
                             s.qtn.nqtnrecombonthischrom(chrom));
    if (s.run.fullseqoutonoff)
        writeoutindivphase(s, chrom, currentgen, startindiv, endindiv, nblock, lociperblock);
}

void allocatearraysfordrophaploburnin(state &s, std::string_view part)
{
    if (isword(part, "allchrom")) {
        s.pedi.ped.allocate(s.pop.nindivp);
        s.pedi.globalgender.allocate(s.pop.nindivp);
        s.pop.nmalinthisgen.allocate(s.pop.ngen + s.pop.ngensel);
        s.pop.nfeminthisgen.allocate(s.pop.ngen + s.pop.ngensel);
        allocatechromarrays(s);
        s.haplo.globalrecomblocationmax.allocate(s.founders.nchrom);
        s.haplo.recombcount.allocate(s.pop.nindivp, 2);
        return;
    }
    const int64 nsites = s.sites.nsegregincl;
    s.chips.snponarrays.allocate(nsites);
    s.chips.minorallelefreq.allocate(nsites);
    s.sites.inclsnpid.allocate(nsites);
    s.sites.inclphysicalmap.allocate(nsites);
    s.sites.inclmutindicator.allocate(nsites);
    s.sites.inclmutindicatorindivid.allocate(nsites);
    s.haplo.recombrateperblock.allocate(s.haplo.nblock);
    s.haplo.recombfactperblock.allocate(s.haplo.nblock);
}

void deallocatearraysfordrophaploburnin(state &s, std::string_view part)
{
    if (isword(part, "allchrom")) {
        s.pedi.ped.release();
        s.pedi.globalgender.release();
        s.pop.nmalinthisgen.release();
        s.pop.nfeminthisgen.release();
        releasechromarrays(s);
        s.haplo.globalrecomblocationmax.release();
        s.haplo.recombcount.release();
        return;
    }
    s.haplo.haplotypes.release(); // read by the first generation with an unknown parent
    s.haplo.tmpgenome.release();
    s.haplo.oldtmpgenome.release();
    s.chips.snponarrays.release();
    s.chips.minorallelefreq.release();
    s.sites.inclsnpid.release();
    s.sites.inclphysicalmap.release();
    s.sites.inclmutindicator.release();
    s.sites.inclmutindicatorindivid.release();
    s.haplo.recombrateperblock.release();
    s.haplo.recombfactperblock.release();
}
