#include "traits/qtnmodels.h"

qtnmodelview viewofmodel(const state &s, int64 p)
{
    const locusdata &q = s.loci;
    switch (p) {
    case 1:
        return {q.allqtnfrequnres, q.addeffnormalunres, q.domeffnormalunres, q.alphanormalunres,
                q.allqtngenosunres};
    case 2:
        return {q.allqtnfreqrestr, q.addeffnormalrestr, q.domeffnormalrestr, q.alphanormalrestr,
                q.allqtngenosrestr};
    case 3:
        return {q.allqtnfrequnres, q.addeffgammaunrestr, q.domeffgammaunres, q.alphagammaunrestr,
                q.allqtngenosunres};
    default:
        return {q.allqtnfreqrestr, q.addeffgammarestr, q.domeffgammarestr, q.alphagammarestr,
                q.allqtngenosrestr};
    }
}

const char *labelofmodel(int64 p)
{
    static const char *const labels[] = {"NormalUnrestr", "NormalRestr", "GammaUnrestr",
                                         "GammaRestr"};
    return labels[p - 1];
}
