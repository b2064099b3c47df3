// tables.h - tab-separated text, one title line each; a value that isn't there is NA.
//
//   PREFIX.individuals.tsv  individual, generation, sire, dam, gender, then for each trait t and QTN
//                           model p tbv<t>.<model>, tdv<t>.<model>, tpv<t>.<model>
//   PREFIX.sites.tsv        chromosome, site, id, bases, position, centimorgan, maf, mutation, qtn
//   PREFIX.qtn.tsv          set, qtn, chromosome, site, id, bases, position, maf, frequency, mutation,
//                           carrier, then the columns of the run's effect files
//   PREFIX.generations.tsv  generation, individuals, trait, model, meantbv, additivegenic,
//                           dominancegenic, additivegenetic, dominancegenetic
//
// Values are those of the run's tables with all their digits.
#pragma once

#include "exportsites.h"
#include "newfiles.h"

// Sites are those of the data asked for.
void writetables(const finishedrun &run, const exportoptions &options, const sitetables &tables,
                 const std::vector<int64> &individuals, newfiles &files);
