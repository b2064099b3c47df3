// corvalindspec.h - CorvalindSpec.txt: whose contributions to optimise, and how far.
//
// Lines "key ,value" in any order, keys compared in lower case. Which keys must be there follows
// from PerformMatingsConsideringTheGender: with Yes the sexes have a pool each (GenderFile,
// NumberOfMales, NumberOfFemales), with No or nothing all candidates are one pool
// (NumberOfIndividuals). All others must be there.
#pragma once

#include "arrays.h"

#include <string>

struct corvalindspec {
    std::string file;             // where it was read
    std::string relationshipfile; // id and a real for each candidate per line
    std::string breedingvaluefile;
    bool sexesmatter = false;
    std::string genderfile; // id and gender per line; only where sexes matter
    int64 nindiv = 0;
    int64 nmales = 0, nfemales = 0; // only where sexes matter
    int64 nmatings = 0;
    double difference = 0;  // of x'Gx from its minimum
    int64 nplans = 0;       // that a round of the search for the mating plan compares
    int64 ngenerations = 0; // most rounds of that search
};

// Stops: an I/O error that names file and line for a line that is no setting, an unknown key, a
// key that comes twice, a value out of range; one that names the file and the key for a key that is
// missing, or has no meaning beside the sexes' setting.
corvalindspec readcorvalindspec(const std::string &filename);
