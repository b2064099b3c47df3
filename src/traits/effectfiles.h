// effectfiles.h - the files that hold the QTN and their effects, in SimulatedData.
//
// After the effect stage these files are the only holders of the effects and of the frequencies
// of generation 1: every stage behind it takes them from here, in a run that goes on too, with
// their ten decimals.
// One title, then one line per QTN in global order (chromosome by chromosome): GlobalQtnId,
// ChromId, QtnSeqIdOnChrom (3I10), then F20.10 columns. Each file is written from its head.
// Titles of effect files are 1000 columns wide, left-aligned, and cut there; lines are complete.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// <Set>QtnInformation.txt of the trait sets: 3I10, 3F20.10, 2I20: minor allele frequency, frequency
// of the counted allele in generation 1, position, mutation, its carrier.
void compileqtninformation(const state &s);
// <Set>QtnAdditEffects.txt: normal effects of all traits, then with nqtngamma > 0 the gamma ones.
void compileqtnadditiveeffects(const state &s);
// <Set>QtnDominEffects.txt: effects as above, then the degrees in the same order.
void compileqtndominanceeffects(const state &s);
// <Set>QtnAverAlleleSubstEffects.txt, as the additive ones.
void compileqtnaverallelesubsteff(const state &s);
// RecombinationQtnInformationEffects.txt: 3I10, 4F20.10, the effect last.
void compileqtnrecombination(const state &s);

std::string additiveeffectfile(qtnset set);
std::string dominanceeffectfile(qtnset set);
std::string substitutioneffectfile(qtnset set);
std::string informationfile(qtnset set);
// All of them that a run leaves.
std::vector<std::string> effectfilesof(const state &s);

// The QTN of a set, in global order, as its information file has them; of the recombination trait
// as its own file has them, with no mutations.
struct qtnsite {
    int64 chrom = 0, site = 0;
    double maf = 0, referencefreq = 0, pos = 0;
    int64 mutation = 0, carrier = 0;
};
std::vector<qtnsite> readqtnsites(qtnset set);
// All columns of the effect files of a set that the simulation leaves, side by side.
struct effecttable {
    std::vector<std::string> names;        // as in the titles of the files: AddEffNormUnres1, ...
    std::vector<std::vector<double>> rows; // of the QTN in global order
};
effecttable readeffecttable(const state &s, qtnset set, int64 nqtn);

// Takes back what the values follow from, once in a stage, into arrays that exist: referencefreq of
// the sets in use; alpha of the models in use, which is the additive effect without dominonoff;
// with dominonoff domeff; with recombselonoff addeffrecomb. A short file or one that is missing is
// an I/O error.
void readqtneffects(state &s);
