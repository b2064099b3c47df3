// burningeneration.h - one burn-in generation dropped on one chromosome, and its frequencies.
//
// Individuals come in pedigree order. An unknown parent's strands are two founder haplotypes drawn
// at random, with replacement, from MacsHaplotypesInBlocks.txt. A known parent stands in any
// earlier generation, or earlier in the same one. In memory are two generations, and of older ones
// only the parents that an external pedigree asks for.
//
// Files of a chromosome beside those of crossingfiles.h:
//   GenomeGeneration<g>.txt            one framed record, see genomefiles.h
//   BaseIndividualGameteTracking.txt   I20,4I10 per individual with an unknown parent: newid, the
//       two founder haplotypes of the sire's side, those of the dam's; -99 for a known parent.
//       Replaced by each generation that has such individuals, otherwise left alone
//   MinorAlleleFrequency.txt           a title in A30, then I10,F20.10 per included site
#pragma once

#include "state.h"

#include <string>

inline std::string basetrackingfile(int64 chrom)
{
    return chromfolder(chrom) + "BaseIndividualGameteTracking.txt";
}
inline std::string minorfrequencyfile(int64 chrom)
{
    return chromfolder(chrom) + "MinorAlleleFrequency.txt";
}

// Sets recombfactperblock and recombrateperblock (made by the caller), the same for all burn-in
// generations of a chromosome. Stops: nblock not above morgans, 110012; those of readrecombspec.
void setburninrecombrates(state &s, int64 chrom);

// Stop 110012 where nblock isn't above morgans.
void checkblocknumber(const state &s);

// Every parent must stand before its offspring, since its genome must exist by then; another one is
// an I/O error of the pedigree.
void checkparents(const state &s, int64 startindiv, int64 endindiv);

// Drops generation currentgen, individuals startindiv to endindiv, of a chromosome.
//   tmpgenome      out  made by the caller with every cell -99, (nindivinthisgen, nblock, 2)
//   parentsloaded  in   oldtmpgenome holds generation currentgen - 1 already; otherwise it is read
//                       from its file. It stays for the caller to free
// Stops: those of checkparents.
// Draws, for each individual: for the sire's side, if the sire is unknown, one for each of the two
// founder haplotypes; one for the strand to begin on; those of recombinegametes; then the same for
// the dam's side, unless the generation is of doubled haploids.
void genedropburninindiv(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv,
                         bool parentsloaded = false);

// Fills minorallelefreq(nsegregincl) and its file from those individuals of generation 1, in
// tmpgenome, that have no known parent: the frequency of allele 1, or 1 minus it above a half.
void computeminorallelefrequency(state &s, int64 chrom);
