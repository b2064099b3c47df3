#include "check/runfiles.h"

#include "cyclefolder.h"
#include "editing/edittargets.h"
#include "evaluation/predictionruns.h"
#include "evaluation/relationshipruns.h"
#include "evaluation/selectionchip.h"
#include "evaluation/solutionfiles.h"
#include "evaluation/trainingdata.h"
#include "evaluation/valuefiles.h"
#include "folders.h"
#include "founders/mutationslots.h"
#include "founders/simulatedsites.h"
#include "founders/stores.h"
#include "haplotypes/burningeneration.h"
#include "haplotypes/crossingfiles.h"
#include "haplotypes/founderblocks.h"
#include "haplotypes/genomefiles.h"
#include "markers/extraction.h"
#include "markers/sitesets.h"
#include "pedigree/pedigreefiles.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "tidy/leavings.h"
#include "traits/effectfiles.h"
#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "values/qtngenotypes.h"
#include "values/recombtrait.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <span>

namespace
{
// What gzip leaves of them, as measured on founders of the preset InternalTest.
constexpr double packedphase = 0.08, packedgenotype = 0.11, packedphaserecords = 0.027,
                 packedgenotyperecords = 0.037, packedmap = 0.38;

// A list of files that grows.
struct filelist {
    const state &s;
    const runfacts &facts;
    std::vector<runfile> files;

    void add(const std::string &path, double bytes, double shareleft = 1, double sharewritten = 1)
    {
        files.push_back({path.starts_with("./") ? path.substr(2) : path, bytes, bytes * shareleft,
                         bytes * sharewritten});
    }
    // Of which earlier runs wrote the rows of earlier generations.
    void addextended(const std::string &path, double bytes, double shareleft = 1)
    {
        add(path, bytes, shareleft, 1 - lasted(facts.firstgen - 1) / lasted(facts.lastgen));
    }

  private:
    double lasted(int64 gen) const { return static_cast<double>(lastindivofgen(s, gen)); }
};

double number(int64 n)
{
    return static_cast<double>(n);
}

double sizeonfile(const std::string &path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : static_cast<double>(size);
}

// A row of an identifier and a cell of two columns for each site.
double allelerow(int64 nsites)
{
    return number(21 + 2 * nsites);
}

int64 allsites(const state &s)
{
    int64 sum = 0;
    for (const int64 n : s.sites.nsegreginclglobal) sum += n;
    return sum;
}

// ------------------------------------------------------- founders

void addfounders(filelist &list, int64 chrom)
{
    const state &s = list.s;
    const double nhaps = number(s.founders.nhaps), simulated = list.facts.sites.simulated,
                 slots = simulated + number(s.founders.ndenovomutperchr),
                 included = number(s.sites.nsegreginclglobal(chrom));
    const std::string folder = chromfolder(chrom);
    for (const char *program : {"macs", "Vintrecaskelle"})
        list.add(folder + program, sizeonfile(program));
    // A site's alleles, number, position and depth, and its number once more behind all.
    list.add(folder + macsoutput, simulated * (nhaps + 48));
    list.add(simulatedmapfile(chrom), 25 * simulated);
    list.add(founderhaplotypesfile(chrom), nhaps * (2 * simulated + 1));
    list.add(uncompressedmapfile(chrom), 41 * slots);
    list.add(compressedmapfile(chrom), compressioninforce(s) ? 51 * list.facts.sites.kept : 0);
    list.add(includedmapfile(chrom), 61 * included);
    list.add(includedhaplotypesfile(chrom), nhaps * (2 * included + 1));
    list.add(haplotypeblocksfile(chrom), 8 + nhaps * included / lociperblock * 8);
    list.add(minorfrequencyfile(chrom), 31 * included);
    list.add(carriersfile(chrom), 21 * number(s.pop.nindivp));
    list.add(mutationsfile(chrom), 101 * number(s.sites.nmutinclglobal(chrom)));
}

void addbase(filelist &list, int64 chrom)
{
    int64 nbase = 0;
    for (int64 i = 1; i <= lastindivofgen(list.s, list.facts.lastgen); ++i) {
        const pedigreeline &row = list.s.pedi.ped(i);
        nbase += row.newsire == 0 || row.newdam == 0;
    }
    list.add(basetrackingfile(chrom), 61 * number(nbase));
    for (const siteset of : sitesetsinuse(list.s))
        list.add(informationfile(chrom, of),
                 (of.ischip() ? 81 : 121) * number(nsitesonchrom(list.s, of, chrom)));
}

// ------------------------------------------------------- generations

void addsequence(filelist &list, int64 chrom, int64 gen, double nindiv)
{
    const state &s = list.s;
    if (!s.run.fullseqoutonoff) return;
    const double record = 16 + 8 * number(s.sites.nsegreginclglobal(chrom));
    const bool packed = s.run.zipsequenceonoff;
    list.add(sequencephasefileof(chrom, gen), 2 * nindiv * record, packed ? packedphaserecords : 1);
    list.add(sequencegenotypefileof(chrom, gen), nindiv * record,
             packed ? packedgenotyperecords : 1);
}

void addgeneration(filelist &list, int64 chrom, int64 gen)
{
    const state &s = list.s;
    const double nindiv = number(s.pedi.nindivinthisgen(gen));
    list.add(genomefile(chrom, gen),
             8 + nindiv * 16 * number(s.sites.nsegreginclglobal(chrom) / lociperblock));
    for (const siteset of : sitesetsinuse(s)) {
        const int64 nsites = nsitesonchrom(s, of, chrom);
        list.add(phasefile(chrom, of, gen), 2 * nindiv * allelerow(nsites));
        list.add(genotypefile(chrom, of, gen), nindiv * allelerow(nsites));
        if (!of.ischip()) list.add(frequencyfile(chrom, of.set, gen), 61 * number(nsites));
    }
    addsequence(list, chrom, gen, nindiv);
}

void addchromosomes(filelist &list)
{
    const state &s = list.s;
    const int64 last = list.facts.lastgen;
    const double nindiv = number(lastindivofgen(s, last));
    const bool newsimulation = s.run.specstartgen == 1 && s.run.merging == mergekind::none;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        if (newsimulation) addfounders(list, h);
        if (newsimulation) addbase(list, h);
        for (int64 gen = list.facts.firstgen; gen <= last; ++gen) addgeneration(list, h, gen);
        list.addextended(trackingfile(h), nindiv * (2 * 35 + 20 * 2 * s.founders.morgans));
    }
}

