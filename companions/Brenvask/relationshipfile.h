// relationshipfile.h - GFullMatrix1-1.txt: the relationships of the individuals of a genotype file,
// in its order. One line per individual, I20, then one F20.10 per individual: its number, and its
// relationships with all of them. A relationship of 10^7 or more, which does not fit its columns
// with a blank before it, stands free-form there.
#pragma once

#include "Brenvask/relationships.h"

void writerelationships(const array1<int64> &indiv, const relationships &g);

// Removes the file of an earlier run, if there is one.
void removerelationships();
