// runmacs.h - the coalescent simulator and its formatter, run for each chromosome in series, or for
// as many at once as the run has processors (shell.h): what is left and told is the same.
//
// The working directory holds the executables macs and Vintrecaskelle and, with recombination
// hotspots on, RecombinationSpecifications/Chromosome<i>.txt for each chromosome: a line for each
// region, free-form: start, stop (relative to the chromosome), proportion of the chromosome's
// recombination.
//
// Left in Chromosomes/Chromosome<i>/:
//   macs, Vintrecaskelle       copies of the executables
//   output.txt, debug.txt      what macs wrote on standard output and standard error
//   Hotspots.txt               with hotspots on; a line per region, 3F12.8: start, stop, relative
//                              rate = proportion / (stop - start)
//   SegSites.txt, PhysicalMapInput.txt, MacsHaplotypes.txt   by the formatter
//   FinishedMacs.txt           copy of SegSites.txt, if the formatter went through
//   MaCSParametersUsed.txt     free-form: number of haplotypes, a blank, the parameter text
#pragma once

#include "founders/recombregions.h"
#include "shell.h"
#include "state.h"

#include <string>
#include <vector>

// The stage. A failing command prints "failure : Solvanto : " and RunMacs A (copy of macs),
// RunMacs B (copy of the formatter), RunMacsRewrite A (macs) or RunMacsRewrite B (formatter), and
// the stage goes on; the extraction of the sites then misses SegSites.txt.
//
// A simulator that takes its seed from the clock makes chromosomes alike that it begins in the
// same second: a chromosome with the seed and the number of sites of the one before is reported
// on standard error.
// Draws: none.
void runmacs(state &s);

// Runs both programs for one chromosome; where there are more processors, those of the chromosomes
// behind it go on meanwhile.
//   folder  in  the text of the command that changes to the chromosome's folder
void runmacshelper(state &s, const std::string &folder, int64 chrom, commandqueue &programs);

// The command that runs macs in the folder. All its blanks are part of the text: two stand behind
// the number of haplotypes, and two before the redirection when there is no hotspot file.
std::string macscommand(const std::string &folder, int64 nhaps, const std::string &macsparams,
                        bool hotspots);

// The recombination regions of a chromosome. Proportions that don't sum to exactly 1 are rescaled,
// with a warning.
// Stops: 110031 when a region does not start and stop behind the start and stop of the one
// before, or has no length.
std::vector<recombregion> regionsformacs(int64 chrom);
// Writes them to its Hotspots.txt.
void readrecombspecformacs(int64 chrom);
