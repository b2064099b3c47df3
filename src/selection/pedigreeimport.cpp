#include "selection/pedigreeimport.h"

#include "cyclefolder.h"
#include "pedigree/pedigree.h"
#include "stops.h"
#include "textlayout.h"

std::string importedpedigree(int64 selectioncycle)
{
    return cyclefolder(selectioncycle) + "ExternalPedigree.txt";
}

void readexternalpedigree(state &s, int64 selectioncycle, int64 currentgen)
{
    const int64 endtestindiv = s.cycle.endtestindiv;
    infile in(importedpedigree(selectioncycle));
    int64 indivpos = endtestindiv, nothers = 0, firstline = 0;
    for (int64 k = 1; k <= s.pedi.nindivinthisgen(currentgen); ++k) {
        ++indivpos;
        in.record();
        const int64 oldglobalid = in.integer();
        const int64 newsire = in.integer();
        const int64 newdam = in.integer();
        if (newsire < 1 || newsire > endtestindiv || newdam < 1 || newdam > endtestindiv) {
            printfree("ERROR: ExternalPedigree.txt must name two parents of earlier generations "
                      "for individual",
                      indivpos);
            stopwithcode(110015);
        }
        if (oldglobalid != indivpos && nothers++ == 0) firstline = in.linenumber();
        initline(s.pedi.ped(indivpos), oldglobalid, oldglobalid, newsire, newdam, currentgen);
    }
    if (nothers > 0)
        warn(s.options, importedpedigree(selectioncycle), firstline,
             "the number is not the next one of the pedigree (" + numbertext(nothers) +
                 " such lines): later files name the individual by it, and prediction programs "
                 "won't find its genotypes. Number the generation on behind the one before");
}

void importexternalpedforcurrentselgen(state &s, int64 selectioncycle, int64 currentgen)
{
    if (s.run.importstage == 1) {
        printline("  You must now create an external pedigree file for the current selection "
                  "generation");
        printline("  Name this file ExternalPedigree.txt and store it in the current selection "
                  "folder");
        return;
    }
    readexternalpedigree(s, selectioncycle, currentgen);
    printline(" External pedigree successfully imported");
}
