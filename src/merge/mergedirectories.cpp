#include "merge/mergedirectories.h"

#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "haplotypes/genomefiles.h"
#include "merge/mergechecks.h"
#include "merge/mergerecords.h"
#include "merge/mergeruns.h"
#include "pedigree/pedigreefiles.h"
#include "shell.h"
#include "stops.h"
#include "values/coancestry.h"
#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "words.h"

#include <algorithm>

std::vector<std::string> mergereadpaths(const state &s)
{
    std::vector<std::string> paths;
    for (const listline &line : readlist(s.run.mergefiles)) paths.emplace_back(trim(line.text));
    checksamefolders(s.run.mergefiles, s.run.numberofmergeruns + 1,
                     static_cast<int64>(paths.size()), "lines, each with a folder,");
    return paths;
}

// ------------------------------------------------------- the pedigree

namespace
{
// A row of the work table: as read, and the individual that it is.
struct workrow {
    pedigreeline line;
    thing individual;
};

// The later folder begins with the generations of the base folder, and its individuals.
void checkbeginswithbase(const state &s, const sourcefolder &base, const sourcefolder &later)
{
    const auto other = [&](const std::string &path) {
        ioerror(path, "differs from that of the base folder " + base.path +
                          ", whose individuals should be the first of " + later.path);
    };
    for (int64 g = 1; g <= base.ngenerations(); ++g) {
        if (g > later.ngenerations() || later.genarray(g) != base.genarray(g))
            other(inrunfolder(later.path, generationtable));
        for (int64 h = 1; h <= s.founders.nchrom; ++h) {
            const std::string path = genomefile(h, g);
            if (!samecontent(inrunfolder(base.path, path), inrunfolder(later.path, path)))
                other(inrunfolder(later.path, path));
        }
    }
}

void checkgenerations(const state &s, const sourcefolder &source)
{
    const int64 totalgenerations = s.pop.ngen + s.pop.ngensel;
    if (source.ngenerations() > totalgenerations)
        ioerror(inrunfolder(source.path, generationtable),
                "holds " + numbertext(source.ngenerations()) +
                    " generations where the specification has " + numbertext(totalgenerations));
}

// Reads the rows of a folder behind the first nbase individuals, which are those of the base.
void readrows(const sourcefolder &source, int64 folder, int64 nbase, std::vector<workrow> &table)
{
    infile in(inrunfolder(source.path, pedigreetable));
    in.skiprecords(1);
    for (int64 k = 1; k <= source.nindividuals(); ++k) {
        workrow row;
        readpedigreeline(in, row.line, k);
        row.individual.folder = folder;
        row.individual.id = k;
        calculategenid(row.individual, source.accumgenarray);
        if (row.line.newid != k || row.line.generation != row.individual.generation)
            in.complain("is not that of individual " + numbertext(k) + " in generation " +
                        numbertext(row.individual.generation));
        for (const int64 parent : {row.line.newsire, row.line.newdam}) {
            if (parent < 0 || parent >= k)
                in.complain("names a parent that stands on no earlier line");
            if (parent == 0 && folder > 1 && k > nbase)
                in.complain("individual " + numbertext(k) +
                            " has an unknown parent, and isn't of the base folder");
        }
        if (k > nbase) table.push_back(row);
    }
}
} // namespace

