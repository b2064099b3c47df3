#include "values/qtnsums.h"

// Each loop is built twice, and the processor's wider registers are used where it has them: half
// the time, and the same bits, since no operation is contracted or put in another order.
#if defined(__x86_64__) && defined(__GLIBC__) && !defined(__clang__) &&                            \
    !defined(__SANITIZE_ADDRESS__)
#define SOLVANTO_WIDEREGISTERS __attribute__((target_clones("avx2", "default")))
#else
#define SOLVANTO_WIDEREGISTERS
#endif

SOLVANTO_WIDEREGISTERS
void widencodes(const int8 *__restrict codes, double *__restrict x)
{
    for (int64 k = 0; k < sumtile; ++k) x[k] = static_cast<double>(codes[k]);
}

SOLVANTO_WIDEREGISTERS
void adddeviations(double *__restrict sum, const double *__restrict x, double effect, double f)
{
    const double twof = 2 * f;
    for (int64 k = 0; k < sumtile; ++k) sum[k] += effect * (x[k] - twof);
}

SOLVANTO_WIDEREGISTERS
void adddominance(double *__restrict sum, const double *__restrict x, double d, double f)
{
    const double twof = 2 * f, constant = 2 * (f * f) * d;
    for (int64 k = 0; k < sumtile; ++k) sum[k] += -(d * x[k]) * ((x[k] - 1) - twof) - constant;
}
