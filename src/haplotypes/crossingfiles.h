// crossingfiles.h - the files that tell where gametes crossed over, and how often.
//
//   RecombinationTracking.txt of the chromosome: two lines per individual, for the gamete from the
//       sire and from the dam, I20,I4,I10,nI20: newid; strand on which the gamete begins; number n
//       of crossings; the last site before each
//   SimulatedData/RecombinationCount.txt: one free-form line per individual: individual, crossings
//       in its gametes from sire and dam, summed over the chromosomes dropped so far
//   SimulatedData/GlobalRecombLocationMax.txt: one free-form line per chromosome: chromosome,
//       highest crossing site met so far
// The first two grow generation by generation.
#pragma once

#include "files.h"
#include "state.h"

#include <string>

constexpr const char *recombinationcounts = "SimulatedData/RecombinationCount.txt";
constexpr const char *highestcrossingsfile = "./SimulatedData/GlobalRecombLocationMax.txt";
inline std::string trackingfile(int64 chrom)
{
    return chromfolder(chrom) + "RecombinationTracking.txt";
}

// The first two files of a drop.
class crossingfiles
{
  public:
    // Opens them to go on behind the lines of the individuals before one.
    //   newidbefore  number of the last of these in the pedigree
    void open(int64 chrom, int64 firstindiv, int64 newidbefore, filemarks &marks);
    // The line of one gamete.
    //   locations  the last sites before its ncrossings crossings
    void writegamete(int64 newid, int64 strand, int64 ncrossings, const array1<int64> &locations);
    void writecounts(int64 individ, int64 fromsire, int64 fromdam);
    void close();

  private:
    outfile tracking, counts;
    textline line;
};

// Fills rows 1 to n of recombcount.
void readrecombcounts(state &s, int64 n);

// The highest crossing sites of nchrom chromosomes, of this run or another.
array1<int64> readhighestcrossings(int64 nchrom, const std::string &path = highestcrossingsfile);
// Writes those of chromosomes 1 to nchrom.
void writehighestcrossings(const array1<int64> &highest, int64 nchrom);
