#include "check/earlierfiles.h"

#include "allelerows.h"
#include "check/rungenerations.h"
#include "cyclefolder.h"
#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "haplotypes/burningeneration.h"
#include "haplotypes/crossingfiles.h"
#include "haplotypes/droplines.h"
#include "haplotypes/genomefiles.h"
#include "haplotypes/recombmap.h"
#include "markers/sitesets.h"
#include "merge/mergechecks.h"
#include "merge/mergerecords.h"
#include "pedigree/pedigreefiles.h"
#include "results/snpchips.h"
#include "selection/trainingsets.h"
#include "shell.h"
#include "stops.h"
#include "traits/covariances.h"
#include "traits/effectfiles.h"
#include "values/burninvalues.h"
#include "values/coancestry.h"
#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "values/qtngenotypes.h"
#include "values/valuearrays.h"
#include "words.h"

#include <set>

namespace
{
int64 lastearlierindiv(const state &s)
{
    return lastindivofgen(s, s.run.specstartgen - 1);
}

void stopifmissing(const std::string &path)
{
    if (!pathexists(path)) ioerror(path, "is missing: this run goes on from it");
}

void checkrecordsof(const individualfile &file, const std::string &path, int64 n)
{
    stopifmissing(path);
    checkrecords(file, path, n);
}
} // namespace

void readearlierstores(state &s)
{
    readsegsitesdatafromallchrom(s);
}

void readearlierpedigree(state &s)
{
    readpedigree(s, lastearlierindiv(s));
    checkkeptrows(lastearlierindiv(s));
}

namespace
{
// ------------------------------------------------------- generations dropped by this run

// Generations before this run's that have parents of its individuals, by the pedigree. In a
// generation of selection those are the candidates.
std::set<int64> generationsofparents(const state &s)
{
    std::set<int64> generations;
    const int64 start = s.run.specstartgen, last = lastgenerationmade(s);
    if (last < start) return generations;
    generations.insert(start - 1);
    int64 gen = 1;
    for (const int64 parent : parentsbetween(s, firstindivofgen(s, start), lastindivofgen(s, last),
                                             1, lastearlierindiv(s))) {
        while (lastindivofgen(s, gen) < parent) ++gen;
        generations.insert(gen);
    }
    return generations;
}

bool hasunknownparents(const state &s, int64 firstgen, int64 lastgen)
{
    return firstgen <= lastgen &&
           !parentsbetween(s, firstindivofgen(s, firstgen), lastindivofgen(s, lastgen), 0, 0)
                .empty();
}

// The map of a chromosome's sites, how its recombination is shared out, and the sites of its chips
// and QTN.
void checksitesofchrom(state &s, int64 chrom)
{
    const bool burnin = s.run.specstartgen <= s.pop.ngen;
    const int64 nsites = s.sites.nsegreginclglobal(chrom);
    arrayscope arrays;
    s.haplo.nblock = nsites / lociperblock;
    arrays.make(s.haplo.recombfactperblock, s.haplo.nblock);
    if (burnin) readincludedmap(chrom, nsites);
    if (s.founders.recombhotspotsonoff) checkrecombspec(s, chrom);
    if (burnin) checkblocknumber(s);
    for (const siteset of : sitesetsinuse(s)) keptsites(s, chrom, of, nsites);
}

void checkgenomesofchrom(const state &s, int64 chrom, const std::set<int64> &generations)
{
    const int64 nblock = s.sites.nsegreginclglobal(chrom) / lociperblock;
    for (const int64 gen : generations) {
        stopifmissing(genomefile(chrom, gen));
        checkgenome(genomefile(chrom, gen), s.pedi.nindivinthisgen(gen), nblock);
        checkgenomeblocks(genomefile(chrom, gen), s.pedi.nindivinthisgen(gen), nblock);
    }
    if (!hasunknownparents(s, s.run.specstartgen, std::min(s.run.specendgen, s.pop.ngen))) return;
    haplotypestore haplotypes;
    stopifmissing(haplotypeblocksfile(chrom));
    readhaplotypes(haplotypeblocksfile(chrom), haplotypes, nblock);
}

} // namespace

void checkearlierdrops(state &s)
{
    const std::set<int64> generations = generationsofparents(s);
    for (int64 h = 1; h <= s.founders.nchrom && !generations.empty(); ++h) {
        checksitesofchrom(s, h);
        checkgenomesofchrom(s, h, generations);
        for (const individualfile &file : chromosomefiles(s, h))
            checkrecordsof(file, file.path, lastearlierindiv(s));
        checkkept(trackingfile(h), 2 * lastearlierindiv(s),
                  {{s.pedi.ped(lastearlierindiv(s)).newid}, 2});
    }
}

// ------------------------------------------------------- values and cycles

void checkearliervalues(state &s)
{
    arrayscope arrays;
    makevaluearrays(s, arrays);
    for (const std::string &path : effectfilesof(s)) stopifmissing(path);
    readqtneffects(s);
    readresidualfactors(s);
    if (s.run.specendgen > s.pop.ngen) {
        readhighestcrossings(s.founders.nchrom);
        readrecombcounts(s, lastearlierindiv(s));
        readtruevalues(s, lastearlierindiv(s));
        if (s.selection.recombselonoff) readrecombination(s, lastearlierindiv(s));
        if (s.selection.selontbvyes1no0 == 0) readvare(s);
    }
    const int64 ngenerations = s.run.specstartgen - 1, nmodels = s.qtn.nqtnmodels;
    checkkept(variancetable, 1 + ngenerations * nmodels);
    checkkept(meanstable, 1 + ngenerations * nmodels * s.traits.ntraits);
    if (s.editing.geneditonoff) checkkept(fixedqtntable, 1 + ngenerations * s.loci.ntotqtn);
}

void checkearliercycle(const state &s, int64 gen)
{
    for (int64 m = 1; m < s.run.specstartgen; ++m) {
        const bool trains = s.selection.selontbvyes1no0 == 0 && m >= s.cycle.firsttmptraingen &&
                            m <= s.cycle.lasttmptraingen;
        if (m != gen - 1 && !trains) continue;
        std::vector<siteset> sets{siteset(s.chips.tmpchip)};
        if (areqtnadded(s)) sets.emplace_back(setofselection(s));
        for (int64 h = 1; h <= s.founders.nchrom; ++h)
            for (const siteset of : sets)
                checkrecordsof(
                    {"", recordform::rest, 0, 2, allelerowlength(nsitesonchrom(s, of, h))},
                    phasefile(h, of, m), s.pedi.nindivinthisgen(m));
    }
    if (gen == s.run.specstartgen && gen <= lastgenerationmade(s) &&
        s.selection.computeavercoancestryyes1no0 == 1 && gen > s.pop.ngen + 1)
        checkkept(coancestrytable, gen - s.pop.ngen);
}

void checkearlierindividuals(const state &s)
{
    for (const individualfile &file : wholerunfiles(s)) {
        checkrecordsof(file, file.path, lastearlierindiv(s));
        if (file.titlelines == 0 && file.linelength > 0)
            checkkeptfixed(file.path, file.linesperindiv * lastearlierindiv(s), file.linelength);
    }
}
