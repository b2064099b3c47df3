#include "runplan.h"

#include "words.h"

#include <algorithm>
#include <unistd.h>

namespace
{
double thousands(const state &s, int64 firstgen, int64 lastgen)
{
    double n = 0;
    for (int64 g = firstgen; g <= lastgen; ++g)
        n += static_cast<double>(s.pop.nindivinthisgen(g)) / 1000;
    return n;
}
} // namespace

void planprogress(state &s)
{
    // A line of its own on the terminal of the report would run into it.
    s.progress.inplace = isatty(STDERR_FILENO);
    s.progress.shown = s.options.progress || (s.progress.inplace && !isatty(STDOUT_FILENO));
    const auto nchrom = static_cast<double>(s.founders.nchrom);
    const int64 first = s.run.specstartgen, last = s.run.specendgen;
    const double burnin = thousands(s, first, std::min(last, s.pop.ngen));
    const double selected = thousands(s, std::max(first, s.pop.ngen + 1), last);
    const bool predicted = s.pop.ngensel > 0 && s.selection.selontbvyes1no0 == 0;
    const double founders = first == 1 ? nchrom : 0;
    const double evaluation = predicted ? 3 * static_cast<double>(s.traits.ntraits) : 0.2;
    beginprogress(s.progress,
                  {{"founders", 2 * founders},
                   {"haplotypes", founders},
                   {"gene drop of the burn-in", nchrom * burnin},
                   {"values of the burn-in", 0.2 * nchrom * burnin},
                   {"selection", nchrom * selected * (1 + evaluation)},
                   {"chips", 0.2 * nchrom * (burnin + selected)},
                   {"sequence", s.run.fullseqoutonoff ? nchrom * (burnin + selected) : 0}});
}

void tellpart(state &s, runpart part, int64 i, int64 n, const std::string &where)
{
    if (!s.progress.shown) return;
    tellprogress(s.progress, static_cast<std::size_t>(part),
                 static_cast<double>(i - 1) / static_cast<double>(std::max<int64>(n, 1)), where);
}
