#include "check/estimates.h"

#include "check/machinespeed.h"
#include "check/runfiles.h"
#include "check/runwork.h"
#include "founders/simulatedsites.h"
#include "textlayout.h"
#include "words.h"

#include <cmath>
#include <initializer_list>
#include <string>

namespace
{
// Three digits: "0.42 MB", "12.3 GB".
std::string inunits(double value, std::initializer_list<const char *> units)
{
    auto unit = units.begin();
    for (; value >= 999.5 && unit + 1 != units.end(); ++unit) value /= 1000;
    textline text;
    const int64 ndecimals = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    if (ndecimals == 0)
        puti(text, std::llround(value), 12);
    else
        putf(text, value, 12, ndecimals);
    return std::string(trim(text)) + " " + *unit;
}

std::string bytetext(double bytes)
{
    return inunits(bytes / 1e6, {"MB", "GB", "TB"});
}

std::string timetext(double seconds)
{
    if (seconds < 120) return inunits(seconds, {"s"});
    if (seconds < 7200) return inunits(seconds / 60, {"minutes"});
    return inunits(seconds / 3600, {"hours"});
}

void printentry(const std::string &name, const std::string &value, const std::string &basis)
{
    textline line = "   ";
    putleft(line, name, 16);
    puta(line, value, 12);
    printline(line + (basis.empty() ? "" : "  " + basis));
}

void printdisk(const state &s, const runfacts &facts)
{
    disksize all;
    for (const auto &[folder, size] : expecteddisk(s, facts)) {
        const bool shrinks = size.atend < 0.995 * size.atmost;
        printentry(folder, bytetext(size.atend),
                   shrinks ? "at the end, and up to " + bytetext(size.atmost) + " on the way" : "");
        all.atend += size.atend;
        all.atmost += size.atmost;
    }
    printentry("Disk", bytetext(all.atend),
               (all.atend < 0.995 * all.atmost
                    ? "at the end, and up to " + bytetext(all.atmost) + " on the way; "
                    : std::string()) +
                   "by the layouts of all files" +
                   (s.run.specstartgen == 1 && s.run.merging == mergekind::none
                        ? ", for the sites expected"
                        : ", with what stays of earlier runs"));
}

void printdraws(const runwork &work)
{
    const double share = work.draws / generatorperiod;
    textline percent;
    putf(percent, 100 * share, 12, 2);
    printentry("Random numbers", inunits(work.draws / 1e6, {"million", "billion"}),
               std::string(trim(percent)) +
                   " % of the generator's period of 2^31 - 2, mostly one for each block of 60 "
                   "sites of each gamete" +
                   (share > 1 ? ": THE STREAM BEGINS ANEW WITHIN THE RUN" : ""));
}
} // namespace

void printestimates(const state &s, const runfacts &facts)
{
    printline("");
    printline(" Estimates");
    printdisk(s, facts);
    const memorysize memory = expectedmemory(s, facts);
    printentry("Memory", bytetext(memory.own + memory.program),
               memory.program > 0 ? "at most: " + bytetext(memory.own) + " of solvanto and " +
                                        bytetext(memory.program) + " of a program beside it"
                                  : "at most, of solvanto");
    const runwork work = workofrun(s, facts);
    if (work.draws > 0) printdraws(work);
    printentry("Time", timetext(expectedseconds(work, measuremachine())),
               "by a short measurement of this machine as it is at present");
    if (work.draws > generatorperiod)
        warn(
            s.options, "", 0,
            "the run will take more random numbers than the generator has: from there on it "
            "repeats "
            "itself. Fewer sites (GenomeCompression), individuals or generations take fewer; so do "
            "several runs, each with a seed of its own");
}
