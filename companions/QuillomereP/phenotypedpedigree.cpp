#include "QuillomereP/phenotypedpedigree.h"

#include "evaluationhelpers/records.h"
#include "stops.h"
#include "words.h"

#include <cmath>

namespace
{
// Index of an animal among the first n, 0 if it isn't there.
int64 indexof(const phenotypedpedigree &p, int64 n, int64 number)
{
    if (number >= 1 && number <= n && p.number(number) == number) return number; // mostly 1..n
    const int64 *const end = p.number.begin() + n;
    const int64 *const found = std::lower_bound(p.number.begin(), end, number);
    return found != end && *found == number ? found - p.number.begin() + 1 : 0;
}

int64 readparent(infile &in, const phenotypedpedigree &p, int64 i)
{
    const int64 number = in.integer();
    const int64 index = number == 0 ? 0 : indexof(p, i - 1, number);
    if (number != 0 && index == 0)
        in.complain("parent " + numbertext(number) + " does not stand on an earlier line");
    return index;
}

void readanimal(infile &in, phenotypedpedigree &p, int64 i, double missingvalue)
{
    const int64 line = in.linenumber();
    p.number(i) = in.integer();
    if (p.number(i) <= (i > 1 ? p.number(i - 1) : 0))
        in.complain("animal " + numbertext(p.number(i)) + ": the numbers must ascend from 1");
    p.sire(i) = readparent(in, p, i);
    p.dam(i) = readparent(in, p, i);
    const int64 code = in.integer();
    if (code != 1 && code != 2) in.complain("code 1 or 2 is wanted, not " + numbertext(code));
    if (code == 2 && p.sire(i) != p.dam(i))
        in.complain("a doubled haploid has the same animal as sire and dam");
    p.doubledhaploid(i) = code == 2;
    p.phenotype(i) = in.anyreal();
    checkwholeline(in, line, "animal, sire, dam, code and phenotype");
    if (!std::isfinite(p.phenotype(i))) in.complain("the phenotype is not a finite number");
    p.observed(i) = p.phenotype(i) != missingvalue;
    p.nobserved += p.observed(i);
}
} // namespace

phenotypedpedigree readphenotypedpedigree(const std::string &filename, double missingvalue)
{
    phenotypedpedigree p;
    p.n = countlines(filename);
    for (array1<int64> *a : {&p.number, &p.sire, &p.dam}) a->allocate(p.n, 0);
    p.doubledhaploid.allocate(p.n, 0);
    p.observed.allocate(p.n, 0);
    p.phenotype.allocate(p.n, 0.0);

    infile in(filename);
    int64 i = 0;
    while (in.nextrecord())
        if (!trim(in.line()).empty()) readanimal(in, p, ++i, missingvalue);
    if (p.nobserved == 0) ioerror(filename, "no animal has a phenotype");
    return p;
}
