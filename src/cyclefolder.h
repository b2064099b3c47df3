// cyclefolder.h - names of what lies in the folder of a selection cycle.
#pragma once

#include "state.h"
#include "words.h"

#include <string>

// Folder of a selection cycle: "./Selection/SelectionFolder<c>/".
inline std::string cyclefolder(int64 selectioncycle)
{
    return "./Selection/SelectionFolder" + numbertext(selectioncycle) + "/";
}

// What file names of a trait carry where there are several traits: "Trait<t>", otherwise nothing.
inline std::string traitsuffix(const state &s, int64 selectedtrait)
{
    return s.traits.ntraits > 1 ? "Trait" + numbertext(selectedtrait) : "";
}

// Whether earlier SNP solutions give the estimates of a cycle, so that no prediction runs:
// training data fixed at an earlier cycle, or solutions from outside.
inline bool istrainingfixed(const state &s, int64 selectioncycle)
{
    return s.selection.fixtraindataonoff && selectioncycle > 1;
}
inline bool aresolutionsinforce(const state &s, int64 selectioncycle)
{
    return istrainingfixed(s, selectioncycle) || s.selection.externsolonoff;
}

// Loci of the selection files: SNPs of the selection chip, with the QTN behind them if added.
inline bool areqtnadded(const state &s)
{
    return s.chips.usesnpchiponoff && s.selection.addqtntosnpchip == 1;
}

// First generation of the training pedigree: some generations before the training data.
inline int64 firstpedigreegen(const state &s)
{
    return std::max<int64>(s.cycle.firsttmptraingen - s.selection.ngenpedpriortrain, 1);
}
