// valuefiles.h - files in the folder of a cycle with a value for each individual: I20,F20.10, pedigree
// row and value.
//
// Their names; t is the trait, named where there are several.
#pragma once

#include "cyclefolder.h"
#include "state.h"

#include <string>

// True values and phenotypes of the test individuals.
inline std::string truetestvalues(const state &s, int64 t)
{
    return "SelectionTbvTest" + traitsuffix(s, t) + ".txt";
}
inline std::string testphenotypes(const state &s, int64 t)
{
    return "SelectionPhenTest" + traitsuffix(s, t) + ".txt";
}
constexpr const char *recombtestvalues = "SelectionTbvRecombZTesting.txt";
// Phenotypes of the training individuals.
inline std::string trainingphenotypes(const state &s, int64 t)
{
    return "SelectionPhenTrain" + traitsuffix(s, t) + ".txt";
}
constexpr const char *onetraitphenotypes = "SelectionPhenTrain.txt";
constexpr const char *recombtrainingphenotypes = "SelectionPhenRecombTrain.txt";
// Estimates of the test individuals, by a prediction program or by solutions in force.
inline std::string estimatesfile(const state &s, int64 t)
{
    return "Ebv" + traitsuffix(s, t) + ".txt";
}
constexpr const char *onetraitestimates = "Ebv.txt", *recombestimates = "EbvRecomb.txt";
// The selection index of the test individuals.
constexpr const char *selectionindexfile = "SelectionIndex.txt";

// A file being written.
class valuefile
{
  public:
    valuefile(int64 selectioncycle, const std::string &name)
        : out(cyclefolder(selectioncycle) + name)
    {
    }
    void put(int64 individ, double value)
    {
        puti(line, individ, 20);
        putf(line, value, 20, 10);
        out.writeline(line);
    }
    void close() { out.close(); }

  private:
    outfile out;
    textline line;
};