mergeplan mergepedigree(const state &s, const std::vector<std::string> &paths,
                        array1<pedigreeline> &ped)
{
    mergeplan plan;
    plan.burninfolder = paths.front();
    std::vector<workrow> newpedigreetable;
    int64 burninanimcount = 0;
    for (const std::string &path : paths) {
        checkfolder(path);
        plan.sources.push_back(readsourcefolder(path));
        const sourcefolder &source = plan.sources.back();
        const auto folder = static_cast<int64>(plan.sources.size());
        checkgenerations(s, source);
        if (folder > 1) checkbeginswithbase(s, plan.sources.front(), source);
        readrows(source, folder, burninanimcount, newpedigreetable);
        if (folder == 1) burninanimcount = source.nindividuals();
    }
    std::stable_sort(newpedigreetable.begin(), newpedigreetable.end(),
                     [](const workrow &a, const workrow &b) {
                         return a.individual.generation < b.individual.generation;
                     });

    // Numbers of each folder to final ones; the base individuals keep theirs, being the first.
    std::vector<array1<int64>> oldidstonew;
    for (const sourcefolder &source : plan.sources) {
        array1<int64> &ids = oldidstonew.emplace_back(extent(0, source.nindividuals()));
        for (int64 k = 1; k <= burninanimcount; ++k) ids(k) = k;
    }
    ped.allocate(static_cast<int64>(newpedigreetable.size()));
    for (int64 i = 1; i <= ped.size(); ++i) {
        workrow &row = newpedigreetable[static_cast<std::size_t>(i - 1)];
        array1<int64> &ids = oldidstonew[static_cast<std::size_t>(row.individual.folder - 1)];
        ids(row.individual.id) = i; // parents stand on earlier lines, and so have theirs by now
        row.line.newid = i;
        row.line.newsire = ids(row.line.newsire);
        row.line.newdam = ids(row.line.newdam);
        row.individual.newid = i;
        row.individual.newgeneration = row.line.generation;
        row.individual.newsire = row.line.newsire;
        row.individual.newdam = row.line.newdam;
        ped(i) = row.line;
        plan.things.push_back(row.individual);
    }
    return plan;
}

namespace
{
// ------------------------------------------------------- files with lines per generation

// First generation whose lines of such a file are zeros.
int64 firstunknown(const state &s, const mergeplan &plan)
{
    return std::min(s.pop.ngen, plan.sources.front().ngenerations()) + 1;
}

void writezerovariances(const state &s, int64 firstgen)
{
    outfile out;
    out.openandkeep(variancetable, 1 + (firstgen - 1) * s.qtn.nqtnmodels);
    textline line;
    for (int64 g = firstgen; g <= s.pop.ngen + s.pop.ngensel; ++g)
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
            for (const int64 key : {g, p}) puti(line, key, 10);
            for (int i = 1; i <= 2; ++i) putf(line, 0, 20, 10);
            out.writeline(line);
        }
    out.close();
}

void writezeromeans(const state &s, int64 firstgen)
{
    outfile out;
    out.openandkeep(meanstable, 1 + (firstgen - 1) * s.traits.ntraits * s.qtn.nqtnmodels);
    textline line;
    for (int64 g = firstgen; g <= s.pop.ngen + s.pop.ngensel; ++g)
        for (int64 t = 1; t <= s.traits.ntraits; ++t)
            for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
                for (const int64 key : {g, p, t}) puti(line, key, 20);
                putf(line, 0, 20, 10);
                out.writeline(line);
            }
    out.close();
}

void writezerocoancestries(const state &s)
{
    for (int64 c = 1; c <= s.pop.ngensel; ++c) writecoancestry(s, c, {});
}
} // namespace

void makemergedbinarydirectories(const state &s, const mergeplan &plan)
{
    array1<int64> genarray, accumgenarray;
    calcindivsingen(generationtable, genarray, accumgenarray);
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        for (int64 l = 1; l <= genarray.size(); ++l)
            mergegenomes(plan, h, l, s.sites.nsegreginclglobal(h) / lociperblock);
}

mergeplan planofdirectories(state &s, arrayscope &arrays, array1<pedigreeline> &ped)
{
    mergeplan plan = mergepedigree(s, mergereadpaths(s), ped);
    makechromarrays(s, arrays);
    checkmergefolders(s, plan);
    checkopenfiles(plan);
    return plan;
}

void mergedirectories(state &s)
{
    array1<pedigreeline> ped;
    arrayscope arrays;
    const mergeplan plan = planofdirectories(s, arrays, ped);
    copyfromburnin(plan.burninfolder);
    writewholepedigree(ped);
    writezerovariances(s, firstunknown(s, plan));
    writezeromeans(s, firstunknown(s, plan));
    if (s.selection.computeavercoancestryyes1no0 == 1) writezerocoancestries(s);
    mergerecords(s, plan);
    refreshcounts(s, plan);
    makemergedbinarydirectories(s, plan);
    removestalecopies(s);
}
