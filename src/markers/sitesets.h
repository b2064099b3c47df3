// sitesets.h - what chips and QTN sets have in common: a list of included sites, ascending, that
// is chosen once on a chromosome and kept in an information and a summary file.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// A chip by its number, from 1, or a QTN set.
struct siteset {
    explicit siteset(int64 number) : chip(number) {}
    siteset(qtnset which) : set(which) {}
    bool ischip() const { return chip > 0; }
    int64 chip = 0;
    qtnset set = qtnset::unrestricted; // unless it is a chip
};
// All chips, then the QTN sets in use.
std::vector<siteset> sitesetsinuse(const state &s);
// Sites of it on a chromosome, and on all.
int64 nsitesonchrom(const state &s, siteset of, int64 chrom);
int64 nsitesintotal(const state &s, siteset of);

// "Chip2", "RestrictedQtn" and so on, as the names of files in the folder of a chromosome begin.
std::string nameofsites(siteset of);
// The files themselves. Frequencies are only kept of QTN.
std::string informationfile(int64 chrom, siteset of);
std::string summaryfile(int64 chrom, siteset of);
std::string phasefile(int64 chrom, siteset of, int64 gen);
std::string genotypefile(int64 chrom, siteset of, int64 gen);
std::string frequencyfile(int64 chrom, qtnset set, int64 gen);
// Name of a chip's information file, which that of the whole genome has too.
std::string chipinformationname(int64 chip);

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
const sitelist &keptsites(state &s, int64 chrom, siteset of, int64 nsegregincl);
