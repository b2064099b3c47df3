#include "Quillomere/trainingset.h"

#include "evaluationhelpers/records.h"
#include "stops.h"
#include "words.h"

#include <cmath>

namespace
{
// The SNPs with entry 1.
array1<int64> readsegregating(const quillomerespec &spec)
{
    infile in(spec.fixedsnpfile);
    std::vector<int64> found;
    for (int64 j = 1; j <= spec.nsnp; ++j) {
        in.record();
        const int64 line = in.linenumber();
        const int64 entry = in.integer();
        checkwholeline(in, line, "one integer");
        if (entry != 0 && entry != 1) in.complain("0 or 1 is wanted, not " + numbertext(entry));
        if (entry == 1) found.push_back(j);
    }
    stopifmorelines(in, spec.nsnp);
    array1<int64> segregating(static_cast<int64>(found.size()));
    std::copy(found.begin(), found.end(), segregating.begin());
    return segregating;
}

void readtraininggenotypes(const quillomerespec &spec, const array1<int64> &indiv,
                           const array1<int64> &segregating, genotypestore &store)
{
    infile in(spec.genotypetraining);
    makegenotypestore(store, spec.nanistraining, segregating.size());
    array1<int8> all(spec.nsnp), chosen(segregating.size());
    for (int64 i = 1; i <= spec.nanistraining; ++i) {
        const int64 id = readgenotypes(in, spec.missinggenocode, all);
        if (id != indiv(i))
            in.complain("genotypes of individual " + numbertext(id) + ", but record " +
                        numbertext(i) + " of " + spec.phenotypetraining + " is of individual " +
                        numbertext(indiv(i)));
        for (int64 j = 1; j <= segregating.size(); ++j) chosen(j) = all(segregating(j));
        packindividual(store, i, chosen.data());
    }
    stopifmorelines(in, spec.nanistraining);
}
} // namespace

void readvalues(const std::string &filename, int64 n, array1<int64> &indiv, array1<double> &value)
{
    infile in(filename);
    indiv.allocate(n);
    value.allocate(n);
    for (int64 i = 1; i <= n; ++i) {
        in.record();
        const int64 line = in.linenumber();
        indiv(i) = in.integer();
        value(i) = in.anyreal();
        checkwholeline(in, line, "an individual and a number");
        if (!std::isfinite(value(i))) in.complain("the value is not a finite number");
    }
    stopifmorelines(in, n);
}

trainingset readtrainingset(const quillomerespec &spec)
{
    trainingset training;
    array1<int64> indiv;
    training.segregating = readsegregating(spec);
    readvalues(spec.phenotypetraining, spec.nanistraining, indiv, training.phenotype);
    readtraininggenotypes(spec, indiv, training.segregating, training.genotypes);
    computescales(training.genotypes);
    return training;
}
