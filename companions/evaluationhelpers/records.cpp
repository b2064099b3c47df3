#include "evaluationhelpers/records.h"

#include "stops.h"
#include "words.h"

void stopifnotwholeline(const infile &in, int64 firstline, const std::string &wanted)
{
    const bool toofew = in.linenumber() != firstline;
    if (toofew || !trim(in.rest()).empty())
        ioerror(in.path(), "line " + numbertext(firstline) + ": " + (toofew ? "fewer" : "more") +
                               " values than wanted: " + wanted);
}

void stopifmorelines(infile &in, int64 n)
{
    while (in.nextrecord())
        if (!trim(in.line()).empty())
            in.complain("more than the " + numbertext(n) + " records that are announced");
}
