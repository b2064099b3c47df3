#include "merge/mergechecks.h"

#include "flibs/fileregistry.h"
#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "haplotypes/crossingfiles.h"
#include "haplotypes/genomefiles.h"
#include "markers/sitesets.h"
#include "pedigree/pedigree.h"
#include "results/snpchips.h"
#include "shell.h"
#include "stops.h"
#include "traits/covariances.h"
#include "traits/effectfiles.h"
#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "words.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sys/resource.h>

namespace fs = std::filesystem;

namespace
{
[[noreturn]] void mismatch(const std::string &where, const std::string &what, int64 found,
                           int64 expected)
{
    ioerror(where, "holds " + numbertext(found) + " " + what + " where " + numbertext(expected) +
                       " are expected");
}

void checkfile(const std::string &path)
{
    if (pathexists(path)) return;
    if (pathexists(path + ".gz"))
        ioerror(path, "was compressed by the run: uncompress " + path + ".gz");
    ioerror(path, "is missing, and the merge needs it");
}
} // namespace

void checkfolder(const std::string &folder)
{
    if (!folderexists(folder)) ioerror(folder, "is no folder");
    for (const char *own : {"SimulatedData", "Chromosomes", "Selection"}) {
        std::error_code error;
        if (fs::equivalent(folder + "/" + own, own, error))
            ioerror(folder, "is the working folder, whose files the merge replaces; run it in "
                            "another folder");
    }
}

// ------------------------------------------------------- numbers and sites of a folder

namespace
{
void checkchromosomes(const state &s, const std::string &folder)
{
    const int64 nchrom = s.founders.nchrom;
    for (int64 h = 1; h <= nchrom; ++h)
        if (!folderexists(chromfolder(h, folder)))
            ioerror(chromfolder(h, folder),
                    "is missing; the specification has " + numbertext(nchrom) +
                        " chromosomes, and runs whose folders are merged keep theirs");
    if (folderexists(chromfolder(nchrom + 1, folder)))
        ioerror(chromfolder(nchrom + 1, folder),
                "is there, though the specification has " + numbertext(nchrom) + " chromosomes");
}

// The columns of the store of numbers: QTN, mutations, and a number for each chip.
void checknumberofchips(const state &s, int64 chrom, const std::string &folder)
{
    const std::string path = sitenumbersfile(chrom, folder);
    infile in(path);
    in.record();
    int64 nchip = -2;
    for (std::string_view left = trim(in.line()); !left.empty(); ++nchip)
        left = trim(left.substr(std::min(left.find(' '), left.size())));
    if (nchip != s.chips.nchip) mismatch(path, "chips", nchip, s.chips.nchip);
}

void checknumbers(const state &s, int64 chrom, const std::string &folder)
{
    const std::string where = chromfolder(chrom, folder);
    const auto check = [&](const std::string &what, int64 found, int64 expected) {
        if (found != expected) mismatch(where, what, found, expected);
    };
    check("QTN besides mutations", s.loci.nqtnonthischrom(chrom) - s.sites.nmutinclglobal(chrom),
          s.qtn.nqtnperchrom);
    if (s.selection.recombselonoff)
        check("recombination QTN", s.loci.nqtnrecombonthischrom(chrom), s.qtn.nqtnrecombperchrom);
    for (int64 e = 1; e <= s.chips.nchip; ++e)
        check("SNP of chip " + numbertext(e), s.loci.nsnponthischipchrom(e, chrom),
              s.chips.usesnpchiponoff ? s.chips.nsnpperchipperchrom(e) : 1);
}

// Sites of all chips and QTN sets, chromosome by chromosome, by the files that tell them.
using sitesbyfile = std::map<std::string, sitelist>;

sitesbyfile readfoldersites(const state &s, const std::string &folder)
{
    sitesbyfile sites;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        for (const siteset of : sitesetsinuse(s)) {
            const std::string path = informationfile(h, of);
            sites[path] = readsites(inrunfolder(folder, path), nsitesonchrom(s, of, h),
                                    s.sites.nsegreginclglobal(h));
        }
    return sites;
}

// Reads the folder's stores into the state, and checks the numbers in them.
sitesbyfile checksites(state &s, const std::string &folder)
{
    checkfolder(folder);
    checkchromosomes(s, folder);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) checknumberofchips(s, h, folder);
    readsegsitesdatafromallchrom(s, folder);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) checknumbers(s, h, folder);
    return readfoldersites(s, folder);
}

void checksamesites(const sitesbyfile &ofburnin, const sitesbyfile &ofsource, const mergeplan &plan,
                    const std::string &folder)
{
    for (const auto &[path, sites] : ofsource)
        if (ofburnin.at(path) != sites)
            ioerror(inrunfolder(folder, path), "names other sites than that of " +
                                                   plan.burninfolder +
                                                   ": merged runs share their founders");
}

// ------------------------------------------------------- records

// Bytes of the first lines, line ends included, and of the line behind them.
void measurelines(const std::string &path, int64 titlelines, int64 &titlelength, int64 &linelength)
{
    infile in(path);
    titlelength = 0;
    for (int64 l = 1; l <= titlelines; ++l) {
        in.record();
        titlelength += static_cast<int64>(in.line().size()) + 1;
    }
    linelength = in.nextrecord() ? static_cast<int64>(in.line().size()) + 1 : 0;
}

} // namespace

