// qtninputs.h - what the tests of effects and values stand on: the files of a small simulation
// after its gene drop, written by hand, with random genotypes that the test keeps.
#pragma once

#include "state.h"

#include <random>
#include <string>
#include <vector>

// Genotypes of one QTN set in all generations, and what its information files say. Individuals,
// QTN and generations count from 0 here.
struct qtnset {
    std::vector<std::vector<int>> genotypes; // [individual][QTN], all generations
    std::vector<int64> site, mutind, carrier;
    std::vector<double> maf, position;
};

struct qtninputs {
    std::vector<int64> sizes = {12, 9, 10}; // individuals of each generation
    std::vector<int64> qtnperchrom = {3, 4};
    std::vector<int64> recombperchrom = {2, 3};
    int64 nmutations = 0; // de novo mutations on each chromosome: its first QTN of both sets
    std::mt19937 draws{12345};
    qtnset unrestricted, restricted, recombination;
    std::vector<std::vector<int64>> crossings; // [individual]: sire's and dam's side

    // A state as the specification reader leaves it, for burn-in generations only: one trait,
    // four models, no dominance, no recombination trait. Settings may be changed behind it.
    state settings(int64 ntraits = 1) const;
    // Draws genotypes and writes every file that the effect and values stages read.
    void write(const state &s);
    int64 first(int64 generation) const; // offset of its first individual
    int64 nindiv() const;
    // Frequency of the counted allele in a generation, as the frequency files give it.
    double frequency(const qtnset &set, int64 generation, int64 q) const;

  private:
    void drawset(const state &s, qtnset &set, const std::vector<int64> &perchrom, bool mutations);
    void writeset(const qtnset &set, const std::string &name, const std::string &informationname,
                  const std::vector<int64> &perchrom, bool withmutations) const;
    void writestores(const state &s) const;
    void writepedigree() const;
};

// A value as a file with ten decimals gives it back.
double throughfile(double value);
