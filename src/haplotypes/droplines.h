// droplines.h - what the gene drops of the burn-in and of the selection generations share: one
// gamete and its tracking line, doubled haploids, the count lines, parents of any generation.
#pragma once

#include "haplotypes/crossingfiles.h"
#include "haplotypes/gametes.h"
#include "pedigree/breedingplan.h"
#include "state.h"

#include <vector>

// What others do with a generation on a chromosome, individuals startindiv to endindiv, whose
// genomes are in tmpgenome: the stage that drops it is given the routines by its caller.
using generationstep = void (*)(state &s, int64 chrom, int64 currentgen, int64 startindiv,
                                int64 endindiv);
// What others do with a gamete just made for an individual from its parent's strands, with the last
// site before each of its crossings, -99 behind the last.
using gametestep = void (*)(state &s, int64 individ, int64 parentgender, int64 chrom,
                            const array1<int64> &recomblocation);
struct dropsteps {
    generationstep finishgeneration = nullptr; // once the genomes are written
    gametestep followgamete = nullptr;         // none: nothing to be done
    generationstep finishzygotes = nullptr;    // before the genomes are written; none: nothing
};

// The open files of a drop and its working space.
struct dropwork {
    crossingfiles files;
    int64 firstpos = 0, nrecombperind = 0; // of the last gamete
    array1<int64> recomblocation;          // (nblock) of the last gamete, -99 behind its crossings
};

// Opens both files to go on behind the lines of individuals before startindiv, and makes the
// working space for the chromosome's nblock.
void opendrop(state &s, dropwork &work, int64 chrom, int64 startindiv);
void closedrop(dropwork &work);

// Makes the gamete of individual individ, at place indivpos of tmpgenome, from the strands of its
// parent on that side, and writes its tracking line. Its crossings stand in work.recomblocation.
// Draws: one for firstpos, then those of recombinegametes.
void dropgamete(state &s, dropwork &work, int64 chrom, int64 individ, int64 indivpos,
                int64 parentgender, const parentstrands &strands);

// Counts and tracks the gamete just made for the sire's side on the dam's side, too.
void repeatsiregamete(state &s, dropwork &work, int64 individ);

// What follows an individual's gametes: its count line, its de novo mutations, and the copy of a
// doubled haploid's gamete (behind the mutations: one on gamete 1 is copied, one on gamete 2 gone).
void finishindividual(state &s, dropwork &work, int64 chrom, int64 currentgen, int64 individ,
                      int64 indivpos);

// Sires and dams, each once and in ascending order, of individuals startindiv to endindiv that
// lie between firstid and lastid.
std::vector<int64> parentsbetween(const state &s, int64 startindiv, int64 endindiv, int64 firstid,
                                  int64 lastid);

// Reads the genomes of the given individuals, ascending, of any generations, on a chromosome with
// nblock blocks: ids[r] goes to place r + 1 of g, which is made anew. Only the files of their
// generations are read, one block of a generation at a time.
void readgenomesof(const state &s, int64 chrom, const std::vector<int64> &ids, genomestore &g);
