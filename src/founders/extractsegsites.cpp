#include "founders/extractsegsites.h"

#include "founders/includedsites.h"
#include "founders/mutationslots.h"
#include "founders/simulatedsites.h"
#include "founders/sitenumbers.h"
#include "founders/stores.h"
#include "runplan.h"
#include "words.h"

namespace
{
constexpr const char *sitecounttable = "./SimulatedData/NbOfSegSitesPerChrom.txt";

void addtonbofsegsites(const state &s, int64 chrom)
{
    outfile out;
    out.openandkeep(sitecounttable, chrom == 1 ? 0 : chrom);
    if (chrom == 1)
        out.writeline(
            freeline("               ChromId          NbOfSegSites      NbOfInclSegSites"));
    out.writeline(freeline(chrom, s.sites.nsegreg, s.sites.nsegregincl));
    out.close();
}

void extractchromosome(state &s, int64 chrom, haplotypepacker packhaplotypes)
{
    arrayscope arrays;
    printfree(" Extraction of segregating sites for chromosome ", chrom);
    countsites(s, chrom, arrays);
    addtonbofsegsites(s, chrom);
    insertmutations(s, chrom, arrays);
    restrictsegsites(s, chrom, arrays);
    arrays.hold(s.haplo.haplotypes);
    packhaplotypes(s, chrom);
    determinenbofsnpandqtn(s, chrom);
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

std::vector<int64> readincludedcounts()
{
    std::vector<int64> counts;
    infile in(sitecounttable, author::system);
    in.skiprecords(1);
    while (in.nextrecord()) {
        in.identifier(std::ssize(counts) + 1, "chromosome");
        in.skipwords(1);
        counts.push_back(in.integer());
    }
    return counts;
}

void extractsegsites(state &s, haplotypepacker packhaplotypes)
{
    arrayscope arrays;
    makechromarrays(s, arrays);
    s.sites.nindivpinit = s.pop.nindivp;
    for (int64 chrom = 1; chrom <= s.founders.nchrom; ++chrom) {
        tellpart(s, runpart::packing, chrom, s.founders.nchrom, "chromosome " + numbertext(chrom));
        extractchromosome(s, chrom, packhaplotypes);
    }
    printtotals(s);
}
