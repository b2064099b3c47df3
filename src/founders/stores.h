// stores.h - the stores of the founder sites: files in the folder of each chromosome, written and
// read here alone.
//
// The extraction of the sites leaves its results in them and frees its arrays. Every later stage
// makes the arrays that it needs anew and fills them here. A missing file, a value that can't be
// read or one that has no place in the arrays is an I/O error.
//
//   SegSitesIncluded.txt        nsegregincl, free-form
//   PhysicalMapIncluded.txt     rows i = 1 to nsegregincl, 2I10,F20.10,2I10: i, slot, position,
//                               mutation indicator, carrier (0 if none)
//   MutDeNovoInfo.txt           a row per included mutation, 5I20: the members of denovomutation. A
//                               merge adds rows for further carriers of a mutation
//   MutIndivIndicator.txt       a row per individual, 2I10: individual, 1 if it carries a mutation
//   NbOfQtnMutationsAndSnp.txt  I20 each: QTN, included mutations, markers of each chip; with
//                               recombselonoff on a second row, for the recombination QTN
#pragma once

#include "arrayscope.h"
#include "state.h"

#include <numeric>
#include <string>
#include <vector>

inline std::string sitesincludedfile(int64 chrom, const std::string &runfolder = ".")
{
    return chromfolder(chrom, runfolder) + "SegSitesIncluded.txt";
}
inline std::string includedmapfile(int64 chrom, const std::string &runfolder = ".")
{
    return chromfolder(chrom, runfolder) + "PhysicalMapIncluded.txt";
}
inline std::string mutationsfile(int64 chrom, const std::string &runfolder = ".")
{
    return chromfolder(chrom, runfolder) + "MutDeNovoInfo.txt";
}
inline std::string carriersfile(int64 chrom, const std::string &runfolder = ".")
{
    return chromfolder(chrom, runfolder) + "MutIndivIndicator.txt";
}
inline std::string sitenumbersfile(int64 chrom, const std::string &runfolder = ".")
{
    return chromfolder(chrom, runfolder) + "NbOfQtnMutationsAndSnp.txt";
}

// Sum of the entries, of numbers per chromosome or of indicators.
inline int64 sumof(const array1<int64> &values)
{
    return std::accumulate(values.begin(), values.end(), int64{0});
}

// Makes the arrays that many stages hold alike, all entries 0:
//   nsegreginclglobal, nmutinclglobal, nqtnonthischrom, nqtnrecombonthischrom   (nchrom)
//   nsnponthischipchrom                                                         (nchip, nchrom)
//   indivmutindicator                                                         (nchrom, nindivp)
//   denovoinfo                                             (nchrom) rows, none for the time being
void makechromarrays(state &s, arrayscope &arrays);
// Makes what is told of each included site of a chromosome whose nsegregincl is set: inclsnpid,
// inclphysicalmap, inclmutindicator and inclmutindicatorindivid.
void makeincludedsites(state &s, arrayscope &arrays);

// Writes the stores of sites and mutations of a chromosome whose arrays are filled.
void writesitestores(const state &s, int64 chrom);
// Writes NbOfQtnMutationsAndSnp.txt.
void writesitenumbers(const state &s, int64 chrom);
// Writes MutDeNovoInfo.txt; and MutIndivIndicator.txt for individuals 1 to nindiv.
void writemutations(int64 chrom, const std::vector<denovomutation> &rows);
void writecarriers(int64 chrom, int64 nindiv, const std::vector<denovomutation> &rows);

// Fills the arrays of makechromarrays, which the caller has made, for all chromosomes:
//   SegSitesIncluded.txt        nsegreginclglobal
//   NbOfQtnMutationsAndSnp.txt  nqtnonthischrom, nmutinclglobal, nsnponthischipchrom; with
//                               recombselonoff on, from its second row, nqtnrecombonthischrom
//   MutDeNovoInfo.txt           denovoinfo, as many rows as the chromosome has included mutations
//   MutIndivIndicator.txt       nindivpinit (its lines) and indivmutindicator; individuals
//                               without a row keep 0, rows beyond nindivp are passed over: a later
//                               run may change the sizes of the generations to come
// and works out the run totals, see computetotals.
// runfolder: where the stores lie, the working folder unless a merge looks at another run's.
void readsegsitesdatafromallchrom(state &s, const std::string &runfolder = ".");
// From the numbers of the chromosomes:
//   ntotqtn        sum of nqtnonthischrom
//   ntotqtngamma   sum of nmutinclglobal, + nqtngamma
//   ntotqtnrecomb  sum of nqtnrecombonthischrom, only with recombselonoff on
//   nsnp           markers of the selection chip tmpchip over all chromosomes; 0 while no chip
//                  has been named for selection
//   nsnpforsel     nsnp, + ntotqtn when chips are used and QTN are added to the selection chip
void computetotals(state &s);

// All rows of MutDeNovoInfo.txt.
std::vector<denovomutation> readmutations(int64 chrom, const std::string &runfolder);

// Fills the arrays of makeincludedsites, which the caller has made, from PhysicalMapIncluded.txt.
void readsegsitesdataperchrom(state &s, int64 chrom);
// Map positions of the chromosome's included sites alone.
array1<double> readincludedmap(int64 chrom, int64 nsegregincl);
