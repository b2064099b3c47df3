#include "tidy/leavings.h"

#include "cyclefolder.h"
#include "evaluation/predictionruns.h"
#include "evaluation/relationshipruns.h"
#include "evaluation/selectionchip.h"
#include "evaluation/trainingdata.h"
#include "folders.h"
#include "founders/mutationslots.h"
#include "founders/simulatedsites.h"
#include "founders/stores.h"
#include "haplotypes/burningeneration.h"
#include "haplotypes/crossingfiles.h"
#include "haplotypes/founderblocks.h"
#include "haplotypes/genomefiles.h"
#include "markers/extraction.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "shell.h"
#include "stops.h"
#include "values/qtngenotypes.h"

#include <algorithm>
#include <filesystem>
#include <fnmatch.h>

namespace
{
// Any chromosome, generation, cycle, trait or chip: its digits become a star.
constexpr int64 any = 1;
} // namespace

std::string patternof(const std::string &path)
{
    std::string pattern;
    for (const char c : path.starts_with("./") ? path.substr(2) : path) {
        if (c < '0' || c > '9')
            pattern += c;
        else if (pattern.empty() || pattern.back() != '*')
            pattern += '*';
    }
    return pattern;
}

namespace
{
void add(std::vector<leaving> &table, leavingkind kind, const std::vector<std::string> &paths,
         const std::string &folder = "")
{
    for (const std::string &path : paths) table.push_back({kind, patternof(folder + path)});
}

void addfounders(std::vector<leaving> &table)
{
    add(table, leavingkind::founders, {"macs", "Vintrecaskelle", macsoutput, macsmessages},
        chromfolder(any));
    add(table, leavingkind::founders,
        {simulatedmapfile(any), uncompressedmapfile(any), compressedmapfile(any),
         founderhaplotypesfile(any), includedhaplotypesfile(any)});
}

// The text that the programs are given, and what only the cycle itself reads of what they leave.
void addcycle(std::vector<leaving> &table)
{
    const runsettings settings;
    const state s(settings);
    add(table, leavingkind::cycle,
        {traininggenotypes(s), trainingphases(s), testgenotypes(s), scaledgenotypes(s, 1),
         scaledgenotypes(s, 2), lastgenotypes(s), testqtngenotypes, lastqtngenotypes,
         trainingpedigree(any), relationshipmatrix, "Quillomere", "QuillomereP", "Brenvask",
         "Corvalind"},
        cyclefolder(any));
}

void addresults(std::vector<leaving> &table)
{
    for (const std::string &path :
         {sequencegenotypefileof(any, any), sequencephasefileof(any, any)})
        add(table, leavingkind::results, {path, path + ".gz"});
}

void addpacked(std::vector<leaving> &table)
{
    add(table, leavingkind::packed,
        {chipphasefile(any), chipgenotypefile(any), sequencephasefile, sequencegenotypefile,
         sequencemapfile});
    for (const qtnset set : qtnsets) add(table, leavingkind::packed, {qtngenotypefile(set)});
    std::vector<siteset> sets{siteset(any)};
    sets.insert(sets.end(), std::begin(qtnsets), std::end(qtnsets));
    for (const siteset of : sets)
        add(table, leavingkind::packed, {phasefile(any, of, any), genotypefile(any, of, any)});
}

void adddropped(std::vector<leaving> &table)
{
    add(table, leavingkind::dropped,
        {genomefile(any, any), haplotypeblocksfile(any), trackingfile(any), basetrackingfile(any),
         carriersfile(any), includedmapfile(any), minorfrequencyfile(any)});
}
} // namespace

std::vector<leaving> leavingstable()
{
    std::vector<leaving> table;
    addfounders(table);
    addcycle(table);
    addresults(table);
    addpacked(table);
    adddropped(table);
    return table;
}

void printleavings()
{
    for (const leaving &row : leavingstable()) {
        const char *const word = row.kind == leavingkind::packed    ? "pack "
                                 : row.kind == leavingkind::dropped ? "drop "
                                                                    : "remove ";
        printline(word + row.pattern);
    }
}

namespace
{
// Paths that a pattern means, folder by folder: glob of the C library frees what it doesn't have when
// it is short of memory.
std::vector<std::string> matching(const std::string &pattern)
{
    std::vector<std::string> paths = {""};
    for (std::size_t begin = 0, end = 0; end != pattern.npos; begin = end + 1) {
        end = pattern.find('/', begin);
        const std::string part = pattern.substr(begin, end - begin);
        std::vector<std::string> longer;
        for (const std::string &folder : paths) {
            std::vector<std::string> names; // none where there is no such folder
            readfolder(folder.empty() ? "." : folder, names);
            for (const std::string &name : names)
                if (fnmatch(part.c_str(), name.c_str(), FNM_PERIOD) == 0)
                    longer.push_back(folder + name + (end == pattern.npos ? "" : "/"));
        }
        paths = std::move(longer);
    }
    return paths;
}
} // namespace

void removeleavings(const runoptions &options, leavingkind kind)
{
    for (const leaving &row : leavingstable()) {
        if (row.kind != kind) continue;
        for (const std::string &path : matching(row.pattern)) {
            std::error_code error;
            std::filesystem::remove(path, error);
            if (error) warn(options, path, 0, "not removed: " + error.message());
        }
    }
}

void stopifpacked(const state &s)
{
    const std::vector<std::string> sequence = {
        patternof(sequencephasefile), patternof(sequencegenotypefile), patternof(sequencemapfile)};
    for (const leaving &row : leavingstable()) {
        if (row.kind != leavingkind::packed) continue;
        if (!s.run.fullseqoutonoff && std::ranges::count(sequence, row.pattern) > 0) continue;
        for (const std::string &packed : matching(row.pattern + ".gz")) {
            const std::string path = packed.substr(0, packed.size() - 3);
            if (!pathexists(path))
                ioerror(path, "was packed, and a run that goes on wants it as plain text: unpack " +
                                  packed + " and all others (scripts/tidy FOLDER --unpack)");
        }
    }
}
