#include "macs/history.h"

#include <algorithm>

namespace macs
{
sizehistory::sizehistory(std::vector<sizechange> changes)
{
    std::sort(changes.begin(), changes.end(),
              [](const sizechange &a, const sizechange &b) { return a.time < b.time; });
    if (changes.empty() || changes.front().time > 0) changes.insert(changes.begin(), sizechange{});
    for (const sizechange &change : changes) {
        epoch next;
        next.time = change.time;
        next.pairrate = 2 / change.size;
        if (!epochs.empty()) {
            const epoch &last = epochs.back();
            next.tau = last.tau + (change.time - last.time) * last.pairrate;
        }
        epochs.push_back(next);
    }
}

double sizehistory::tauattime(double time) const
{
    auto e = std::upper_bound(epochs.begin(), epochs.end(), time,
                              [](double t, const epoch &x) { return t < x.time; });
    --e;
    return e->tau + (time - e->time) * e->pairrate;
}

double sizehistory::timeattau(double tau) const
{
    auto next = std::upper_bound(epochs.begin(), epochs.end(), tau,
                                 [](double t, const epoch &x) { return t < x.tau; });
    const epoch &e = *(next - 1);
    const double time = e.time + (tau - e.tau) / e.pairrate;
    // Rounding must not carry it over the end of its epoch: branch lengths would turn negative.
    return next == epochs.end() ? time : std::min(time, next->time);
}
} // namespace macs
