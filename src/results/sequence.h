// sequence.h - the sequence of the whole genome and of all generations as text, gathered from the
// binary files per chromosome and generation, and its compression.
//
// Files, totalsites the included sites of all chromosomes:
//   SimulatedData/FullSequencePhase.txt      first line I50: totalsites; then two lines per
//       individual, I20, totalsites items I2: individual, alleles of gamete 1, then of gamete 2
//   SimulatedData/FullSequenceGenotype.txt   the same, one line per individual: genotypes
//   SimulatedData/FullSequencePhysicalMapIncluded.txt   free-form: chromosome, site, position;
//       empty until the last generation of the simulation has been written
// Lines of earlier generations stay; what stands behind them is replaced.
#pragma once

#include "state.h"

constexpr const char *sequencephasefile = "./SimulatedData/FullSequencePhase.txt";
constexpr const char *sequencegenotypefile = "./SimulatedData/FullSequenceGenotype.txt";
constexpr const char *sequencemapfile = "./SimulatedData/FullSequencePhysicalMapIncluded.txt";

// Gathers generations firsttmpgen to lasttmpgen. Draws, stops: none. A file that is missing, too
// short or malformed is an I/O error. The files of one generation are open at a time.
void writeoutsequence(state &s, int64 firsttmpgen, int64 lasttmpgen);

// Compresses the binary files of the generations, and after the last generation of the
// simulation the text files and the chip data. The text files before that stay as they are, since
// a later run extends them. A command that fails is reported, and the next one runs.
void zipsequenceoutputfiles(state &s, int64 firsttmpgen, int64 lasttmpgen);
