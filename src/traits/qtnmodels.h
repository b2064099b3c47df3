// qtnmodels.h - the QTN models: which set of QTN and which distribution of effects each one is.
//
// Model p is 1 NormalUnrestr, 2 NormalRestr, 3 GammaUnrestr, 4 GammaRestr; the gamma models exist
// only with nqtngamma > 0 (nqtnmodels 4, else 2). Models 1 and 3 stand on the unrestricted QTN,
// 2 and 4 on the restricted ones; position q of one set has nothing to do with q of the other.
#pragma once

#include "state.h"

// The arrays of a model, by reference: frequencies (ntotqtn), effects (ntotqtn, ntraits) and
// genotypes (nindivinsimulrun, ntotqtn). What a stage did not make is empty.
struct qtnmodelview {
    const array1<double> &freq;
    const array2<double> &addeff;
    const array2<double> &domeff;
    const array2<double> &alpha;
    const array2<int8> &genos;
};
qtnmodelview viewofmodel(const state &s, int64 p);

// "NormalUnrestr" and so on.
const char *labelofmodel(int64 p);

// Genic variance of a locus with frequency f of the counted allele and substitution effect e.
inline double locusgenicvariance(double f, double e)
{
    return 2 * f * (1 - f) * (e * e);
}
