// breedingplan.h - who breeds a generation: the one place that decides it from the numbers of
// parents, for parents at random (burn-in) and by truncation (selection).
#pragma once

#include "state.h"

enum class damside {
    chosen, // as the sires are
    dealt,  // by the random mating that follows the choice of the sires
    assire, // the sire is both parents: selfing, doubled haploids
    none    // unknown
};

struct breedingplan {
    int64 nsires = 0, ndams = 0; // to be chosen on either side; ndams counts where dams are chosen
    damside dams = damside::chosen;
};

// Selfed parents go before parents regardless of gender, and these before sires and dams. Doubled
// haploids come from one parent in the burn-in, where a programme with doubled haploids leaves the
// dams of its other generations unknown; in selection generations only where no dams are asked for.
breedingplan planofgeneration(const state &s, int64 gen);

// Whether a generation consists of doubled haploids: only the gamete from the sire is made, and
// it stands on both sides.
bool isdoubledhaploid(const state &s, int64 gen);
// Whether mates are dealt regardless of gender.
bool israndommated(const state &s, int64 gen);
// Whether parents of the generation are chosen regardless of gender.
bool genderisignored(const state &s, int64 gen);

// How the parents of one gender (1 sires, 2 dams) of a generation are chosen.
using parentchoice = void (*)(state &s, int64 gen, int64 parentgender, int64 npargender);
// Chooses the parents of a generation by its plan. Draws and stops: those of the choice.
void chooseparentsof(state &s, int64 gen, parentchoice choose);
