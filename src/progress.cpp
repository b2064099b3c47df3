#include "progress.h"

#include <algorithm>
#include <cstdio>

namespace
{
// Seconds as 7s, 3m05s, 2h04m.
std::string durationtext(double seconds)
{
    const auto whole = static_cast<long long>(seconds + 0.5);
    char text[40];
    if (whole < 60)
        std::snprintf(text, sizeof text, "%llds", whole);
    else if (whole < 3600)
        std::snprintf(text, sizeof text, "%lldm%02llds", whole / 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%lldh%02lldm", whole / 3600, whole % 3600 / 60);
    return text;
}

double sharedone(const progressline &progress, std::size_t part, double share)
{
    double all = 0, done = 0;
    for (std::size_t k = 0; k < progress.parts.size(); ++k) {
        all += progress.parts[k].work;
        if (k < part) done += progress.parts[k].work;
    }
    done += progress.parts[part].work * std::clamp(share, 0.0, 1.0);
    return all > 0 ? done / all : 0;
}
} // namespace

void beginprogress(progressline &progress, std::vector<progresspart> parts)
{
    progress.parts = std::move(parts);
    progress.start = progress.last = std::chrono::steady_clock::now();
}

void tellprogress(progressline &progress, std::size_t part, double share, const std::string &where)
{
    if (!progress.shown || part >= progress.parts.size()) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - progress.last < std::chrono::milliseconds(progress.inplace ? 100 : 10000)) return;
    progress.last = now;
    const double gone = std::chrono::duration<double>(now - progress.start).count();
    const double done = sharedone(progress, part, share);
    char percent[16];
    std::snprintf(percent, sizeof percent, "%3.0f %%", 100 * done);
    std::string text = std::string(percent) + "  " + progress.parts[part].name + ", " + where +
                       "  " + durationtext(gone) + " gone";
    if (done > 0.01) text += ", about " + durationtext(gone * (1 - done) / done) + " left";
    if (progress.inplace)
        std::fprintf(stderr, "\r\033[K%s\r", text.c_str());
    else
        std::fprintf(stderr, "%s\n", text.c_str());
    std::fflush(stderr);
}

void endprogress(progressline &progress)
{
    if (progress.shown && progress.inplace) std::fputs("\r\033[K", stderr);
    progress.shown = false;
}
