#include "merge/mergeruns.h"

#include "folders.h"
#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "haplotypes/crossingfiles.h"
#include "merge/mergechecks.h"
#include "merge/mergefrequencies.h"
#include "merge/mergemutations.h"
#include "merge/mergerecords.h"
#include "pedigree/pedigreefiles.h"
#include "results/sequence.h"
#include "shell.h"
#include "stops.h"
#include "values/qtngenotypes.h"
#include "values/recombtrait.h"
#include "values/valuearrays.h"
#include "words.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

// ------------------------------------------------------- the list

namespace
{
struct listedindividual {
    int64 linenumber = 0, id = 0;
    std::string folder;
};

std::vector<listedindividual> parselist(const std::string &list, const std::vector<listline> &lines)
{
    constexpr std::size_t foldercolumn = 30;
    std::vector<listedindividual> individuals;
    for (std::size_t l = 1; l < lines.size(); ++l) {
        const std::string_view text = lines[l].text;
        listedindividual indiv;
        indiv.linenumber = lines[l].number;
        if (text.size() > foldercolumn) indiv.folder = trim(text.substr(foldercolumn));
        if (!readinteger(trim(text.substr(0, foldercolumn)), indiv.id) || indiv.folder.empty())
            ioerror(list, "line " + numbertext(indiv.linenumber) +
                              ": an individual's number is wanted in columns 1 to 30, and its "
                              "folder from column 31 on");
        individuals.push_back(indiv);
    }
    if (individuals.empty()) ioerror(list, "names no individual");
    return individuals;
}

int64 countfolders(const std::vector<listedindividual> &individuals)
{
    int64 n = 1;
    for (std::size_t i = 1; i < individuals.size(); ++i)
        n += individuals[i].folder != individuals[i - 1].folder;
    return n;
}

// Each change of folder is a new one.
mergeplan makeplan(const std::string &list, const std::string &burninfolder,
                   const std::vector<listedindividual> &individuals)
{
    mergeplan plan;
    plan.burninfolder = burninfolder;
    for (const listedindividual &indiv : individuals) {
        if (plan.sources.empty() || plan.sources.back().path != indiv.folder) {
            checkfolder(indiv.folder);
            plan.sources.push_back(readsourcefolder(indiv.folder));
        }
        const sourcefolder &source = plan.sources.back();
        if (indiv.id < 1 || indiv.id > source.nindividuals())
            ioerror(list, "line " + numbertext(indiv.linenumber) + ": individual " +
                              numbertext(indiv.id) + " of " + indiv.folder +
                              ", which holds individuals 1 to " +
                              numbertext(source.nindividuals()));
        thing t;
        t.folder = static_cast<int64>(plan.sources.size());
        t.id = indiv.id;
        calculategenid(t, source.accumgenarray);
        t.newid = static_cast<int64>(plan.things.size()) + 1;
        plan.things.push_back(t);
    }
    return plan;
}

mergeplan readplan(const state &s)
{
    const std::string &list = s.run.mergefiles;
    const std::vector<listline> lines = readlist(list);
    const std::string burninfolder(trim(lines.front().text));
    const std::vector<listedindividual> individuals = parselist(list, lines);
    checksamefolders(list, s.run.numberofmergeruns, countfolders(individuals),
                     "runs of lines of one folder");
    checkfolder(burninfolder);
    return makeplan(list, burninfolder, individuals);
}

void copyselection(state &s, const std::string &folder)
{
    if (isemptyfolder(folder + "/Selection")) return;
    if (shellstatus("cp -r " + shellword(folder) + "/Selection/* Selection/") != 0)
        notefailure(s.failures, folder + "/Selection: could not be copied into the working folder");
}
} // namespace

mergeplan planofruns(state &s, arrayscope &arrays)
{
    mergeplan plan = readplan(s);
    makechromarrays(s, arrays);
    checkmergefolders(s, plan);
    checkopenfiles(plan);
    return plan;
}

