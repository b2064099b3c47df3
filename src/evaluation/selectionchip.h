// selectionchip.h - genotypes on the selection chip, whole genomes in one row, for a cycle.
//
// The genotype files of the drop are cut by chromosome and generation and hold phases. Here they
// are streamed, one individual at a time, into the files of the cycle.
// Loci: the SNPs of the selection chip, chromosome after chromosome, then, where they are added to
// the chip, the QTN of the selection model in the same way; nsnpforsel in all.
// Files read, which must exist (k: selection chip, h: chromosome, m: generation), two records for
// each individual, an identifier and the alleles of one phase:
//   ./Chromosomes/Chromosome<h>/Chip<k>PhaseGeneration<m>.txt
//   ./Chromosomes/Chromosome<h>/UnrestrictedQtnPhaseGeneration<m>.txt, or RestrictedQtn...
// Files written in the folder of the cycle, each record I20 pedigree row, then I2 for each locus:
//   TmpChip<k>GenotypeTrain.txt   0, 1, 2; under selection on estimates only
//   TmpChip<k>PhaseTrain.txt      two records for each individual; the same
//   TmpChip<k>GenotypeTest.txt    0, 1, 2; always
// Cost: each pass reads the text of a generation once. All chromosomes' files are open at once.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// Names of the files of a cycle. Those of the test genotypes brought to the scale of the training
// (trainingdata.h) for the trait, run 1, and for the recombination trait, 2; those of the generation
// that the last cycle makes.
std::string traininggenotypes(const state &s);
std::string trainingphases(const state &s);
std::string testgenotypes(const state &s);
std::string scaledgenotypes(const state &s, int64 runid);
std::string lastgenotypes(const state &s);

// The files of a cycle.
struct selectionchipfiles {
    outfile genotypetrain, phasetrain, genotypetest;
};
// Opens them; those of the training only under selection on estimates.
selectionchipfiles openchipfiles(const state &s, int64 selectioncycle);
// Closes those that are open.
void closechipfiles(selectionchipfiles &files);

// The phases of one generation, open as long as the record is there: entry h - 1 for chromosome h.
struct generationphases {
    std::vector<infile> chip, qtn;
    array2<int8> snpalleles, qtnalleles; // (nsnp, 2), (ntotqtn, 2) of the individual at hand
};
generationphases openphases(const state &s, int64 gen);

// Both pass over the individuals startindiv to endindiv, the first of them the first of the
// generation, and go back to the start of its phases behind them. An I/O error where a record has
// too few alleles.
// Training files: under genomic prediction only individuals with a phenotype, whose alleles are
// added to the counts in fixedsnp.
void writetrainingchip(state &s, selectionchipfiles &files, generationphases &phases,
                       int64 startindiv, int64 endindiv);
// Test file: only individuals of the test set.
void writetestchip(state &s, selectionchipfiles &files, generationphases &phases, int64 startindiv,
                   int64 endindiv);
