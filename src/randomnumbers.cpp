#include "randomnumbers.h"

#include "files.h"
#include "shell.h"
#include "stops.h"

#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace
{

// Seed.txt holds the last run's own seed where the run was killed before it wrote the next one.
int64 seedoflastrun(int64 seed)
{
    if (!pathexists(oldseedfile))
        ioerror(oldseedfile, "there is none: no run in this folder can be repeated");
    infile in(oldseedfile);
    in.record();
    const int64 last = in.integer();
    if (seed != last && seed != firststream(last).idum)
        ioerror(seedfile, "has been changed since the last run, whose seed was " +
                              std::to_string(last) +
                              ": write the seed that is meant, and run "
                              "without --repeat");
    return last;
}

// A crash leaves the old seed or the new one, whole.
void replaceseed(const std::string &path, int64 seed)
{
    const std::string next = path + ".new";
    writeseed(next, seed);
    if (fsync(openchecked(next, O_RDONLY)) != 0) ioerrno(next, "can't write");
    if (std::rename(next.c_str(), path.c_str()) != 0) ioerrno(path, "can't write");
}
} // namespace

void warnofseed(int64 seed, const runoptions &options)
{
    if (seed >= 0)
        warn(options, seedfile, 1,
             "the seed is " + std::to_string(seed) +
                 ": 0 and all positive seeds give one and the same stream of random numbers; write "
                 "a negative one, such as " +
                 std::to_string(seed > 0 ? -seed : -1234567));
}

int64 readseed(const runoptions &options)
{
    if (!pathexists(seedfile))
        ioerror(seedfile, "there is none in this folder: go to the folder of "
                          "the specification, or write a negative integer into the file");
    infile in(seedfile);
    if (!in.nextrecord()) ioerror(seedfile, "it is empty: write a negative integer into it");
    int64 seed = in.integer();
    if (options.repeat) seed = seedoflastrun(seed);
    warnofseed(seed, options);
    return seed;
}

randomstream firststream(int64 seed)
{
    randomstream random;
    random.idum = seed;
    ran1(random);
    random.idum = -random.idum;
    return random;
}

void initiateseed(randomstream &random, const runoptions &options)
{
    const int64 seed = readseed(options);
    replaceseed(oldseedfile, seed);
    random = firststream(seed);
    replaceseed(seedfile, random.idum);
}

void writeseed(const std::string &path, int64 seed)
{
    outfile out(path);
    out.writeline(freeline(seed));
    out.close();
}

uniformstream filledstream(int64 seed)
{
    uniformstream filled;
    int64 state = -seed > 1 ? -seed : 1;
    for (int64 j = 40; j >= 1; --j) {
        const int64 k = state / 127773; // Schrage's form: a seed may lie outside the modulus
        state = 16807 * (state - k * 127773) - 2836 * k;
        if (state < 0) state += 2147483647;
        if (j <= 32) filled.iv[j - 1] = state;
    }
    filled.idum = state;
    filled.iy = filled.iv[0];
    return filled;
}

double gasdev(randomstream &random)
{
    if (random.idum < 0) random.iset = 0;
    if (random.iset == 1) {
        random.iset = 0;
        return random.gset;
    }
    double u, v, rsq;
    do {
        u = 2 * ran1(random) - 1;
        v = 2 * ran1(random) - 1;
        rsq = u * u + v * v;
    } while (rsq >= 1 || rsq == 0);
    const double fac = std::sqrt(-2 * std::log(rsq) / rsq);
    random.gset = u * fac;
    random.iset = 1;
    return v * fac;
}

void randomorder(int64 *order, int64 n, randomstream &random)
{
    for (int64 i = 1; i <= n; ++i) order[i - 1] = i;
    for (int64 i = n; i >= 2; --i) {
        const double w = ran1(random);
        const int64 j = static_cast<int64>(static_cast<double>(i) * w + 1);
        if (j < i) std::swap(order[i - 1], order[j - 1]);
    }
}

void randomorder(array1<int64> &order, int64 n, randomstream &random)
{
    randomorder(order.data(), n, random);
}

