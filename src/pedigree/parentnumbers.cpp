#include "pedigree/parentnumbers.h"

#include "pedigree/matings.h"
#include "stops.h"

#include <algorithm>
#include <cstdio>

namespace
{
// What can be wrong with the parents of a generation: the message, its width, the stop.
struct parentfault {
    const char *message;
    int64 width, code;
};
constexpr parentfault conflictingnumbers{
    "  ERROR: There is a conflict in the number of parents for generation ", 69, 110016};
constexpr parentfault fewselfed{"ERROR: Not enough plants to be selfed for generation", 52, 110017};
constexpr parentfault fewmaleplants{"ERROR: Not enough male plants for generation", 44, 110019};
constexpr parentfault fewfemaleplants{"ERROR: Not enough female plants for generation", 46, 110020};
constexpr parentfault fewcrossed{"ERROR: Not enough plants to be crossed for generation", 53,
                                 110021};
constexpr parentfault noparents{"ERROR: Number of sires and dams must be non-null for generation",
                                63, 110022};
constexpr parentfault fewsires{"ERROR: Not enough sires for generation", 38, 110023};
constexpr parentfault fewdams{"ERROR: Not enough dams for generation", 37, 110024};

[[noreturn]] void stopfor(const parentfault &fault, int64 gen)
{
    textline line;
    puta(line, fault.message, fault.width);
    puti(line, gen, 5);
    printline(line);
    stopwithcode(fault.code);
}

// The same, behind the two numbers on standard error.
[[noreturn]] void stopforfew(const parentfault &fault, int64 gen, int64 asked, int64 there)
{
    std::fflush(stdout);
    std::fprintf(
        stderr, "ERROR: parents from generation %lld: %lld are asked for, there are %lld\n",
        static_cast<long long>(gen), static_cast<long long>(asked), static_cast<long long>(there));
    stopfor(fault, gen);
}

void checkselfedplants(const state &s, int64 j)
{
    if (s.pop.ndaminthisgen(j) > 0 || s.pop.nsireinthisgen(j) > 0 || s.pop.nrandparinthisgen(j) > 0)
        stopfor(conflictingnumbers, j);
    if (s.pop.nselfedparinthisgen(j) > s.pedi.nindivinthisgen(j))
        stopforfew(fewselfed, j, s.pop.nselfedparinthisgen(j), s.pedi.nindivinthisgen(j));
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
    if (respectgender && s.pop.nsireinthisgen(j) > s.pedi.nmalinthisgen(j))
        stopforfew(fewmaleplants, j, s.pop.nsireinthisgen(j), s.pedi.nmalinthisgen(j));
    if (respectgender && s.pop.ndaminthisgen(j) > s.pedi.nfeminthisgen(j))
        stopforfew(fewfemaleplants, j, s.pop.ndaminthisgen(j), s.pedi.nfeminthisgen(j));
    if (!respectgender && s.pop.nrandparinthisgen(j) > s.pedi.nindivinthisgen(j))
        stopforfew(fewcrossed, j, s.pop.nrandparinthisgen(j), s.pedi.nindivinthisgen(j));
    if (s.pop.nrandparinthisgen(j) > 0 &&
        std::min(s.pop.nrandparinthisgen(j), s.pedi.nindivinthisgen(j + 1)) < 2)
        stopforrandommating(j);
}

void checkanimals(const state &s, int64 j)
{
    if (s.pop.nsireinthisgen(j) == 0 && s.pop.ndaminthisgen(j) == 0) stopfor(noparents, j);
    if (s.pop.nsireinthisgen(j) > s.pedi.nmalinthisgen(j))
        stopforfew(fewsires, j, s.pop.nsireinthisgen(j), s.pedi.nmalinthisgen(j));
    if (s.pop.ndaminthisgen(j) > s.pedi.nfeminthisgen(j))
        stopforfew(fewdams, j, s.pop.ndaminthisgen(j), s.pedi.nfeminthisgen(j));
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

void checkparentsavailable(const state &s, int64 parentgender, int64 currentgen, int64 npargender,
                           int64 navailable)
{
    if (npargender >= 1 && npargender <= navailable) return;
    const int64 gen = currentgen - 1;
    if (s.pop.plantbreedonoff) {
        if (s.pop.nselfedparinthisgen(gen) > 0) stopforfew(fewselfed, gen, npargender, navailable);
        if (s.pop.nrandparinthisgen(gen) > 0) stopforfew(fewcrossed, gen, npargender, navailable);
        stopforfew(parentgender == 1 ? fewmaleplants : fewfemaleplants, gen, npargender,
                   navailable);
    }
    stopforfew(parentgender == 1 ? fewsires : fewdams, gen, npargender, navailable);
}
