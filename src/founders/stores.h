// stores.h - the stores of the founder sites, read back from their files.
//
// The extraction of the sites leaves its results in each chromosome's folder and frees its
// arrays. Every later stage makes the arrays that it needs anew and fills them here: these
// routines are the only readers of the stores. The files are opened for reading and stay as they
// are; their layouts stand in extractsegsites.h. A missing file, a value that can't be read or one
// that has no place in the arrays is an I/O error.
#pragma once

#include "arrayscope.h"
#include "state.h"

// Makes the arrays that many stages hold alike, all entries 0:
//   nsegreginclglobal, nmutinclglobal, nqtnonthischrom, nqtnrecombonthischrom   (nchrom)
//   nsnponthischipchrom                                                         (nchip, nchrom)
//   denovoinfo                                                   (nchrom, ndenovomutperchr, 5)
//   indivmutindicator                                                         (nchrom, nindivp)
void makechromarrays(state &s, arrayscope &arrays);
// The same for a caller who frees them himself.
void allocatechromarrays(state &s);
void releasechromarrays(state &s);

// Fills the arrays of makechromarrays, which the caller has made, for all chromosomes:
//   SegSitesIncluded.txt        nsegreginclglobal
//   NbOfQtnMutationsAndSnp.txt  nqtnonthischrom, nmutinclglobal, nsnponthischipchrom; with
//                               recombselonoff on, from its second row, nqtnrecombonthischrom
//   MutDeNovoInfo.txt           denovoinfo, as many rows as the chromosome has included mutations
//   MutIndivIndicator.txt       nindivpinit (its lines) and indivmutindicator; individuals
//                               without a row keep 0, rows beyond nindivp are passed over: a later
//                               run may change the sizes of the generations to come
// and works out the run totals:
//   ntotqtn        sum of nqtnonthischrom
//   ntotqtngamma   sum of nmutinclglobal, + nqtngamma
//   ntotqtnrecomb  sum of nqtnrecombonthischrom, only with recombselonoff on
//   nsnp           markers of the selection chip tmpchip over all chromosomes; 0 while no chip
//                  has been named for selection
//   nsnpforsel     nsnp, + ntotqtn when chips are used and QTN are added to the selection chip
// runfolder: where the stores lie, the working folder unless a merge looks at another run's.
void readsegsitesdatafromallchrom(state &s, const std::string &runfolder = ".");

// Fills inclsnpid, inclphysicalmap, inclmutindicator and inclmutindicatorindivid (nsegregincl
// entries, made by the caller, who has set nsegregincl) from PhysicalMapIncluded.txt of the
// chromosome, and counts nhaplos, the lines of MacsHaplotypes.txt.
void readsegsitesdataperchrom(state &s, int64 chrom);

// Map positions of the chromosome's included sites alone.
//   map  out  (nsegregincl), made by the caller
void readsegsitesdataperchromforrecomb(int64 chrom, array1<double> &map, int64 nsegregincl);
