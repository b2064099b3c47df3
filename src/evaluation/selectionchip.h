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

#include <string_view>
#include <vector>

// The files that are open in a pass over the generations.
struct selectionchipfiles {
    outfile genotypetrain, phasetrain, genotypetest;
    std::vector<infile> chip, qtn; // of one generation, entry h - 1 for chromosome h
};

// action "Open_", "Flush" or "Close" for the output files of a cycle.
void selectmpchipsfiles(state &s, selectionchipfiles &files, int64 selectioncycle,
                        std::string_view action);
// action "Open_" opens the input files of generation tmpgenid, any other closes them.
void chromsnpchipsandqtnfiles(state &s, selectionchipfiles &files, std::string_view action,
                              int64 tmpgenid);
// Passes over the individuals startindiv to endindiv, from the first of the open generation on, and
// goes back to the files' start behind them. dataset "Train": writeselectmpchips, "Test_":
// writeselectmpvalidchip. An I/O error where a record has too few alleles.
void determineselectmpchips(state &s, selectionchipfiles &files, int64 tmpgenid,
                            std::string_view dataset, int64 startindiv, int64 endindiv);
// Writes the individual in allphase and allphaseqtn to the training files; indivpos is its place in
// the training range. Under genomic prediction only if it has a phenotype, and then its alleles are
// added to the counts in fixedsnp.
void writeselectmpchips(state &s, selectionchipfiles &files, int64 individ, int64 indivpos);
// Writes it to the test file, if it belongs to the test set.
void writeselectmpvalidchip(state &s, selectionchipfiles &files, int64 individ);
