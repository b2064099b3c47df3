#include "Corvalind/candidates.h"

#include "evaluationhelpers/progress.h"
#include "evaluationhelpers/records.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <cmath>

namespace
{
constexpr double ridge = 1e-10;    // added to the diagonal, of its mean
constexpr double asymmetry = 1e-6; // allowed, of the mean diagonal: digits of a text file
constexpr const char *estimatefile = "Ebv.txt", *readinfile = "EBVsReadIn1.txt";

// Record i becomes column i.
void readrelationships(const corvalindspec &spec, candidates &c)
{
    infile in(spec.relationshipfile);
    c.indiv.allocate(c.n);
    c.relationship.allocate(c.n, c.n);
    const std::string wanted = "an individual and " + numbertext(c.n) +
                               " relationships, one for each candidate that " + spec.file +
                               " announces";
    for (int64 i = 1; i <= c.n; ++i) {
        in.record();
        const int64 line = in.linenumber();
        c.indiv(i) = in.integer();
        in.anyreals(c.relationship.column(i), c.n);
        checkwholeline(in, line, wanted);
        for (int64 j = 1; j <= c.n; ++j)
            if (!std::isfinite(c.relationship(j, i)))
                in.complain("relationship " + numbertext(j) + " is not a finite number");
    }
    stopifmorelines(in, c.n);
}

// Makes the matrix symmetric to the last digit.
void preparerelationships(candidates &c)
{
    for (int64 i = 1; i <= c.n; ++i)
        c.meandiagonal += c.relationship(i, i) / static_cast<double>(c.n);
    if (!(c.meandiagonal > 0)) ioerror(c.relationshipfile, "the diagonal is not positive");
    for (int64 i = 1; i <= c.n; ++i) {
        for (int64 j = 1; j < i; ++j) {
            double &here = c.relationship(j, i), &there = c.relationship(i, j);
            if (std::fabs(here - there) > asymmetry * c.meandiagonal)
                ioerror(c.relationshipfile, "is not symmetric: records " + numbertext(j) + " and " +
                                                numbertext(i) + " give their relationship as " +
                                                shortnumber(there) + " and " + shortnumber(here));
            here = there = (here + there) / 2;
        }
        c.relationship(i, i) += ridge * c.meandiagonal;
    }
}

// The individual of record i of a file must be that of the relationship file.
void stopifother(const infile &in, const candidates &c, const std::string &relationshipfile,
                 int64 i, int64 indiv)
{
    if (indiv != c.indiv(i))
        in.complain("individual " + numbertext(indiv) + ", but record " + numbertext(i) + " of " +
                    relationshipfile + " is of individual " + numbertext(c.indiv(i)));
}

void readbreedingvalues(const corvalindspec &spec, candidates &c)
{
    std::string file = spec.breedingvaluefile;
    const bool readin = file == estimatefile && !pathexists(file) && pathexists(readinfile);
    if (readin) {
        file = readinfile;
        note(std::string(estimatefile) + " is not there: breeding values from " + readinfile);
    }
    infile in(file);
    c.gain.allocate(c.n);
    for (int64 i = 1; i <= c.n; ++i) {
        in.record();
        const int64 line = in.linenumber();
        if (readin) in.integer(); // place
        stopifother(in, c, spec.relationshipfile, i, in.integer());
        c.gain(i) = in.anyreal();
        checkwholeline(in, line, "an individual and its breeding value");
        if (!std::isfinite(c.gain(i))) in.complain("the breeding value is not a finite number");
    }
    stopifmorelines(in, c.n);
}

void readgenders(const corvalindspec &spec, candidates &c)
{
    infile in(spec.genderfile);
    int64 nmales = 0;
    for (int64 i = 1; i <= c.n; ++i) {
        in.record();
        const int64 line = in.linenumber();
        stopifother(in, c, spec.relationshipfile, i, in.integer());
        c.pool(i) = in.integer();
        checkwholeline(in, line, "an individual and its gender");
        if (c.pool(i) != 1 && c.pool(i) != 2)
            in.complain("gender 1 or 2 is wanted, not " + numbertext(c.pool(i)));
        nmales += c.pool(i) == 1;
    }
    stopifmorelines(in, c.n);
    if (nmales != spec.nmales)
        ioerror(spec.genderfile, "holds " + numbertext(nmales) + " males and " +
                                     numbertext(c.n - nmales) + " females, but " + spec.file +
                                     " announces " + numbertext(spec.nmales) + " and " +
                                     numbertext(spec.nfemales));
}
} // namespace

candidates readcandidates(const corvalindspec &spec)
{
    candidates c;
    c.n = spec.nindiv;
    c.npools = spec.sexesmatter ? 2 : 1;
    c.pool.allocate(c.n, 1);
    c.relationshipfile = spec.relationshipfile;
    readrelationships(spec, c);
    preparerelationships(c);
    readbreedingvalues(spec, c);
    if (spec.sexesmatter) readgenders(spec, c);
    return c;
}
