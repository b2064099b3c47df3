// mergefrequencies.h - what a merge counts anew in the files that it has written: allele
// frequencies of chips and QTN, and the sizes of the generations.
#pragma once

#include "markers/sitesets.h"
#include "state.h"

#include <string>

// Refreshes the information file of a chip or a QTN set of the traits, and what stands in the
// folders of the chromosomes for it, by the genotypes of all merged individuals.
// Reads    nsnponthischipchrom or nqtnonthischrom: sites per chromosome
// SimulatedData/<...>Information.txt: 3I20, then for SNP 2F20.10: minor allele frequency, position;
//   for QTN 3F20.10, 2I20: minor allele frequency, frequency of the counted allele, position,
//   mutation, carrier
// and in the folder of each chromosome
//   <...>Information.txt            the same for its own sites without the chromosome
//   <...>Summary.txt                F20.10: the sum of its sites' heterozygosities over the number
//                                   of sites of all chromosomes
//   <...>AlleleFreqGeneration1.txt  QTN only, 2I20,F20.10: QTN, site, frequency of the counted
//                                   allele; its own sites first, then the others
void calculatebothsnpandqtn(const state &s, int64 nindividuals, siteset of);

// Genotypes of one site, counted by value; others than 0, 1 and 2 together.
struct genotypecounts {
    int64 n0 = 0, n1 = 0, n2 = 0, nother = 0;
};
// Frequencies of one site: of the rarer allele, of allele 1, and of heterozygotes among all
// genotypes. Prints a line for each other genotype, which counts no alleles. Allele frequencies are
// in single precision.
void calcallelefreqmerge(const genotypecounts &genotypes, double &maf, double &het,
                         double &nonzeroallelefreq);

// Writes NbOfIndivInEachGen.txt by the first nindividuals lines of Gender.txt.
void calculatenewnbindivigen(int64 nindividuals);

// Writes the allele frequencies of the QTN within a merged generation of nindividuals, for each
// chromosome and set: <...>AlleleFreqGeneration<gen>.txt, as a gene drop leaves it. In generation 1
// only those of the recombination QTN.
void writegenerationfrequencies(const state &s, int64 gen, int64 firstindiv, int64 nindividuals);