// ------------------------------------------------------- the whole genome

void addtables(filelist &list)
{
    const state &s = list.s;
    const int64 last = list.facts.lastgen;
    const double nindiv = number(lastindivofgen(s, last)), ngen = number(last);
    const double nmodels = number(s.qtn.nqtnmodels), ntraits = number(s.traits.ntraits);
    list.add(pedigreetable, 121 + 614 * nindiv);
    list.add(gendertable, 61 * (nindiv + 1));
    list.addextended(recombinationcounts, 9 * nindiv);
    list.addextended(valuetable, 1001 + nindiv * (41 + 60 * nmodels * ntraits));
    list.addextended(meanstable, ngen * nmodels * ntraits * 81);
    list.addextended(variancetable, 1501 + ngen * nmodels * (21 + 80 * ntraits));
    if (s.selection.recombselonoff) list.addextended(recombinationtable, nindiv * 141);
    if (s.editing.geneditonoff) list.addextended(fixedqtntable, 61 * ngen * number(s.loci.ntotqtn));
    for (const qtnset set : setsinuse(s))
        list.addextended(qtngenotypefile(set), nindiv * allelerow(s.loci.ntot(set)));
    if (s.run.specstartgen > 1 || s.run.merging != mergekind::none) return;
    const double nqtn = number(s.loci.ntotqtn),
                 blocks = 20 * ntraits * (s.qtn.nqtngamma > 0 ? 2 : 1);
    for (const qtnset set : traitsets) {
        list.add(informationfile(set), 131 * (nqtn + 1));
        list.add(additiveeffectfile(set), 1001 + nqtn * (31 + blocks));
        if (!s.qtn.dominonoff) continue;
        list.add(dominanceeffectfile(set), 1001 + nqtn * (31 + 2 * blocks));
        list.add(substitutioneffectfile(set), 1001 + nqtn * (31 + blocks));
    }
}

