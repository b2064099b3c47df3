#include "merge/mergefolders.h"

#include "pedigree/pedigreefiles.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <cstdio>
#include <filesystem>

std::string inrunfolder(const std::string &folder, const std::string &path)
{
    return folder + "/" + (path.starts_with("./") ? path.substr(2) : path);
}

void calcindivsingen(const std::string &pathstr, array1<int64> &genarray,
                     array1<int64> &accumgenarray)
{
    const std::vector<generationcounts> generations = readgenerationcounts(pathstr);
    const int64 ngenerations = std::ssize(generations);
    if (ngenerations < 1) ioerror(pathstr, "holds no generation");
    genarray.allocate(ngenerations);
    accumgenarray.allocate(extent(0, ngenerations));
    for (int64 g = 1; g <= ngenerations; ++g) {
        genarray(g) = generations[static_cast<std::size_t>(g - 1)].nindiv;
        accumgenarray(g) = accumgenarray(g - 1) + genarray(g);
    }
}

sourcefolder readsourcefolder(const std::string &path)
{
    sourcefolder source;
    source.path = path;
    calcindivsingen(inrunfolder(path, generationtable), source.genarray, source.accumgenarray);
    return source;
}

void calculategenid(thing &onething, const array1<int64> &accumgenarray)
{
    onething.generation = 1;
    while (onething.id > accumgenarray(onething.generation)) ++onething.generation;
    onething.generationid = onething.id - accumgenarray(onething.generation - 1);
}

namespace
{
bool makemergefolder(const char *folder)
{
    std::error_code error;
    return std::filesystem::create_directory(folder, error);
}

void removemergefolder(const std::string &folder, const char *failureline)
{
    std::error_code error;
    if (!folderexists(folder)) return;
    std::filesystem::remove_all(folder, error);
    if (!error) return;
    if (failureline) printline(failureline);
    ioerror(folder, "what an earlier run left could not be removed: " + error.message());
}

void mustcopy(const std::string &command, const std::string &from)
{
    if (shellstatus(command) != 0) ioerror(from, "could not be copied into the working folder");
}
} // namespace

void copyfromburnin(const std::string &burninfolder)
{
    const std::string from = shellword(burninfolder);
    removemergefolder("SimulatedData", "failure : Solvanto :SimulatedData not deleted");
    makemergefolder("SimulatedData");
    mustcopy("cp -rf " + from + "/SimulatedData/* SimulatedData/.",
             burninfolder + "/SimulatedData");
    removemergefolder("Chromosomes", "failure : Solvanto: Chromosomes not deleted ");
    makemergefolder("Chromosomes");
    mustcopy("cp -rf " + from + "/Chromosomes .", burninfolder + "/Chromosomes");
    removemergefolder("Selection", nullptr);
    if (!makemergefolder("Selection")) {
        std::fprintf(stderr, "Copy in copyFromBurnIn has been unsuccessful\n"
                             "ERROR: the folder Selection could not be made\n");
        stopwithcode(900000);
    }
}

std::vector<listline> readlist(const std::string &path)
{
    std::vector<listline> lines;
    infile in(path);
    while (in.nextrecord())
        if (!trim(in.line()).empty())
            lines.push_back({in.linenumber(), std::string(trimright(in.line()))});
    if (lines.empty()) ioerror(path, "is empty: its first line names the folder to start from");
    return lines;
}

void checksamefolders(const std::string &list, int64 expected, int64 found, const std::string &what)
{
    if (expected == found) return;
    printline("ERROR: MergeFiles " + list + " should hold " + numbertext(expected) + " " + what +
              " by NumberOfMergeRuns, and holds " + numbertext(found));
    stopwithcode(48);
}
