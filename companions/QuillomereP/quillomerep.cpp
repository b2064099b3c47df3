#include "QuillomereP/quillomerep.h"

#include "QuillomereP/animalmodel.h"
#include "QuillomereP/dataformat.h"
#include "QuillomereP/inbreeding.h"
#include "evaluationhelpers/progress.h"
#include "files.h"
#include "words.h"

#include <cstdio>

namespace
{
constexpr const char *resultfile = "ResultAverageEstimatedPolygenicBreedingValues.txt";

void writeestimates(const phenotypedpedigree &p, const animalmodel &estimated)
{
    outfile out(resultfile);
    textline line;
    for (int64 i = 1; i <= p.n; ++i) {
        puti(line, p.number(i), 20);
        putfree(line, estimated.ebv(i));
        out.writeline(line);
    }
    out.close();
}

void reportpedigree(const phenotypedpedigree &p)
{
    int64 nselfed = 0, ndoubled = 0;
    for (int64 i = 1; i <= p.n; ++i) {
        if (p.doubledhaploid(i))
            ++ndoubled;
        else if (p.sire(i) > 0 && p.sire(i) == p.dam(i))
            ++nselfed;
    }
    note(numbertext(p.n) + " animals, " + numbertext(p.nobserved) + " with a phenotype, " +
         numbertext(nselfed) + " from selfing, " + numbertext(ndoubled) + " doubled haploids");
}
} // namespace

void quillomerep()
{
    note("QuillomereP: pedigree prediction by the animal model");
    std::remove(resultfile); // mostly there is none
    const dataformat format = readdataformat("DataFormatParameters.txt");
    phenotypedpedigree p;
    {
        const step reading("Reading " + format.pedigreefile);
        p = readphenotypedpedigree(format.pedigreefile, format.missingvalue);
    }
    reportpedigree(p);
    array1<double> d;
    double meaninbreeding = 0;
    {
        const step tracing("Tracing the pedigree for inbreeding");
        d = mendelianvariances(p, meaninbreeding);
    }
    note("Mean inbreeding of parents: " + shortnumber(meaninbreeding));
    animalmodel estimated;
    {
        const step solving("Forming and solving the equations");
        estimated = solveanimalmodel(p, d, format.vara, format.vare, format.nround, format.file);
    }
    note("Mean: " + shortnumber(estimated.mu));
    {
        const step writing("Writing the results");
        writeestimates(p, estimated);
    }
    note("QuillomereP has ended normally");
}
