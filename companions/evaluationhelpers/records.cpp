#include "evaluationhelpers/records.h"

#include "stops.h"
#include "words.h"

#include <algorithm>

namespace
{
[[noreturn]] void complainaboutnumber(const infile &in, int64 line, const char *what,
                                      const std::string &wanted)
{
    ioerror(in.path(), "line " + numbertext(line) + ": " + what + " values than wanted: " + wanted);
}
} // namespace

void checkwholeline(const infile &in, int64 firstline, const std::string &wanted)
{
    if (in.linenumber() != firstline) complainaboutnumber(in, firstline, "fewer", wanted);
    if (!trim(in.rest()).empty()) complainaboutnumber(in, firstline, "more", wanted);
}

void stopifmorelines(infile &in, int64 n)
{
    while (in.nextrecord())
        if (!trim(in.line()).empty())
            in.complain("more than the " + numbertext(n) + " records that are announced");
}

int64 readgenotypes(infile &in, int64 missingcode, array1<int8> &genotypes)
{
    in.record();
    const int64 line = in.linenumber();
    const int64 id = in.integer(), n = genotypes.size();
    const std::string wanted = "an individual and " + numbertext(n) + " genotypes";
    // Noticed before the number of the next individual is taken for a genotype.
    if (std::ssize(in.rest()) < 2 * n) complainaboutnumber(in, line, "fewer", wanted);
    in.alleles(genotypes.data(), n);
    checkwholeline(in, line, wanted);
    int highest = 0; // as unsigned bytes: one vectorised pass over the lines without fault
    for (const int8 value : genotypes)
        highest = std::max<int>(highest, static_cast<std::uint8_t>(value));
    if (highest > 2)
        for (const int8 value : genotypes)
            if ((value < 0 || value > 2) && value != missingcode)
                in.complain("genotype " + numbertext(value) + " is neither 0, 1, 2 nor the " +
                            "code of a missing one, " + numbertext(missingcode));
    return id;
}
