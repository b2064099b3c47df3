#include "haplotypes/crossingfiles.h"

#include "stops.h"

#include <cstdio>

void crossingfiles::open(int64 chrom, int64 firstindiv, int64 newidbefore, filemarks &marks)
{
    tracking.openandkeep(trackingfile(chrom), 2 * (firstindiv - 1), {{newidbefore}, 2}, &marks);
    counts.openandkeep(recombinationcounts, firstindiv - 1, {{firstindiv - 1}}, &marks);
}

void crossingfiles::writegamete(int64 newid, int64 strand, int64 ncrossings,
                                const array1<int64> &locations)
{
    puti(line, newid, 20);
    puti(line, strand, 4);
    puti(line, ncrossings, 10);
    for (int64 c = 1; c <= ncrossings; ++c) puti(line, locations(c), 20);
    tracking.writeline(line);
}

void crossingfiles::writecounts(int64 individ, int64 fromsire, int64 fromdam)
{
    for (const int64 value : {individ, fromsire, fromdam}) putfree(line, value);
    counts.writeline(line);
}

void crossingfiles::close()
{
    tracking.close();
    counts.close();
}

void readrecombcounts(state &s, int64 n)
{
    infile in(recombinationcounts, author::system);
    for (int64 i = 1; i <= n; ++i) {
        in.record();
        in.identifier(i, "individual");
        for (int64 side = 1; side <= 2; ++side) s.haplo.recombcount(i, side) = in.integer();
    }
}

array1<int64> readhighestcrossings(int64 nchrom, const std::string &path)
{
    array1<int64> highest(nchrom);
    infile in(path, author::system);
    int64 chrom = 0;
    for (int64 &site : highest) {
        in.record();
        in.identifier(++chrom, "chromosome");
        site = in.integer();
    }
    in.stopifmore();
    return highest;
}

void writehighestcrossings(const array1<int64> &highest, int64 nchrom)
{
    // Renamed when it is complete: a run that goes on and fails here is repeated from the old ones.
    const std::string next = std::string(highestcrossingsfile) + ".new";
    outfile out(next);
    for (int64 h = 1; h <= nchrom; ++h) out.writeline(freeline(h, highest(h)));
    out.close();
    if (std::rename(next.c_str(), highestcrossingsfile) != 0)
        ioerrno(highestcrossingsfile, "can't write");
}
