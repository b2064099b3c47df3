#include "founders/extractsegsites.h"

#include "founders/stores.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <numeric>

namespace
{
bool compressioninforce(const state &s)
{
    return s.founders.genomecompressiononoff && s.founders.genomecompression < 100;
}

int64 sumof(const array1<int64> &values)
{
    return std::accumulate(values.begin(), values.end(), int64{0});
}

void writecount(const std::string &path, int64 count)
{
    outfile out(path);
    out.writeline(freeline(count));
    out.close();
}

int64 readsegsites(int64 chrom)
{
    const std::string path = chromfolder(chrom) + "SegSites.txt";
    if (!pathexists(path))
        ioerror(path, "is missing, so macs or Vintrecaskelle failed for this chromosome: see "
                      "the messages of macs in debug.txt of the same folder, and those of "
                      "Vintrecaskelle above");
    infile in(path);
    in.record();
    const int64 nsites = in.integer();
    if (nsites < 0) in.complain("the number of sites is negative");
    return nsites;
}

// Decides by a draw for each simulated site whether it survives.
void compressgenome(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    sites.compressindicator.allocate(sites.nsegregtmp);
    sites.nsegregtmpcomp = 0;
    for (int64 j = 1; j <= sites.nsegregtmp; ++j) {
        if (!(100 * ran1(s.random) < s.founders.genomecompression)) continue;
        sites.compressindicator(j) = 1;
        ++sites.nsegregtmpcomp;
    }
    sites.nsegregcomp = sites.nmut + sites.nsegregtmpcomp;
    writecount(chromfolder(chrom) + "SegSites.txt", sites.nsegregcomp);
}

void countsites(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    sites.nsegregtmp = readsegsites(chrom);
    sites.nmut = s.founders.ndenovomutperchr;
    sites.nsegreg = sites.nsegregtmp + sites.nmut;
    int64 nsites = sites.nsegreg;
    if (compressioninforce(s)) {
        compressgenome(s, chrom);
        nsites = sites.nsegregcomp;
    }
    s.haplo.nblock = nsites / lociperblock;
    sites.nsegregincl = s.haplo.nblock * lociperblock;
    sites.nsegreginclglobal(chrom) = sites.nsegregincl;
}

void addtonbofsegsites(const state &s, int64 chrom)
{
    outfile out;
    out.openandkeep("./SimulatedData/NbOfSegSitesPerChrom.txt", chrom == 1 ? 0 : chrom);
    if (chrom == 1)
        out.writeline(
            freeline("               ChromId          NbOfSegSites      NbOfInclSegSites"));
    out.writeline(freeline(chrom, s.sites.nsegreg, s.sites.nsegregincl));
    out.close();
}

void printtotals(const state &s)
{
    printfree(" Total number of QTN with normal effect", sumof(s.loci.nqtnonthischrom));
    printfree(" Total number of QTN with Gamma effect",
              sumof(s.sites.nmutinclglobal) + s.qtn.nqtngamma);
    if (s.selection.recombselonoff)
        printfree(" Total number of recombination QTN", sumof(s.loci.nqtnrecombonthischrom));
    printline("     ");
}
} // namespace

void extractsegsites(state &s, haplotypepacker packhaplotypes)
{
    allocatearraysforextractsegsites(s, "AllChrom");
    s.sites.nindivpinit = s.pop.nindivp;
    for (int64 chrom = 1; chrom <= s.founders.nchrom; ++chrom) {
        printfree(" Extraction of segregating sites for chromosome ", chrom);
        countsites(s, chrom);
        addtonbofsegsites(s, chrom);
        s.sites.nhaplos = countlines(chromfolder(chrom) + "MacsHaplotypes.txt");
        allocatearraysforextractsegsites(s, "PerChrom");
        insertmutations(s, chrom);
        restrictsegsites(s, chrom);
        packhaplotypes(s, chrom);
        determinenbofsnpandqtn(s, chrom);
        deallocatearraysforextractsegsites(s, "PerChrom");
    }
    printtotals(s);
    deallocatearraysforextractsegsites(s, "AllChrom");
}

