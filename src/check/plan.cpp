#include "check/plan.h"

#include "check/rungenerations.h"
#include "cyclefolder.h"
#include "founders/simulatedsites.h"
#include "haplotypes/droplines.h"
#include "markers/sitesets.h"
#include "pedigree/breedingplan.h"
#include "selection/pedigreeimport.h"
#include "textlayout.h"
#include "words.h"

#include <algorithm>
#include <set>
#include <vector>

namespace
{
// ------------------------------------------------------- generations

std::string quotient(int64 asked, int64 available, const char *what)
{
    return numbertext(asked) + " of " + numbertext(available) + " " + what;
}

// Parents as a file names them: how many of each, and of how many individuals one is unknown.
std::string breedersbyfile(const state &s, int64 gen, const std::string &file)
{
    std::set<int64> sires, dams;
    int64 nunknown = 0;
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i) {
        const pedigreeline &row = s.pedi.ped(i);
        if (row.newsire > 0) sires.insert(row.newsire);
        if (row.newdam > 0) dams.insert(row.newdam);
        nunknown += row.newsire == 0 || row.newdam == 0;
    }
    std::string text = file + ": " + numbertext(std::ssize(sires)) + " sires, " +
                       numbertext(std::ssize(dams)) + " dams";
    if (nunknown > 0) text += ", " + numbertext(nunknown) + " individuals with an unknown parent";
    return text;
}

std::string breedersbyplan(const state &s, int64 gen)
{
    const int64 parentgen = gen - 1, n = s.pedi.nindivinthisgen(parentgen);
    const breedingplan plan = planofgeneration(s, gen);
    if (s.pop.nselfedparinthisgen(parentgen) > 0) return quotient(plan.nsires, n, "selfed");
    if (israndommated(s, gen)) return quotient(plan.nsires, n, "at random");
    const char *const males = s.pop.plantbreedonoff ? "males" : "sires", *const females =
                                                                             s.pop.plantbreedonoff
                                                                                 ? "females"
                                                                                 : "dams";
    const std::string sires = quotient(plan.nsires, s.pedi.nmalinthisgen(parentgen), males);
    if (plan.dams == damside::assire) return sires + ": doubled haploids";
    if (plan.dams == damside::none) return sires + ", other parent unknown";
    return sires + ", " + quotient(plan.ndams, s.pedi.nfeminthisgen(parentgen), females) +
           (isdoubledhaploid(s, gen) ? ": doubled haploids" : "");
}

std::string breedersofcycle(const state &s, int64 gen)
{
    if (isimported(s, gen)) return importedpedigree(gen - s.pop.ngen);
    if (s.selection.optcontribselonoff)
        return "optimal contributions of " + numbertext(s.pedi.nindivinthisgen(gen - 1));
    std::string text = "best " + breedersbyplan(s, gen);
    if (s.editing.geneditonoff)
        text += "; " + numbertext(s.editing.nindedited) + " edited at up to " +
                numbertext(s.editing.ngeneditsperind) + " QTN" +
                (s.editing.genedriveonoff ? ", as gene drives" : "");
    return text;
}
} // namespace

std::string breedersof(const state &s, int64 gen)
{
    if (gen > s.pop.ngen) return breedersofcycle(s, gen);
    if (s.pop.pedigreefrom == pedigreesource::file && gen >= s.run.specstartgen)
        return breedersbyfile(s, gen, s.pop.pedigreefile);
    if (gen == 1) return "founders: " + numbertext(s.founders.nhaps) + " haplotypes";
    return breedersbyplan(s, gen);
}

