#include "merge/mergerecords.h"

#include "allelerows.h"
#include "flibs/fileregistry.h"
#include "haplotypes/crossingfiles.h"
#include "haplotypes/genomefiles.h"
#include "markers/sitesets.h"
#include "pedigree/pedigreefiles.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "stops.h"
#include "values/phenotypes.h"
#include "values/qtngenotypes.h"
#include "values/recombtrait.h"
#include "words.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <span>

// ------------------------------------------------------- which files there are

namespace
{
individualfile allelefile(const std::string &path, int64 linesperindiv, int64 n)
{
    return {path, recordform::rest, 0, linesperindiv, allelerowlength(n)};
}

int64 sumof(const array1<int64> &values)
{
    return std::accumulate(values.begin(), values.end(), int64{0});
}

} // namespace

std::vector<individualfile> wholerunfiles(const state &s)
{
    const int64 nvalues = 3 * s.qtn.nqtnmodels * s.traits.ntraits;
    std::vector<individualfile> files{
        {gendertable, recordform::gender, 1, 1, genderlinelength},
        {recombinationcounts, recordform::counts, 0, 1, 0},
        {valuetable, recordform::values, 1, 1, 4 * 10 + 20 * nvalues + 1}};
    if (s.selection.recombselonoff)
        files.push_back({recombinationtable, recordform::values, 1, 1, 4 * 10 + 5 * 20 + 1});
    for (const qtnset set : setsinuse(s))
        files.push_back(allelefile(qtngenotypefile(set), 1, nsitesintotal(s, set)));
    for (int64 e = 1; e <= s.chips.nchip; ++e) {
        const int64 nsnp = nsitesintotal(s, siteset(e));
        files.push_back(allelefile(chipgenotypefile(e), 1, nsnp));
        files.push_back(allelefile(chipphasefile(e), 2, nsnp));
    }
    if (s.run.fullseqoutonoff) {
        const int64 nsites = sumof(s.sites.nsegreginclglobal);
        files.push_back({sequencegenotypefile, recordform::rest, 1, 1, allelerowlength(nsites)});
        files.push_back({sequencephasefile, recordform::rest, 1, 2, allelerowlength(nsites)});
    }
    return files;
}

std::vector<individualfile> chromosomefiles(const state &, int64 chrom)
{
    return {{trackingfile(chrom), recordform::rest, 0, 2, 0}};
}

std::vector<individualfile> generationfiles(const state &s, int64 chrom)
{
    std::vector<individualfile> files;
    for (const siteset of : sitesetsinuse(s)) {
        const std::string name = chromfolder(chrom) + nameofsites(of);
        const int64 n = nsitesonchrom(s, of, chrom);
        files.push_back(allelefile(name + "GenotypeGeneration", 1, n));
        files.push_back(allelefile(name + "PhaseGeneration", 2, n));
    }
    return files;
}

std::string ofgeneration(const individualfile &file, int64 gen)
{
    return file.path + numbertext(gen) + ".txt";
}

int64 filesneeded(const mergeplan &plan)
{
    std::map<int64, std::set<std::pair<int64, int64>>> ofgeneration; // merged generation: sources
    std::set<int64> folders;
    for (const thing &t : plan.things) {
        ofgeneration[t.newgeneration].insert({t.folder, t.generation});
        folders.insert(t.folder);
    }
    std::size_t most = folders.size();
    for (const auto &[gen, sources] : ofgeneration) most = std::max(most, sources.size());
    return static_cast<int64>(most) + 1;
}

// ------------------------------------------------------- copying records