namespace
{
// Shape above 1.
double random_gamma1(randomstream &random, double s, bool first)
{
    if (s <= 1) {
        printline("IMPERMISSIBLE SHAPE PARAMETER VALUE");
        stopwithcode(120001);
    }
    if (first) {
        random.gammab = s - 1;
        random.gammah = std::sqrt(3 * s - 0.75);
    }
    const double b = random.gammab;
    for (;;) {
        double r = ran1(random);
        const double g = r - r * r;
        if (g <= 0) continue;
        const double f = (r - 0.5) * random.gammah / std::sqrt(g);
        const double x = b + f;
        if (x <= 0) continue;
        r = ran1(random);
        const double d = 64 * g * ((r * g) * (r * g));
        if (d <= 0) return x;
        if (d * x < x - 2 * f * f) return x;
        if (std::log(d) < 2 * (b * std::log(x / b) - f)) return x;
    }
}

// Shape below 1.
double random_gamma2(randomstream &random, double s, bool first)
{
    constexpr double eps = 2.220446049250313e-16;
    if (first) {
        random.gammaa = 1 - s;
        random.gammap = random.gammaa / (random.gammaa + s * std::exp(-random.gammaa));
        if (s < eps) {
            printline("SHAPE PARAMETER VALUE TOO SMALL" + freeline(s));
            stopwithcode(120003);
        }
        random.gammac = 1 / s;
        random.gammauf = random.gammap * std::pow(eps / random.gammaa, s);
        random.gammavr = 1 - eps;
        random.gammad = random.gammaa * std::log(random.gammaa);
    }
    const double a = random.gammaa;
    for (;;) {
        double r = ran1(random);
        if (r >= random.gammavr) continue;
        double x, w;
        if (r > random.gammap) {
            x = a - std::log((1 - r) / (1 - random.gammap));
            w = a * std::log(x) - random.gammad;
        } else if (r > random.gammauf) {
            x = a * std::pow(r / random.gammap, random.gammac);
            w = x;
        } else {
            return 0;
        }
        r = ran1(random);
        if (1 - r > w || r <= 0) return x;
        if (r * (w + 1) >= 1) continue;
        if (-std::log(r) <= w) continue;
        return x;
    }
}
} // namespace

double random_gamma(randomstream &random, double s, double b, bool first)
{
    if (s <= 0) {
        printline("SHAPE PARAMETER VALUE MUST BE POSITIVE");
        stopwithcode(120001);
    }
    return b * (s >= 1 ? random_gamma1(random, s, first) : random_gamma2(random, s, first));
}

double random_chisq(randomstream &random, double ndf, bool first)
{
    return random_gamma(random, 0.5 * ndf, 2, first);
}

double random_beta(randomstream &random, double aa, double bb, bool first)
{
    // Single-precision limits, and ln 4 to the digits of a single-precision number.
    constexpr double vsmall = 1.1754943508222875e-38, vlarge = 3.4028234663852886e+38;
    constexpr double aln4 = 1.3862943649291992;
    if (aa <= 0 || bb <= 0) {
        printline("IMPERMISSIBLE SHAPE PARAMETER VALUE(S)");
        stopwithcode(130001);
    }
    if (first) {
        double a = aa, b = bb;
        random.betaswap = b > a;
        if (random.betaswap) std::swap(a, b);
        random.betad = a / b;
        random.betaf = a + b;
        if (b > 1) {
            random.betah = std::sqrt((2 * a * b - random.betaf) / (random.betaf - 2));
            random.betat = 1;
        } else {
            random.betah = b;
            random.betat = 1 / (1 + std::pow(a / (vlarge * b), b));
        }
        random.betac = a + random.betah;
    }
    const double d = random.betad, f = random.betaf;
    double deviate;
    for (;;) {
        const double r = ran1(random);
        const double x = ran1(random);
        const double s = r * r * x;
        if (r < vsmall || s <= 0) continue;
        if (r < random.betat) {
            const double l = std::log(r / (1 - r)) / random.betah;
            const double y = d * std::exp(l);
            const double z = random.betac * l + f * std::log((d + 1) / (y + 1)) - aln4;
            if (s - 1 > z) {
                if (s - s * z > 1) continue;
                if (std::log(s) > z) continue;
            }
            deviate = y / (y + 1);
        } else {
            if (4 * s > std::pow(1 + 1 / d, f)) continue;
            deviate = 1;
        }
        break;
    }
    return random.betaswap ? 1 - deviate : deviate;
}
