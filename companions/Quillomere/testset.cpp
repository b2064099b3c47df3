#include "Quillomere/testset.h"

#include "evaluationhelpers/records.h"
#include "sortstat.h"
#include "words.h"

namespace
{
double estimate(const trainingset &training, const array1<double> &solution,
                const array1<int8> &genotypes)
{
    const genotypestore &g = training.genotypes;
    double sum = 0;
    for (int64 j = 1; j <= g.nsnp; ++j) {
        const int8 genotype = genotypes(training.segregating(j));
        if (genotype < 0 || genotype > 2) continue; // missing: at 2p
        sum += (genotype - 2 * g.freq(j)) / g.sd(j) * solution(j);
    }
    return sum;
}
} // namespace

testset predicttestset(const quillomerespec &spec, const trainingset &training,
                       const array1<double> &solution)
{
    testset test;
    array1<double> tbv;
    readvalues(spec.tbvtesting, spec.nanistest, test.indiv, tbv);
    test.ebv.allocate(spec.nanistest);
    infile in(spec.genotypetesting);
    array1<int8> genotypes(spec.nsnp);
    for (int64 i = 1; i <= spec.nanistest; ++i) {
        const int64 id = readgenotypes(in, spec.missinggenocode, genotypes);
        if (id != test.indiv(i))
            in.complain("genotypes of individual " + numbertext(id) + ", but record " +
                        numbertext(i) + " of " + spec.tbvtesting + " is of individual " +
                        numbertext(test.indiv(i)));
        test.ebv(i) = estimate(training, solution, genotypes);
    }
    stopifmorelines(in, spec.nanistest);
    if (spec.nanistest > 1) pearsn(test.ebv.data(), tbv.data(), spec.nanistest, test.correlation);
    return test;
}