void allocatearraysforextractsegsites(state &s, std::string_view part)
{
    if (isword(part, "allchrom")) {
        allocatechromarrays(s);
        return;
    }
    segregatingsites &sites = s.sites;
    sites.tmpwrk.allocate(sites.nsegreg);
    sites.mutsitesid.allocate(s.founders.ndenovomutperchr);
    sites.mutindicator.allocate(sites.nsegreg);
    sites.allphysicalmap.allocate(sites.nsegreg);
    if (compressioninforce(s)) {
        sites.randomsegreg.allocate(sites.nsegregcomp);
        sites.tmpwrkcomp.allocate(sites.nsegregcomp);
        sites.allphysicalmapcomp.allocate(sites.nsegregcomp);
    } else {
        sites.randomsegreg.allocate(sites.nsegreg);
    }
    sites.inclsnpid.allocate(sites.nsegregincl);
    sites.inclphysicalmap.allocate(sites.nsegregincl);
    sites.inclmutindicator.allocate(sites.nsegregincl);
    sites.inclmutindicatorindivid.allocate(sites.nsegregincl);
    sites.blockindicator.allocate(sites.nsegregincl);
    s.haplo.haplotypes.allocate(sites.nhaplos, s.haplo.nblock);
}

void deallocatearraysforextractsegsites(state &s, std::string_view part)
{
    if (isword(part, "allchrom")) {
        releasechromarrays(s);
        return;
    }
    segregatingsites &sites = s.sites;
    sites.tmpwrk.release();
    sites.mutsitesid.release();
    sites.mutindicator.release();
    sites.allphysicalmap.release();
    sites.randomsegreg.release();
    sites.tmpwrkcomp.release();
    sites.allphysicalmapcomp.release();
    sites.compressindicator.release();
    sites.inclsnpid.release();
    sites.inclphysicalmap.release();
    sites.inclmutindicator.release();
    sites.inclmutindicatorindivid.release();
    sites.blockindicator.release();
    s.haplo.haplotypes.release();
}

// ---------------------------------------------------------------------------- insertmutations

