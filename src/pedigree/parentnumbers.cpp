#include "pedigree/parentnumbers.h"

#include "pedigree/matings.h"
#include "stops.h"

#include <algorithm>

namespace
{
[[noreturn]] void stopforgeneration(const char *message, int64 width, int64 gen, int64 code)
{
    textline line;
    puta(line, message, width);
    puti(line, gen, 5);
    printline(line);
    stopwithcode(code);
}

[[noreturn]] void notenoughselfed(int64 gen)
{
    stopforgeneration("ERROR: Not enough plants to be selfed for generation", 52, gen, 110017);
}
[[noreturn]] void notenoughcrossed(int64 gen)
{
    stopforgeneration("ERROR: Not enough plants to be crossed for generation", 53, gen, 110021);
}
[[noreturn]] void notenoughmaleplants(int64 gen)
{
    stopforgeneration("ERROR: Not enough male plants for generation", 44, gen, 110019);
}
[[noreturn]] void notenoughfemaleplants(int64 gen)
{
    stopforgeneration("ERROR: Not enough female plants for generation", 46, gen, 110020);
}
[[noreturn]] void notenoughsires(int64 gen)
{
    stopforgeneration("ERROR: Not enough sires for generation", 38, gen, 110023);
}
[[noreturn]] void notenoughdams(int64 gen)
{
    stopforgeneration("ERROR: Not enough dams for generation", 37, gen, 110024);
}

void checkselfedplants(const state &s, int64 j)
{
    if (s.pop.ndaminthisgen(j) > 0 || s.pop.nsireinthisgen(j) > 0 || s.pop.nrandparinthisgen(j) > 0)
        stopforgeneration("  ERROR: There is a conflict in the number of parents for generation ",
                          69, j, 110016);
    if (s.pop.nselfedparinthisgen(j) > s.pedi.nindivinthisgen(j)) notenoughselfed(j);
}

void checkcrossedplants(const state &s, int64 j)
{
    const bool respectgender = s.pop.plantsbygender;
    if (s.pop.nsireinthisgen(j) == 0 && s.pop.ndaminthisgen(j) == 0 &&
        s.pop.nrandparinthisgen(j) == 0) {
        if (j <= s.pop.ngen - 1) {
            printfree(" ERROR: Number of parents cannot be null for generation", j);
            stopwithcode(110018);
        }
        textline line;
        puta(line, " NOTE: Numbers of parents in generation", 40);
        puti(line, j, 5);
        puta(line, " have not been provided", 23);
        printline(line);
    }
    if (respectgender && s.pop.nsireinthisgen(j) > s.pedi.nmalinthisgen(j)) notenoughmaleplants(j);
    if (respectgender && s.pop.ndaminthisgen(j) > s.pedi.nfeminthisgen(j)) notenoughfemaleplants(j);
    if (!respectgender && s.pop.nrandparinthisgen(j) > s.pedi.nindivinthisgen(j))
        notenoughcrossed(j);
    if (s.pop.nrandparinthisgen(j) > 0 &&
        std::min(s.pop.nrandparinthisgen(j), s.pedi.nindivinthisgen(j + 1)) < 2)
        stopforrandommating(j);
}

void checkanimals(const state &s, int64 j)
{
    if (s.pop.nsireinthisgen(j) == 0 && s.pop.ndaminthisgen(j) == 0)
        stopforgeneration("ERROR: Number of sires and dams must be non-null for generation", 63, j,
                          110022);
    if (s.pop.nsireinthisgen(j) > s.pedi.nmalinthisgen(j)) notenoughsires(j);
    if (s.pop.ndaminthisgen(j) > s.pedi.nfeminthisgen(j)) notenoughdams(j);
}
} // namespace

void checknbofselectedindiv(state &s)
{
    for (int64 j = std::max<int64>(1, s.run.specstartgen - 1); j < s.run.specendgen; ++j) {
        if (!s.pop.plantbreedonoff)
            checkanimals(s, j);
        else if (s.pop.nselfedparinthisgen(j) > 0)
            checkselfedplants(s, j);
        else
            checkcrossedplants(s, j);
    }
}

void stopiftoofewparents(const state &s, int64 parentgender, int64 currentgen, int64 npargender,
                         int64 navailable)
{
    if (npargender >= 1 && npargender <= navailable) return;
    const int64 gen = currentgen - 1;
    if (s.pop.plantbreedonoff) {
        if (s.pop.nselfedparinthisgen(gen) > 0) notenoughselfed(gen);
        if (s.pop.nrandparinthisgen(gen) > 0) notenoughcrossed(gen);
        if (parentgender == 1) notenoughmaleplants(gen);
        notenoughfemaleplants(gen);
    }
    if (parentgender == 1) notenoughsires(gen);
    notenoughdams(gen);
}
