#include "solvanto.h"

#include "shell.h"
#include "textlayout.h"
#include "words.h"

#include <ctime>

void titles()
{
    const std::string margin(30, ' ');
    const auto framed = [&](const char *text, bool trailing) {
        printline(margin + text + (trailing ? margin : ""));
    };
    printline("");
    framed("**********************", true);
    framed("*                    *", true);
    framed("*      Solvanto      *", true);
    framed("*                    *", true);
    framed("**********************", false);
    framed("VERSION:commit-7e40c1d", true);
    printfree(
        "              Software for simulating phenotype, sequence, and SNP data               ");
    printline("");
    printfree("                                    No Liability              ");
    printline("");
}

void makedirectories(const state &s)
{
    const auto remove = [](const char *folder) {
        if (folderexists(folder)) runshell(std::string("rm -r ") + folder, "MakeDirectories");
    };
    remove("Chromosomes");
    runshell("mkdir Chromosomes", "MakeDirectories");
    for (int64 i = 1; i <= s.founders.nchrom; ++i)
        runshell("mkdir Chromosomes/Chromosome" + numbertext(i), "MakeDirectories");
    remove("SimulatedData");
    runshell("mkdir SimulatedData", "MakeDirectories D");
    remove("Selection");
    runshell("mkdir Selection", "MakeDirectories");
}

namespace
{
float cpuseconds()
{
    return static_cast<float>(static_cast<double>(std::clock()) / CLOCKS_PER_SEC);
}

void printtiming(float seconds)
{
    printline("");
    textline line = "  Time duration of Solvanto = ";
    putf(line, seconds, 20, 4);
    printline(line + " seconds.");
    printline("");
}
} // namespace

void deallocatearraysfromspecfileread(state &s)
{
    s.pop.cumindivnbtogen.release();
    s.pop.nindivinthisgen.release();
    s.pop.createdhinthisgen.release();
    s.pop.nsireinthisgen.release();
    s.pop.ndaminthisgen.release();
    s.pop.nrandparinthisgen.release();
    s.pop.nselfedparinthisgen.release();
    s.chips.nsnpperchipperchrom.release();
    s.editing.idofgenomeeditinds.release();
    s.editing.genomeeditqtnpos.release();
    s.editing.genomeeditqtnchrom.release();
    s.editing.genomeeditqtnposneg.release();
    s.editing.genedriveqtnpresence.release();
    s.traits.indexwt.release();
    s.traits.herit.release();
    s.traits.coraspec.release();
    s.traits.core.release();
    s.traits.covaspec.release();
    s.traits.cove.release();
    s.traits.cholcovaspec.release();
    s.traits.cholcove.release();
}

void solvanto(state &s)
{
    const float start = cpuseconds();
    titles();
    initiateseed(s.random);
    deallocatearraysfromspecfileread(s);
    printtiming(cpuseconds() - start);
}