namespace
{
// Marks the last nmut entries of a random order as mutation slots, then puts both groups in
// ascending order: simulated sites first, mutation slots behind them.
void strewslots(state &s)
{
    segregatingsites &sites = s.sites;
    randomorder(sites.tmpwrk, sites.nsegreg, s.random);
    sites.mutindicator.fill(0);
    for (int64 i = sites.nsegregtmp + 1; i <= sites.nsegreg; ++i)
        sites.mutindicator(sites.tmpwrk(i)) = 1;
    // The marks are the sorted order already: one walk over the slots sorts both groups.
    int64 simulated = 0, mutated = 0;
    for (int64 slot = 1; slot <= sites.nsegreg; ++slot) {
        if (sites.mutindicator(slot) == 0) {
            sites.tmpwrk(++simulated) = slot;
        } else {
            sites.mutsitesid(++mutated) = slot;
            sites.tmpwrk(sites.nsegregtmp + mutated) = slot;
        }
    }
}

constexpr double notplaced = -999;

void readphysicalmap(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    sites.allphysicalmap.fill(notplaced);
    infile in(chromfolder(chrom) + "PhysicalMapInput.txt");
    if (sites.nsegregtmp > 0) in.record();
    for (int64 k = 1; k <= sites.nsegregtmp; ++k) sites.allphysicalmap(sites.tmpwrk(k)) = in.real();
}

void placemutations(state &s)
{
    segregatingsites &sites = s.sites;
    array1<double> &map = sites.allphysicalmap;
    int64 right = 1; // the next placed slot to the right, or nsegreg + 1
    for (int64 j = 1; j <= sites.nmut; ++j) {
        const int64 slot = sites.mutsitesid(j);
        if (slot == 1) {
            map(slot) = 0;
        } else if (slot == sites.nsegreg) {
            map(slot) = 1;
        } else {
            right = std::max(right, slot + 1);
            while (right <= sites.nsegreg && map(right) <= -998) ++right;
            map(slot) = (map(slot - 1) + (right <= sites.nsegreg ? map(right) : 1.0)) / 2;
        }
    }
}

void writeuncompressedmap(const state &s, int64 chrom)
{
    const segregatingsites &sites = s.sites;
    outfile out(chromfolder(chrom) + "PhysicalMapInputUncompressed.txt");
    textline line;
    for (int64 i = 1; i <= sites.nsegregtmp; ++i) {
        puti(line, i, 10);
        putf(line, sites.allphysicalmap(i), 20, 10);
        puti(line, sites.mutindicator(sites.tmpwrk(i)), 10);
        out.writeline(line);
    }
    out.close();
}

// The slots of the surviving sites and of the mutations, ascending, and their positions.
void fillcompressedmap(state &s)
{
    segregatingsites &sites = s.sites;
    int64 site = 0, kept = 0;
    for (int64 slot = 1; slot <= sites.nsegreg; ++slot) {
        const bool survives = sites.mutindicator(slot) == 1 || sites.compressindicator(++site) == 1;
        if (!survives) continue;
        sites.tmpwrkcomp(++kept) = slot;
        sites.allphysicalmapcomp(kept) = sites.allphysicalmap(slot);
    }
}

void writecompressedmap(const state &s, int64 chrom)
{
    const segregatingsites &sites = s.sites;
    outfile out(chromfolder(chrom) + "PhysicalMapInputCompressed.txt");
    textline line;
    for (int64 i = 1; i <= sites.tmpwrkcomp.size(); ++i) {
        puti(line, i, 10);
        puti(line, sites.tmpwrkcomp(i), 10);
        putf(line, sites.allphysicalmapcomp(i), 20, 10);
        puti(line, sites.mutindicator(sites.tmpwrkcomp(i)), 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void insertmutations(state &s, int64 chrom)
{
    strewslots(s);
    readphysicalmap(s, chrom);
    placemutations(s);
    writeuncompressedmap(s, chrom);
    if (compressioninforce(s)) fillcompressedmap(s);
    writecompressedmap(s, chrom);
}

// --------------------------------------------------------------------------- restrictsegsites

namespace
{
// Draws the included sites, and puts their slots in ascending order.
void chooseincludedsites(state &s)
{
    segregatingsites &sites = s.sites;
    const bool compressed = compressioninforce(s);
    randomorder(sites.randomsegreg, compressed ? sites.nsegregcomp : sites.nsegreg, s.random);
    std::vector<bool> chosen(static_cast<std::size_t>(sites.nsegreg + 1));
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        const int64 drawn = sites.randomsegreg(i);
        chosen[static_cast<std::size_t>(compressed ? sites.tmpwrkcomp(drawn) : drawn)] = true;
    }
    int64 i = 0;
    for (int64 slot = 1; slot <= sites.nsegreg; ++slot) {
        if (!chosen[static_cast<std::size_t>(slot)]) continue;
        sites.inclsnpid(++i) = slot;
        sites.inclphysicalmap(i) = sites.allphysicalmap(slot);
        sites.inclmutindicator(i) = sites.mutindicator(slot);
        // One too high for multiples of 60, which readers of the mutation store correct.
        sites.blockindicator(i) = i / lociperblock + 1;
    }
}

void resetmutations(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    for (int64 j = 1; j <= s.founders.ndenovomutperchr; ++j)
        for (int64 field = 1; field <= 5; ++field) sites.denovoinfo(chrom, j, field) = -99;
    for (int64 i = 1; i <= s.pop.nindivp; ++i) sites.indivmutindicator(chrom, i) = 0;
    sites.inclmutindicatorindivid.fill(0);
}

// A carrier and its gamete for each included mutation.
void drawcarriers(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    resetmutations(s, chrom);
    outfile out(chromfolder(chrom) + "MutDeNovoInfo.txt");
    textline line;
    int64 j = 0;
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        if (sites.inclmutindicator(i) == 0) continue;
        ++j;
        const double whole = static_cast<double>(sites.nindivpinit);
        const int64 carrier = 1 + static_cast<int64>(whole * ran1(s.random));
        const int64 gamete = 1 + static_cast<int64>(2 * ran1(s.random));
        sites.inclmutindicatorindivid(i) = carrier;
        sites.indivmutindicator(chrom, carrier) = 1;
        sites.denovoinfo(chrom, j, 1) = sites.inclsnpid(i);
        sites.denovoinfo(chrom, j, 2) = carrier;
        sites.denovoinfo(chrom, j, 3) = gamete;
        sites.denovoinfo(chrom, j, 4) = sites.blockindicator(i);
        sites.denovoinfo(chrom, j, 5) = i;
        for (int64 field = 1; field <= 5; ++field)
            puti(line, sites.denovoinfo(chrom, j, field), 20);
        out.writeline(line);
    }
    out.close();
}

void writemutindivindicator(const state &s, int64 chrom)
{
    outfile out(chromfolder(chrom) + "MutIndivIndicator.txt");
    textline line;
    for (int64 i = 1; i <= s.sites.nindivpinit; ++i) {
        puti(line, i, 10);
        puti(line, s.sites.indivmutindicator(chrom, i), 10);
        out.writeline(line);
    }
    out.close();
}

void writeincludedmap(const state &s, int64 chrom)
{
    const segregatingsites &sites = s.sites;
    outfile out(chromfolder(chrom) + "PhysicalMapIncluded.txt");
    textline line;
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        puti(line, i, 10);
        puti(line, sites.inclsnpid(i), 10);
        putf(line, sites.inclphysicalmap(i), 20, 10);
        puti(line, sites.inclmutindicator(i), 10);
        puti(line, sites.inclmutindicatorindivid(i), 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void restrictsegsites(state &s, int64 chrom)
{
    writecount(chromfolder(chrom) + "SegSitesIncluded.txt", s.sites.nsegregincl);
    chooseincludedsites(s);
    s.sites.nmutinclglobal(chrom) = sumof(s.sites.inclmutindicator);
    printline("      Included number of mutations" + freeline(s.sites.nmutinclglobal(chrom)));
    drawcarriers(s, chrom);
    writemutindivindicator(s, chrom);
    writeincludedmap(s, chrom);
}

// --------------------------------------------------------------------- determinenbofsnpandqtn

namespace
{
void stopiftoofewsites(const state &s, int64 nqtnwanted, int64 code)
{
    if (nqtnwanted <= s.sites.nsegregincl) return;
    printline("ERROR: There are not enough QTN segregating");
    stopwithcode(code);
}

void writenumbers(const state &s, int64 chrom)
{
    outfile out(chromfolder(chrom) + "NbOfQtnMutationsAndSnp.txt");
    const auto row = [&](int64 nqtnofset) {
        textline line;
        puti(line, nqtnofset, 20);
        puti(line, s.sites.nmutinclglobal(chrom), 20);
        for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
            puti(line, s.loci.nsnponthischipchrom(chip, chrom), 20);
        out.writeline(line);
    };
    row(s.loci.nqtnonthischrom(chrom));
    if (s.selection.recombselonoff) row(s.loci.nqtnrecombonthischrom(chrom));
    out.close();
}
} // namespace

void determinenbofsnpandqtn(state &s, int64 chrom)
{
    for (int64 chip = 1; chip <= s.chips.nchip; ++chip) {
        int64 &nsnponchip = s.loci.nsnponthischipchrom(chip, chrom);
        nsnponchip = s.chips.usesnpchiponoff ? s.chips.nsnpperchipperchrom(chip) : 1;
        if (!s.chips.usesnpchiponoff || nsnponchip <= s.sites.nsegregincl) continue;
        printline("ERROR: There are not enough SNP segregating for chip " + numbertext(chip));
        printline("       Required number of segregating SNPs: " + numbertext(nsnponchip));
        printline("       Found number of segregating SNPs:    " + numbertext(s.sites.nsegregincl));
        stopwithcode(110007);
    }

    // Each included mutation is a QTN beyond those asked for.
    s.loci.nqtnonthischrom(chrom) = s.qtn.nqtn / s.founders.nchrom + s.sites.nmutinclglobal(chrom);
    stopiftoofewsites(s, s.loci.nqtnonthischrom(chrom), 110008);
    if (s.selection.recombselonoff) {
        s.loci.nqtnrecombonthischrom(chrom) = s.qtn.nqtnrecombperchrom;
        stopiftoofewsites(s, s.loci.nqtnrecombonthischrom(chrom), 110009);
    }
    writenumbers(s, chrom);
}