void addchips(filelist &list)
{
    const state &s = list.s;
    const int64 last = list.facts.lastgen;
    const double nindiv = number(lastindivofgen(s, last));
    const bool packed = s.run.fullseqoutonoff && s.run.zipsequenceonoff &&
                        s.run.specendgen == s.pop.ngen + s.pop.ngensel;
    const auto share = [&](double whenpacked) { return packed ? whenpacked : 1; };
    for (int64 e = 1; e <= s.chips.nchip; ++e) {
        const int64 nsnp = nsitesintotal(s, siteset(e));
        list.addextended(chipphasefile(e), 2 * nindiv * allelerow(nsnp), share(packedphase));
        list.addextended(chipgenotypefile(e), nindiv * allelerow(nsnp), share(packedgenotype));
        list.add(snpinformationfile(e), 101 * number(nsnp + 1));
    }
    if (!s.run.fullseqoutonoff) return;
    const double row = allelerow(allsites(s));
    list.addextended(sequencephasefile, 51 + 2 * nindiv * row, share(packedphase));
    list.addextended(sequencegenotypefile, 51 + nindiv * row, share(packedgenotype));
    if (s.run.specendgen == s.pop.ngen + s.pop.ngensel)
        list.add(sequencemapfile, 20.7 * number(allsites(s)), share(packedmap));
}

// ------------------------------------------------------- cycles

void addprediction(filelist &list, const trainingplan &plan)
{
    const state &s = list.s;
    const int64 nloci = s.loci.nsnpforsel;
    const std::string folder = cyclefolder(plan.gen - s.pop.ngen);
    const double ntrain = number(plan.nindiv), ncandidates = number(plan.ncandidates);
    const bool pedigree = s.selection.selmethindicator == 1;
    if (aresolutionsinforce(s, plan.gen - s.pop.ngen)) {
        list.add(folder + scaledgenotypes(s, 1), ncandidates * number(21 + 40 * nloci));
        return;
    }
    const char *const program = pedigree ? "QuillomereP" : "Quillomere";
    list.add(folder + program, sizeonfile(program));
    list.add(folder + traininggenotypes(s), ntrain * allelerow(nloci));
    list.add(folder + trainingphases(s), 2 * ntrain * allelerow(nloci));
    for (int64 t = 1; t <= s.traits.ntraits; ++t) {
        list.add(folder + trainingphenotypes(s, t), 41 * ntrain);
        list.add(folder + estimatesfile(s, t), 20.3 * (pedigree ? ntrain : ncandidates));
        if (!pedigree) list.add(folder + solutionsfile(s, t), 43 * number(nloci));
        if (pedigree)
            list.add(folder + trainingpedigree(t), 61 * number(lastindivofgen(s, plan.lastgen)));
    }
    if (!pedigree) list.add(folder + trainingfrequencies, 31 * number(nloci));
}

void addrelationships(filelist &list, const trainingplan &plan, int64 nloci)
{
    const state &s = list.s;
    const std::string folder = cyclefolder(plan.gen - s.pop.ngen);
    const double n = number(plan.ncandidates);
    list.add(folder + "Brenvask", sizeonfile("Brenvask"));
    list.add(folder + relationshipmatrix, n * (21 + 20 * n));
    list.add(folder + "GFullMatrixAlleleFreq.txt", 20 * number(nloci));
    if (s.selection.optcontribselonoff) list.add(folder + "Corvalind", sizeonfile("Corvalind"));
    if (s.selection.computeavercoancestryyes1no0 == 1 && plan.gen == s.pop.ngen + s.pop.ngensel)
        list.add(folder + lastgenotypes(s),
                 number(s.pedi.nindivinthisgen(plan.gen)) * allelerow(nloci));
}