void mergeruns(state &s)
{
    arrayscope arrays;
    const mergeplan plan = planofruns(s, arrays);
    copyfromburnin(plan.burninfolder);
    copyselection(s, plan.sources.front().path);
    writefourcolumns(static_cast<int64>(plan.things.size()));
    mergerecords(s, plan);
    makemergedbinary(s, plan);
    refreshcounts(s, plan);
    removestalecopies(s);
}

// ------------------------------------------------------- steps of both merges

void makemergedbinary(const state &s, const mergeplan &plan)
{
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        mergegenomes(plan, h, 1, s.sites.nsegreginclglobal(h) / lociperblock);
}

namespace
{
void mergehighestcrossings(const state &s, const mergeplan &plan)
{
    const int64 nchrom = s.founders.nchrom;
    const auto readfrom = [&](const std::string &folder) {
        return readhighestcrossings(nchrom, inrunfolder(folder, highestcrossingsfile));
    };
    array1<int64> highest = readfrom(plan.burninfolder);
    for (const sourcefolder &source : plan.sources) {
        const array1<int64> ofsource = readfrom(source.path);
        for (int64 h = 1; h <= nchrom; ++h) highest(h) = std::max(highest(h), ofsource(h));
    }
    writehighestcrossings(highest, nchrom);
}

// Individuals in each merged generation.
std::vector<int64> generationsizes(const mergeplan &plan)
{
    std::vector<int64> sizes;
    for (const thing &t : plan.things) {
        sizes.resize(static_cast<std::size_t>(t.newgeneration));
        ++sizes.back();
    }
    return sizes;
}

void setgenerations(state &s, const std::vector<int64> &sizes)
{
    for (int64 g = 1; g <= s.pedi.cumindivnbtogen.upper(); ++g) {
        const bool exists = g <= static_cast<int64>(sizes.size());
        s.pedi.nindivinthisgen(g) = exists ? sizes[static_cast<std::size_t>(g - 1)] : 0;
        s.pedi.cumindivnbtogen(g) = s.pedi.cumindivnbtogen(g - 1) + s.pedi.nindivinthisgen(g);
    }
}

// The genotypes are gathered anew, from the same files, since the fixed QTN follow from them.
void writefixedqtns(state &s, int64 ngenerations)
{
    for (int64 g = 1; g <= ngenerations; ++g) {
        arrayscope arrays;
        s.values.nindivinsimulrun = s.pedi.nindivinthisgen(g);
        makegenotypetables(s, arrays);
        compileqtngenotypes(s, g, firstindivofgen(s, g));
    }
}
} // namespace

void refreshcounts(state &s, const mergeplan &plan)
{
    const int64 nindividuals = static_cast<int64>(plan.things.size());
    for (int64 e = 1; e <= s.chips.nchip; ++e) calculatebothsnpandqtn(s, nindividuals, siteset(e));
    for (const qtnset set : traitsets) calculatebothsnpandqtn(s, nindividuals, set);
    calculatenewnbindivigen(nindividuals);

    const std::vector<int64> sizes = generationsizes(plan);
    int64 firstindiv = 1;
    for (std::size_t g = 1; g <= sizes.size(); firstindiv += sizes[g - 1], ++g)
        writegenerationfrequencies(s, static_cast<int64>(g), firstindiv, sizes[g - 1]);
    mergehighestcrossings(s, plan);
    mergemutations(s, plan);
    setgenerations(s, sizes);
    if (s.editing.geneditonoff) writefixedqtns(s, static_cast<int64>(sizes.size()));
}

void removestalecopies(const state &s)
{
    std::vector<std::string> stale;
    if (!s.run.fullseqoutonoff) stale = {sequencephasefile, sequencegenotypefile};
    if (!s.selection.recombselonoff) {
        stale.push_back(recombinationtable);
        stale.push_back(qtngenotypefile(qtnset::recombination));
    }
    if (!s.editing.geneditonoff) stale.push_back(fixedqtntable);
    for (const std::string &path : stale) {
        std::error_code error;
        fs::remove(path, error);
        if (error) ioerror(path, "could not be removed: " + error.message());
        fs::remove(path + ".gz", error);
    }
}
