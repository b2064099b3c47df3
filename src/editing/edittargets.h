// edittargets.h - what editing the chosen sires would bring at each QTN, and the list of the QTN
// in the order in which they are edited.
//
// The effects are those of SimulatedData/...QtnAdditEffects.txt, the frequencies those of the
// generation that holds the candidates, ...QtnAlleleFreqGeneration<g-1>.txt of each chromosome;
// ... is Unrestricted with qtnmodel 1 or 3, Restricted with 2 or 4. Files in the folder of the
// cycle that makes generation g, both with a title, replaced if they are there:
//   QtnGeneticGainAlleleFreqGener<g>.txt        one line per QTN, in global order, 4I20,3F20.10:
//       QTN, chromosome, site, favourable allele, its frequency, gain, its new frequency
//   ...QtnSortedForGeneEditingGener<g>.txt      one line per QTN, ascending in gain, 6I20,2F20.10:
//       line, QTN, chromosome, site, favourable allele, 0, gain, new frequency
#pragma once

#include "state.h"

#include <string>

std::string editgainfile(int64 selcycle, int64 gen);
std::string editlistfile(const state &s, int64 selcycle, int64 gen);

struct qtv {
    int64 id = 0;    // number in the whole genome
    int64 snpid = 0; // site on its chromosome
    int64 chromosome = 0;
    double addeffnorm = 0, addeffgamma = 0;
    double addeff = 0;        // the effect that counts
    int64 favallele = 0;      // allele that raises the trait, 0 or 1
    double favallelefreq = 0; // among the candidates
    double gain = 0;          // change of the mean
    double newfreq = 0;       // of the favourable allele, among the progeny
};

// Writes both files of a cycle; gen is the generation that it makes. Draws nothing from the run's
// stream: the sort takes its pivots elsewhere, so the order of QTN whose gains are equal in single
// precision isn't fixed. Where no sires are asked of generation gen - 1 the selfed parents count as
// sires, and failing them the parents chosen regardless of gender. Stops: an I/O error for effects
// or frequencies that are missing or too few.
void runge(const state &s, int64 selcycle, int64 gen);

// Takes the sorted list of a cycle back from its file: the five list arrays (ntotqtn).
void readeditlist(state &s, int64 selcycle, int64 gen);

// Effects: one column with nqtngamma 0, otherwise a normal and a gamma column, of which the normal
// one is taken under every QTN model.
void readaddeff(const state &s, array1<qtv> &qtvarray);
// Frequencies; the effects must be there.
void readfreq(const state &s, int64 gen, array1<qtv> &qtvarray);

// The favourable allele: 1 if its effect is above 0, else 0; freq is the frequency of allele 1.
void qtveffect(double addeff, double freq, int64 &favallele, double &favfreq);

// One locus in Hardy-Weinberg proportions, genotypes worth 0, a and 2a (Falconer and Mackay 1996,
// chapter 7): its mean is 2af.
double calcmeanval(double addeffect, double freq);
// Frequency among nsires sires of which nsiresge are made homozygous for the favourable allele.
double calcsirefreq(double favallelefreq, int64 nsires, int64 nsiresge);
// Half of the progeny's alleles come from the sires, half from dams, in which nothing changes.
double calcprogenyfreq(double sirenewfreq, double favallelefreq);
// The change of the mean carries the sign of the effect, so it is negative where allele 0 is
// favourable.
void changemean(double qtvaddeffect, int64 nsires, int64 nsiresge, double favallelefreq,
                double &deltag, double &progenyfreq);
void deltagarrayfill(int64 nsires, int64 nsiresge, array1<qtv> &qtvarray);