namespace
{
struct generationrow {
    int64 firstgen = 0, lastgen = 0;
    std::string text; // all but the number
};

std::string stageof(const state &s, int64 gen)
{
    if (gen < s.run.specstartgen) return "earlier run";
    if (gen > lastgenerationmade(s)) return "not made";
    return gen <= s.pop.ngen ? "burn-in" : "selection";
}

std::string textofgeneration(const state &s, int64 gen)
{
    std::string line;
    for (const int64 n :
         {s.pedi.nindivinthisgen(gen), s.pedi.nmalinthisgen(gen), s.pedi.nfeminthisgen(gen)})
        puti(line, n, 9);
    line += "  ";
    putleft(line, stageof(s, gen), 13);
    return line + (gen < s.run.specstartgen ? "" : breedersof(s, gen));
}

// Generations that are alike but for their numbers stand in one row.
std::vector<generationrow> generationrows(const state &s)
{
    std::vector<generationrow> rows;
    for (int64 gen = 1; gen <= s.run.specendgen; ++gen) {
        const std::string text = textofgeneration(s, gen);
        if (rows.empty() || rows.back().text != text) rows.push_back({gen, gen, text});
        rows.back().lastgen = gen;
    }
    return rows;
}

std::string rangetext(int64 first, int64 last)
{
    return numbertext(first) + (last > first ? "-" + numbertext(last) : "");
}

void printgenerations(const state &s)
{
    printline("");
    printline(" Generations");
    printline(
        "      Gen     Size    Males  Females  Stage        Bred from (asked for, of how many "
        "there are)");
    for (const generationrow &row : generationrows(s)) {
        textline line;
        puta(line, rangetext(row.firstgen, row.lastgen), 9);
        printline(line + row.text);
    }
}

// ------------------------------------------------------- sites

void printsites(const state &s, const runfacts &facts)
{
    printline("");
    printline(" Sites of " + numbertext(s.founders.nchrom) + " chromosomes");
    int64 fewest = s.sites.nsegreginclglobal(1), most = fewest, sum = 0;
    for (const int64 n : s.sites.nsegreginclglobal) {
        fewest = std::min(fewest, n);
        most = std::max(most, n);
        sum += n;
    }
    if (s.run.specstartgen > 1)
        printline("   " + rangetext(fewest, most) + " on each, " + numbertext(sum) +
                  " in all, by the files of earlier runs");
    else if (facts.coalescent.unknown || facts.macsparams.empty())
        printline("   can't be told: " + facts.coalescent.refused);
    else
        printline("   about " + numbertext(fewest) + " on each, " + numbertext(sum) +
                  " in all: " + numbertext(static_cast<int64>(facts.sites.simulated)) +
                  " expected by the coalescent" +
                  (compressioninforce(s)
                       ? ", of which" + freeline(s.founders.genomecompression) + " % are kept"
                       : "") +
                  (s.founders.ndenovomutperchr > 0
                       ? ", " + numbertext(s.founders.ndenovomutperchr) + " mutations"
                       : "") +
                  ", in whole blocks of 60");
}

std::string bandtext(double lowest, double highest)
{
    return "allele frequency" + freeline(lowest) + " to" + freeline(highest);
}

void printchips(const state &s)
{
    if (!s.chips.usesnpchiponoff) return printline("   no SNP chips: one locus for form's sake");
    for (int64 e = 1; e <= s.chips.nchip; ++e) {
        const bool forselection = e == s.chips.tmpchip && s.pop.ngensel > 0;
        printline("   chip " + numbertext(e) + ": " + numbertext(s.chips.nsnpperchipperchrom(e)) +
                  " SNP on each, " + numbertext(nsitesintotal(s, siteset(e))) + " in all" +
                  (forselection ? ", for selection" : ""));
    }
    constexpr const char *with[] = {"all QTN among them", "no QTN among them",
                                    "QTN among them by chance"};
    printline("   SNP of " + bandtext(s.chips.minsnpfreq, s.chips.maxsnpfreq) +
              " in generation 1, " + with[s.chips.snpchipinclqtn - 1] +
              (s.chips.nchip > 1 && s.chips.nestedonoff ? ", chips nested" : ""));
}

void printqtn(const state &s)
{
    const std::string all = numbertext(s.loci.ntotqtn);
    printline("   QTN: " + numbertext(s.qtn.nqtnperchrom) + " on each, " + all + " in all" +
              (s.qtn.qtnclustersonoff ? ", in the clusters of QtnSpecifications" : "") +
              "; a second set of as many of " + bandtext(s.qtn.minqtnfreq, s.qtn.maxqtnfreq));
    printline("   normal effects" +
              (s.qtn.nqtngamma > 0
                   ? ", and gamma effects at " + numbertext(s.loci.ntotqtngamma) + " of them"
                   : std::string()) +
              (s.qtn.dominonoff ? ", with dominance" : ", additive") + "; " +
              numbertext(s.qtn.nqtnmodels) + " QTN models, " + numbertext(s.traits.ntraits) +
              (s.traits.ntraits == 1 ? " trait" : " traits"));
    if (s.selection.recombselonoff)
        printline("   recombination trait: " + numbertext(s.loci.ntotqtnrecomb) + " QTN in all");
}

// ------------------------------------------------------- cycles

std::string methodof(const state &s, int64 cycle)
{
    const selectionsettings &sel = s.selection;
    if (sel.selmethindicator == 3) return "phenotypes";
    if (sel.selontbvyes1no0 == 1) return "true values";
    if (istrainingfixed(s, cycle))
        return "solutions of cycle " + numbertext(sel.fixedtrainselcycle);
    if (sel.externsolonoff) return "SNP solutions from outside";
    if (sel.selmethindicator == 1) return "pedigree prediction";
    return "genomic prediction, " + numbertext(s.loci.nsnpforsel) + " loci";
}

std::string trainingof(const state &s, const trainingplan &plan)
{
    const int64 cycle = plan.gen - s.pop.ngen;
    if (s.selection.selontbvyes1no0 != 0 || aresolutionsinforce(s, cycle)) return "none";
    return numbertext(plan.nindiv) + " individuals of generations " +
           rangetext(plan.firstgen, plan.lastgen);
}

void printcycles(const state &s, const runfacts &facts)
{
    if (facts.cycles.empty()) return;
    printline("");
    printline(" Cycles of selection, by " + std::string(s.loci.model(s.qtn.qtnmodel).name) +
              " QTN");
    printline("    Cycle    Makes  Candidates  Method                             Training");
    for (const trainingplan &plan : facts.cycles) {
        textline line;
        puti(line, plan.gen - s.pop.ngen, 9);
        puti(line, plan.gen, 9);
        puti(line, plan.ncandidates, 12);
        line += "  ";
        putleft(line, methodof(s, plan.gen - s.pop.ngen), 35);
        printline(line + trainingof(s, plan));
    }
}
} // namespace

void printplan(const state &s, const runfacts &facts)
{
    printgenerations(s);
    printsites(s, facts);
    printchips(s);
    printqtn(s);
    printcycles(s, facts);
}
