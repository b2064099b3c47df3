// mergemutations.h - de novo mutations in a merged folder.
//
// A mutation arises in one individual, its carrier, when this is made; the stores name the carrier
// by its number. A merge gives the individuals other numbers, so the stores must follow, or a later
// run would let mutations arise in the wrong individuals, or again.
#pragma once

#include "merge/mergefolders.h"

// Rewrites MutDeNovoInfo.txt and MutIndivIndicator.txt of each chromosome with mutations. One that
// has arisen in some folder doesn't arise again: its row names its carrier in the merged
// population, or 0 where that isn't taken; where several folders had it arise, further rows name
// the other carriers behind those of the chromosome's mutations. One that is yet to arise does so
// in the merged run as many individuals from now as it would have in the folder that is nearest to
// it.
void mergemutations(const state &s, const mergeplan &plan);