namespace
{
[[noreturn]] void otherrecord(const std::string &path, int64 linenumber, int64 id)
{
    ioerror(path, "line " + numbertext(linenumber) + " is not that of individual " +
                      numbertext(id) + ", which stands there by the numbers of the folder");
}

// The integer in columns first to first + width - 1, from 0.
int64 integerin(std::string_view line, std::size_t first, std::size_t width)
{
    int64 value = -1;
    if (line.size() >= first + width) readinteger(trim(line.substr(first, width)), value);
    return value;
}

// Reads the individual's number off a record, and puts the record's new form.
//   number  out  as found, -1 for none
void putrecord(textline &out, std::string_view line, recordform form, const thing &t, int64 &number)
{
    const auto putrest = [&](std::size_t from) {
        if (line.size() > from) out += trimright(line.substr(from));
    };
    switch (form) {
    case recordform::gender:
        number = integerin(line, 20, 20);
        for (const int64 value : {t.newgeneration, t.newid, integerin(line, 40, 20)})
            puti(out, value, 20);
        break;
    case recordform::counts: {
        int64 values[3] = {-1, 0, 0};
        std::size_t at = 0;
        for (int64 &value : values) {
            const std::size_t first = std::min(line.find_first_not_of(" \t,", at), line.size());
            at = std::min(line.find_first_of(" \t,", first), line.size());
            if (!readinteger(line.substr(first, at - first), value)) values[0] = -1;
        }
        number = values[0];
        for (const int64 value : {t.newid, values[1], values[2]}) puti(out, value, 20);
        break;
    }
    case recordform::values:
        number = integerin(line, 10, 10);
        for (const int64 key : {t.newgeneration, t.newid, t.newsire, t.newdam}) puti(out, key, 10);
        putrest(40);
        break;
    case recordform::rest:
        number = integerin(line, 0, 20);
        puti(out, t.newid, 20);
        putrest(20);
        break;
    }
}

// The first lines of a file that is to be written anew.
std::vector<std::string> readtitle(const std::string &path, int64 nlines)
{
    std::vector<std::string> title;
    if (nlines == 0) return title;
    infile in(path);
    while (static_cast<int64>(title.size()) < nlines) {
        in.record();
        title.emplace_back(in.line());
    }
    return title;
}

// Where an individual's record lies.
struct recordplace {
    std::string path;
    int64 record = 0; // from 1
};

// Writes one file of the working folder; place(thing) tells where the records come from.
template <class T>
void copyrecords(fileregistry &registry, const individualfile &file, const std::string &to,
                 std::span<const thing> things, const T &place)
{
    const std::vector<std::string> title = readtitle(to, file.titlelines);
    openfile(registry, to, filestatus::replace);
    for (const std::string &line : title) outputof(registry, to).writeline(textline(line));
    std::vector<std::string> opened{to};
    textline line;
    for (const thing &t : things) {
        const recordplace from = place(t);
        if (!isopenfile(registry, from.path)) {
            openfile(registry, from.path, filestatus::old);
            opened.push_back(from.path);
        }
        for (int64 l = 1; l <= file.linesperindiv; ++l) {
            const int64 number = file.titlelines + (from.record - 1) * file.linesperindiv + l;
            int64 id;
            putrecord(line, inputof(registry, from.path).line(number), file.form, t, id);
            if (id != t.id) otherrecord(from.path, number, t.id);
            outputof(registry, to).writeline(line);
        }
    }
    for (const std::string &path : opened) closefile(registry, path);
    closedict(registry);
}

// The merged generations, one after the other.
std::vector<std::span<const thing>> bygeneration(const mergeplan &plan)
{
    std::vector<std::span<const thing>> generations;
    for (auto first = plan.things.begin(); first != plan.things.end();) {
        const auto last = std::find_if(first, plan.things.end(), [&](const thing &t) {
            return t.newgeneration != first->newgeneration;
        });
        generations.emplace_back(first, last);
        first = last;
    }
    return generations;
}
} // namespace

void mergerecords(const state &s, const mergeplan &plan)
{
    fileregistry registry;
    const auto copyallgenerations = [&](const individualfile &file) {
        copyrecords(registry, file, file.path, plan.things, [&](const thing &t) {
            return recordplace{inrunfolder(plan.sourceof(t).path, file.path), t.id};
        });
    };
    for (const individualfile &file : wholerunfiles(s)) copyallgenerations(file);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        for (const individualfile &file : chromosomefiles(s, h)) copyallgenerations(file);
        for (const individualfile &file : generationfiles(s, h))
            for (const std::span<const thing> generation : bygeneration(plan)) {
                const std::string to = ofgeneration(file, generation.front().newgeneration);
                copyrecords(registry, file, to, generation, [&](const thing &t) {
                    return recordplace{
                        inrunfolder(plan.sourceof(t).path, ofgeneration(file, t.generation)),
                        t.generationid};
                });
            }
    }
}

// ------------------------------------------------------- genomes

void mergegenomes(const mergeplan &plan, int64 chrom, int64 newgeneration, int64 nblock)
{
    // Places in the merged generation, by the source file; each is read once.
    std::map<std::pair<int64, int64>, std::vector<const thing *>> bysource;
    int64 firstid = 0, nindividuals = 0;
    for (const thing &t : plan.things) {
        if (t.newgeneration != newgeneration) continue;
        if (nindividuals++ == 0) firstid = t.newid;
        bysource[{t.folder, t.generation}].push_back(&t);
    }
    genomestore newgenome, part;
    newgenome.allocate(nindividuals, nblock);
    for (const auto &[source, things] : bysource) {
        const sourcefolder &folder = plan.sourceof(*things.front());
        array1<int64> rows(static_cast<int64>(things.size()));
        for (int64 r = 1; r <= rows.size(); ++r)
            rows(r) = things[static_cast<std::size_t>(r - 1)]->generationid;
        part.allocate(rows.size(), nblock);
        readgenomerows(inrunfolder(folder.path, genomefile(chrom, source.second)),
                       folder.genarray(source.second), nblock, rows, part, 1);
        for (int64 r = 1; r <= rows.size(); ++r)
            for (int64 m = 1; m <= 2; ++m)
                std::copy_n(part.gamete(r, m), nblock,
                            newgenome.gamete(
                                things[static_cast<std::size_t>(r - 1)]->newid - firstid + 1, m));
    }
    writegenome(genomefile(chrom, newgeneration), newgenome);
}
