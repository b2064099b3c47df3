// extraction.h - the alleles and genotypes of a generation on one chromosome, as plain files.
//
// Genomes live in blocks; every later stage reads alleles from the files made here, straight
// after the generation's drop, while tmpgenome holds it: individual startindiv in row 1 and so on.
// Files below the chromosome's folder, rows in pedigree order, id the pedigree row, n sites in the
// order of the chip or QTN set; <g> is the generation. A repeated run replaces them.
//   ...PhaseGeneration<g>.txt      two rows per individual, I20,nI2: id, alleles 0 or 1; first
//                                  gamete 1 (from the sire), then gamete 2 (from the dam)
//   ...GenotypeGeneration<g>.txt   one row per individual, I20,nI2: id, genotypes 0, 1 or 2
//   ...AlleleFreqGeneration<g>.txt QTN only, one row per QTN, 2I20,F20.10: rank in the set, site,
//                                  frequency of allele 1 in the generation (not folded)
// with ... = Chip<e>, UnrestrictedQtn, RestrictedQtn, RecombinationQtn; and for all sites
//   SequenceGenotypeGeneration<g>.bin  one framed record per individual: id, genotypes
//   SequencePhaseGeneration<g>.bin     two records per individual: id, alleles of gamete 1, 2
// of 64-bit integers.
//
// The sites are taken from the information files: a broken one is an I/O error. Arguments:
// currentgen, its first and last individual. Draws, stops: none.
// Cost: the picking of the sites is hidden behind the writing, see sitepicker.h.
#pragma once

#include "markers/sitesets.h"
#include "state.h"

void fillarray(state &s, int64 chrom, int64 chip, int64 currentgen, int64 startindiv,
               int64 endindiv);
void fillqtn(state &s, int64 chrom, qtnset set, int64 currentgen, int64 startindiv, int64 endindiv);

// Frequencies of allele 1 at the sites of a QTN set in a generation.
//   sums    copies of allele 1 per site
//   nindiv  individuals of the generation
void writeqtnfrequencies(int64 chrom, qtnset set, int64 gen, const sitelist &sites,
                         const std::vector<int64> &sums, int64 nindiv);

// The two sequence files.
std::string sequencephasefileof(int64 chrom, int64 gen);
std::string sequencegenotypefileof(int64 chrom, int64 gen);
void writeoutindivphase(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                        int64 endindiv);
