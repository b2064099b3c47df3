// coancestry.h - average coancestry per selection generation: the table, and the shares of parents.
//
// SimulatedData/AverageCoancestry.txt: a title (A70), a line per selection generation (I10, A20 "-"
// in the first cycle, else I20, 2F20.10): generation of the candidates, cycle that made them,
// average relationship before and after selection; and behind the last generation a line for its
// own individuals (I10,I20,F20.10,A10 "-").
#pragma once

#include "state.h"

constexpr const char *coancestrytable = "./SimulatedData/AverageCoancestry.txt";

// Average relationship x'Gx of candidates.
struct coancestries {
    double before = 0; // equal shares
    double after = 0;  // shares of the parents in the new generation
};

// Share of each individual firstindiv to lastindiv in the parents of generation currentgen, which
// follows lastindiv; one that is both parents counts twice. All 0 where none of them is a parent.
array1<double> parentshares(const state &s, int64 currentgen, int64 firstindiv, int64 lastindiv);

// The line of a cycle; what stood from there on is dropped. The title with the first cycle.
void writecoancestry(const state &s, int64 selectioncycle, const coancestries &values);
// The line of the last generation, behind that of its cycle.
void writelastcoancestry(const state &s, int64 selectioncycle, double before);