void checkrecords(const individualfile &file, const std::string &path, int64 n)
{
    checkfile(path);
    const int64 nlines = n * file.linesperindiv;
    if (file.linelength == 0) {
        const int64 found = countlines(path);
        if (found < nlines) mismatch(path, "lines", found, nlines);
        return;
    }
    int64 titlelength, linelength;
    measurelines(path, file.titlelines, titlelength, linelength);
    if (n > 0 && linelength != file.linelength)
        mismatch(path, "characters in a line", linelength - 1, file.linelength - 1);
    const int64 found = (static_cast<int64>(fs::file_size(path)) - titlelength) / file.linelength;
    if (found < nlines) mismatch(path, "lines of individuals", found, nlines);
}

namespace
{
// What is taken from a source folder.
struct takenrecords {
    int64 lastid = 0;
    std::set<int64> generations;
};

takenrecords takenfrom(const mergeplan &plan, int64 folder)
{
    takenrecords taken;
    for (const thing &t : plan.things) {
        if (t.folder != folder) continue;
        taken.lastid = std::max(taken.lastid, t.id);
        taken.generations.insert(t.generation);
    }
    return taken;
}

} // namespace

void checkgenome(const std::string &path, int64 nindiv, int64 nblock)
{
    checkfile(path);
    const int64 nbytes = framereader(path).recordlength(), expected = nindiv * 2 * 8 * nblock;
    if (nbytes != expected)
        ioerror(path, "holds a record of " + numbertext(nbytes) + " bytes where " +
                          numbertext(nindiv) + " individuals with " + numbertext(nblock) +
                          " blocks of sites take " + numbertext(expected));
}

namespace
{
void checksource(const state &s, const sourcefolder &source, const takenrecords &taken)
{
    const auto check = [&](const individualfile &file, const std::string &path, int64 n) {
        checkrecords(file, inrunfolder(source.path, path), n);
    };
    for (const individualfile &file : wholerunfiles(s)) check(file, file.path, taken.lastid);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        for (const individualfile &file : chromosomefiles(s, h))
            check(file, file.path, taken.lastid);
        for (const int64 g : taken.generations) {
            for (const individualfile &file : generationfiles(s, h))
                check(file, ofgeneration(file, g), source.genarray(g));
            checkgenome(inrunfolder(source.path, genomefile(h, g)), source.genarray(g),
                        s.sites.nsegreginclglobal(h) / lociperblock);
        }
    }
}

// ------------------------------------------------------- the burn-in folder

// Lines of one generation of a file that grows by generation.
void checkfirstgeneration(const std::string &path, int64 nlines)
{
    checkfile(path);
    const int64 found = countlines(path) - 1;
    if (found < nlines) mismatch(path, "lines of generations", found, nlines);
}

// What later runs read besides the records of individuals.
void checkburnin(const state &s, const std::string &folder)
{
    const auto inside = [&](const std::string &path) { return inrunfolder(folder, path); };
    checkfirstgeneration(inside(variancetable), s.qtn.nqtnmodels);
    checkfirstgeneration(inside(meanstable), s.qtn.nqtnmodels * s.traits.ntraits);
    checkfile(inside(highestcrossingsfile));
    std::vector<std::string> paths = effectfilesof(s);
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) paths.push_back(residualfactorfile(p));
    for (int64 e = 1; e <= s.chips.nchip; ++e) paths.push_back(snpinformationfile(e));
    for (const std::string &path : paths) checkfile(inside(path));
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        checkfile(includedmapfile(h, folder));
        checkfile(inside(haplotypeblocksfile(h)));
    }
    for (const individualfile &file : wholerunfiles(s)) checkrecords(file, inside(file.path), 0);
}
} // namespace

void checkmergefolders(state &s, const mergeplan &plan)
{
    const sitesbyfile ofburnin = checksites(s, plan.burninfolder);
    const array1<int64> nsegreginclglobal = s.sites.nsegreginclglobal;
    const array1<int64> nqtnonthischrom = s.loci.nqtnonthischrom;
    checkburnin(s, plan.burninfolder);
    std::set<std::string> checked{plan.burninfolder};
    for (int64 f = 1; f <= static_cast<int64>(plan.sources.size()); ++f) {
        const sourcefolder &source = plan.sources[static_cast<std::size_t>(f - 1)];
        if (checked.insert(source.path).second) {
            const sitesbyfile ofsource = checksites(s, source.path);
            for (int64 h = 1; h <= s.founders.nchrom; ++h) {
                const std::string where = chromfolder(h, source.path);
                if (s.sites.nsegreginclglobal(h) != nsegreginclglobal(h))
                    mismatch(where, "included sites", s.sites.nsegreginclglobal(h),
                             nsegreginclglobal(h));
                if (s.loci.nqtnonthischrom(h) != nqtnonthischrom(h))
                    mismatch(where, "QTN", s.loci.nqtnonthischrom(h), nqtnonthischrom(h));
            }
            checksamesites(ofburnin, ofsource, plan, source.path);
        }
        checksource(s, source, takenfrom(plan, f));
    }
    readsegsitesdatafromallchrom(s, plan.burninfolder);
}

void checkopenfiles(const mergeplan &plan)
{
    const int64 nneeded = filesneeded(plan);
    if (nneeded > lastunitnumber - firstunitnumber + 1) {
        printline("error! Not enough units available. ");
        plainstop();
    }
    constexpr rlim_t others = 16; // standard streams, a genome, and what libraries hold
    const rlim_t wanted = static_cast<rlim_t>(nneeded) + others;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return;
    limit.rlim_cur = std::min(wanted, limit.rlim_max);
    if (limit.rlim_cur < wanted || setrlimit(RLIMIT_NOFILE, &limit) != 0)
        ioerror("MergeFiles", "the merge needs " + std::to_string(wanted) +
                                  " files open at a time, and the system allows " +
                                  std::to_string(limit.rlim_max) +
                                  "; raise its limit (ulimit -Hn)");
}
