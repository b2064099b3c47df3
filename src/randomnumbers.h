// randomnumbers.h - the one stream of random numbers of a run.
//
// A table-shuffled multiplicative congruential generator: multiplier 16807, modulus 2^31 - 1,
// table of 32 entries (Park and Miller 1988; Bays and Durham 1976). The seed and the order of
// draws decide a run.
#pragma once

#include "arrays.h"
#include "runoptions.h"

#include <string>

// The generator of uniform deviates.
struct uniformstream {
    // Negative: the table is filled from it at the next draw. Positive: state of the congruence.
    int64 idum = 0;
    // Table and last value of the shuffle. 0: the table was never filled.
    int64 iv[32] = {};
    int64 iy = 0;
};

// The stream: the working value idum and what the deviates keep between calls. One record for
// each simulation.
struct randomstream : uniformstream {
    // Spare normal deviate.
    int64 iset = 0;
    double gset = 0;
    // Saved values of the gamma methods.
    double gammab = 0, gammah = 0;                                                   // shape > 1
    double gammaa = 0, gammap = 0, gammac = 0, gammauf = 0, gammavr = 0, gammad = 0; // shape < 1
    // Saved values of the beta deviate.
    bool betaswap = false;
    double betac = 0, betat = 0, betah = 0, betaf = 0, betad = 0;
};

// The seed, free-form: that of the run, and in the folder of a cycle that of a program.
constexpr const char *seedfile = "Seed.txt";
// The seed of the last run, kept when it began.
constexpr const char *oldseedfile = "SeedOld.txt";
void writeseed(const std::string &path, int64 seed);

// The number in Seed.txt of the working directory, which must exist, or with the option of a repeated
// run the seed of the last one; warns as warnofseed does.
int64 readseed(const runoptions &options = {});
// The stream of a run with that seed, as it begins: the next draw fills the table from idum.
randomstream firststream(int64 seed);

// Reads Seed.txt, keeps its number in SeedOld.txt, and leaves a new negative seed in Seed.txt and in
// idum: the next draw fills the table from it.
void initiateseed(randomstream &random, const runoptions &options = {});
// Warns of a seed that isn't negative: all of them give one and the same stream.
void warnofseed(int64 seed, const runoptions &options);

// A generator with its table filled from a seed. Declared free of side effects, so that a loop of
// draws keeps idum and iy in registers although this call stands in it: through memory a draw
// takes 1.7 times as long.
[[gnu::const, gnu::cold, gnu::noinline]] uniformstream filledstream(int64 seed);

// Uniform deviate on (0, 1), at most 0.9999998800000043.
inline double ran1(randomstream &random)
{
    if (random.idum <= 0 || random.iy == 0) [[unlikely]]
        static_cast<uniformstream &>(random) = filledstream(random.idum);
    // 16807 x idum modulo 2^31 - 1, by folding: 2^31 = 1 modulo 2^31 - 1. The product is below
    // 2^46, so one fold leaves at most 2^31 - 1 + 2^15, one subtraction more the remainder.
    // Divisions, as in Schrage's form, take twice the time and give the same numbers.
    const std::uint64_t product = 16807ULL * static_cast<std::uint64_t>(random.idum);
    std::uint64_t state = (product & 2147483647ULL) + (product >> 31);
    state = state >= 2147483647ULL ? state - 2147483647ULL : state;
    random.idum = static_cast<int64>(state);
    const int64 j = random.iy >> 26; // iy / 67108864: 0 to 31
    random.iy = random.iv[j];
    random.iv[j] = random.idum;
    const double u = static_cast<double>(random.iy) * 4.656612873077393e-10; // 2^-31, exactly
    return u < 0.9999998800000043 ? u : 0.9999998800000043;
}

// Standard normal deviate, by the polar method (Marsaglia and Bray 1964). Draws in pairs.
double gasdev(randomstream &random);

// Random permutation of 1 to n in order(1) to order(n): n - 1 draws, none for n < 2.
// order points to the entry of index 1.
void randomorder(int64 *order, int64 n, randomstream &random);
void randomorder(array1<int64> &order, int64 n, randomstream &random);

// Gamma deviate of shape s and scale b. first: the values that depend on s are worked out anew.
// Best (1978) for s > 1, Kennedy and Gentle's switching method for s < 1. Stops: 120001 for a
// shape not above 0 or exactly 1, 120003 for one that is too small.
double random_gamma(randomstream &random, double s, double b, bool first);
// Chi-squared deviate with ndf degrees of freedom.
double random_chisq(randomstream &random, double ndf, bool first);
// Beta deviate of shapes aa and bb (Cheng 1978). Stop 130001 for a shape not above 0.
double random_beta(randomstream &random, double aa, double bb, bool first);