void addcycle(filelist &list, const trainingplan &plan)
{
    const state &s = list.s;
    const int64 cycle = plan.gen - s.pop.ngen;
    const std::string folder = cyclefolder(cycle);
    const double n = number(plan.ncandidates);
    const bool ontruevalues = s.selection.selontbvyes1no0 == 1;
    list.add(folder + testgenotypes(s), n * allelerow(s.loci.nsnpforsel));
    for (int64 t = 1; t <= s.traits.ntraits; ++t) {
        list.add(folder + truetestvalues(s, t), 41 * n);
        if (s.selection.selmethindicator == 3) list.add(folder + testphenotypes(s, t), 41 * n);
    }
    if (s.traits.ntraits > 1 || s.selection.recombselonoff)
        list.add(folder + selectionindexfile, 41 * n);
    if (s.selection.selontbvyes1no0 == 0) addprediction(list, plan);
    if (s.editing.geneditonoff) {
        const double nqtn = number(s.loci.ntotqtn);
        list.add(editgainfile(cycle, plan.gen), 142 * nqtn);
        list.add(editlistfile(s, cycle, plan.gen), 162 * nqtn);
    }
    if (s.selection.optcontribselonoff && ontruevalues)
        list.add(folder + testqtngenotypes, n * allelerow(s.loci.ntotqtn));
    if (s.selection.optcontribselonoff || s.selection.computeavercoancestryyes1no0 == 1)
        addrelationships(list, plan, ontruevalues ? s.loci.ntotqtn : s.loci.nsnpforsel);
}

// ------------------------------------------------------- the run's end

// What solvanto --tidy removes on the way.
void removetidied(std::vector<runfile> &files)
{
    std::set<std::string> removed;
    for (const leaving &row : leavingstable())
        if (row.kind != leavingkind::packed && row.kind != leavingkind::dropped)
            removed.insert(row.pattern);
    for (runfile &file : files)
        if (removed.contains(patternof(file.path))) file.atend = 0;
}

void removechromosomes(const state &s, std::vector<runfile> &files)
{
    if (s.run.keepchromonoff || s.run.merging != mergekind::none) return;
    if (s.run.specendgen != s.pop.ngen + s.pop.ngensel) return;
    for (runfile &file : files)
        if (file.path.starts_with("Chromosomes/")) file.atend = 0;
}
} // namespace

std::vector<runfile> filesofrun(const state &s, const runfacts &facts)
{
    filelist list{s, facts, {}};
    addchromosomes(list);
    addtables(list);
    addchips(list);
    for (const trainingplan &plan : facts.cycles) addcycle(list, plan);
    if (s.options.tidy) removetidied(list.files);
    removechromosomes(s, list.files);
    return list.files;
}

namespace
{
// A merge copies these, and makes an empty Selection.
constexpr const char *mergedfolders[] = {"Chromosomes", "SimulatedData"};

// Files that stand in the folders and that the run keeps as they are.
void addkept(const std::string &runfolder, std::span<const char *const> folders,
             const std::vector<runfile> &files, std::vector<runfile> &kept)
{
    std::set<std::string> written;
    for (const runfile &file : files) written.insert(file.path);
    for (const char *folder : folders) {
        std::error_code error;
        std::filesystem::recursive_directory_iterator entry(runfolder + "/" + folder, error), end;
        for (; !error && entry != end; entry.increment(error)) {
            const std::string path = entry->path().lexically_relative(runfolder).string();
            if (!entry->is_regular_file(error) || written.contains(path)) continue;
            const double bytes = sizeonfile(entry->path().string());
            kept.push_back({path, bytes, bytes, 0});
        }
    }
}

// Individuals bring the cycles of their folders along, the later folders' in place of the others'.
void addmerged(const runfacts &facts, const std::vector<runfile> &files, std::vector<runfile> &kept)
{
    constexpr const char *selection[] = {"Selection"};
    addkept(facts.copiedfolder, mergedfolders, files, kept);
    std::map<std::string, runfile> cycles;
    for (const std::string &folder : facts.selectionfolders) {
        std::vector<runfile> found;
        addkept(folder, selection, files, found);
        for (const runfile &file : found) cycles[file.path] = file;
    }
    for (const auto &[path, file] : cycles) kept.push_back(file);
}
} // namespace

std::map<std::string, disksize> expecteddisk(const state &s, const runfacts &facts)
{
    std::vector<runfile> files = filesofrun(s, facts);
    std::vector<runfile> kept;
    if (s.run.merging != mergekind::none)
        addmerged(facts, files, kept);
    else if (s.run.specstartgen > 1)
        addkept(".", runfolders, files, kept);
    removechromosomes(s, kept);
    files.insert(files.end(), kept.begin(), kept.end());
    std::map<std::string, disksize> folders;
    for (const char *folder : runfolders) folders[folder] = {};
    for (const runfile &file : files) {
        disksize &folder = folders[file.path.substr(0, file.path.find('/'))];
        folder.atend += file.atend;
        folder.atmost += file.bytes;
    }
    return folders;
}
