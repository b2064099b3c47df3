// simulatedsites.h - the simulated sites of a chromosome as the formatter leaves them, and their
// thinning by genome compression.
//
// Files of a chromosome:
//   SegSites.txt           number of sites, the first value of its one line; with compression in
//                          force replaced by nsegregcomp, free-form
//   PhysicalMapInput.txt   their positions, free-form
#pragma once

#include "arrayscope.h"
#include "state.h"

#include <string>

constexpr const char *segsitesname = "SegSites.txt";
inline std::string segsitesfile(int64 chrom)
{
    return chromfolder(chrom) + segsitesname;
}
inline std::string simulatedmapfile(int64 chrom)
{
    return chromfolder(chrom) + "PhysicalMapInput.txt";
}
// What the simulator wrote there on standard output and standard error.
constexpr const char *macsoutput = "output.txt", *macsmessages = "debug.txt";

// Whether sites are thinned.
inline bool compressioninforce(const state &s)
{
    return s.founders.genomecompressiononoff && s.founders.genomecompression < 100;
}

// Sets nsegregtmp from SegSites.txt, nmut, nsegreg, nblock, nsegregincl and nsegreginclglobal. With
// compression in force decides for each simulated site whether it survives (compressindicator), and
// sets nsegregtmpcomp and nsegregcomp.
// A chromosome without SegSites.txt, because macs or the formatter failed, is an I/O error.
// Draws: nsegregtmp if compression is in force.
void countsites(state &s, int64 chrom, arrayscope &arrays);

// The positions of the simulated sites go to their slots tmpwrk(1 to nsegregtmp) of allphysicalmap.
void readphysicalmap(state &s, int64 chrom);
