// sitesets.h - what chips and QTN sets have in common: a list of included sites, ascending, that
// is chosen once on a chromosome and kept in an information and a summary file.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// Files of a QTN set, and of a chip, in the folder of a chromosome.
std::string informationfileofset(int64 chrom, qtnset set);
std::string summaryfileofset(int64 chrom, qtnset set);
std::string phasefileofset(int64 chrom, qtnset set, int64 gen);
std::string genotypefileofset(int64 chrom, qtnset set, int64 gen);
std::string frequencyfileofset(int64 chrom, qtnset set, int64 gen);
// The information file's name, which that of the whole genome has too.
std::string informationnameofchip(int64 chip);
std::string informationfileofchip(int64 chrom, int64 chip);
std::string summaryfileofchip(int64 chrom, int64 chip);
std::string phasefileofchip(int64 chrom, int64 chip, int64 gen);
std::string genotypefileofchip(int64 chrom, int64 chip, int64 gen);

// Frequency of an allele with ncopies among nindiv individuals, with the ten decimals of the files.
double filedfrequency(int64 ncopies, int64 nindiv);

// Included sites, from 1.
using sitelist = std::vector<int64>;

// Mean over the sites of 1 - (f f + (1 - f) (1 - f)), f the minor allele frequency, added up in
// ascending order of the sites; 0 for an empty list.
double meanheterozygosity(const state &s, const sitelist &sites);

// One free-form line: the mean heterozygosity.
void writesummary(const state &s, const std::string &path, const sitelist &sites);

// One line per site: 2I20,2F20.10 rank from 1, site, minor allele frequency, map position; with
// mutations also 2I20: 1 for a mutation site, carrier of the mutation or 0. Keeps the sites.
void writesiteinformation(state &s, const std::string &path, const sitelist &sites,
                          bool withmutations);

// The sites of an information file, which must hold nsites of them, ascending, from 1 to
// nsegregincl.
sitelist readsites(const std::string &path, int64 nsites, int64 nsegregincl);
// The same of this run's file, read unless the sites are in memory.
const sitelist &keptsites(state &s, const std::string &path, int64 nsites, int64 nsegregincl);
