#include "checkrun/statements.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace checkrun
{
void statements::violate(const place &where, std::string_view what, const std::string &detail)
{
    constexpr int64 shown = 5;
    ++nviolated;
    const int64 n = ++ofkind[std::string(where.file) + '\n' + std::string(what)];
    if (n > shown + 1) return;
    std::string text(where.file);
    if (where.at > 0) text += std::string(", ") + where.unit + ' ' + std::to_string(where.at);
    text += ": " + std::string(what);
    violations.push_back(text + (n > shown ? ": and more of this kind" : detail));
}

bool statements::holds(bool ok, const place &where, std::string_view what)
{
    ++nchecked;
    if (!ok) violate(where, what, "");
    return ok;
}

bool statements::is(const place &where, std::string_view what, double expected, double found,
                    double tolerance)
{
    ++nchecked;
    const bool ok = std::fabs(found - expected) <= tolerance;
    char detail[90];
    if (!ok) {
        std::snprintf(detail, sizeof detail, ": expected %.12g, found %.12g", expected, found);
        violate(where, what, detail);
    }
    return ok;
}

void statements::leaveout(const std::string &what, const std::string &why)
{
    const std::string text = what + ": " + why;
    if (std::find(left.begin(), left.end(), text) == left.end()) left.push_back(text);
}

std::string statements::report() const
{
    std::string text;
    for (const std::string &line : violations) text += "VIOLATED " + line + '\n';
    for (const std::string &line : left) text += "left out " + line + '\n';
    return text + std::to_string(nchecked) + " statements checked, " + std::to_string(nviolated) +
           " violated\n";
}
} // namespace checkrun
