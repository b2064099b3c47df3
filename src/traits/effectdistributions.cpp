#include "traits/effectdistributions.h"

#include "randomnumbers.h"
#include "sortstat.h"
#include "words.h"

#include <cmath>

namespace
{
// 1 / sqrt(n) in single precision by design: the rounding reaches the files.
double scaleofqtn(int64 n)
{
    return singlesqrt(singlequotient(1.0, static_cast<double>(n)));
}

double scaleofmutations(const state &s)
{
    const double n = single(static_cast<double>(s.founders.nchrom * s.founders.ndenovomutperchr));
    return std::sqrt(s.qtn.varamutprop / n);
}

// Sum over h = 1 to j of L(j,h) x draws(h), in ascending h.
double correlated(const array2<double> &factor, int64 j, const array1<double> &draws)
{
    double sum = 0;
    for (int64 h = 1; h <= j; ++h) sum += factor(j, h) * draws(h);
    return sum;
}
} // namespace

void simuladditiveeffects(state &s, const array1<int64> &allqtnmutind, array2<double> &addeffnormal,
                          array2<double> &addeffgamma)
{
    const bool withgamma = s.qtn.nqtngamma > 0;
    const double scalenormal = scaleofqtn(s.loci.ntotqtn);
    const double scalegamma = scaleofqtn(s.loci.ntotqtngamma);
    const double scalemut = scaleofmutations(s);
    array1<double> normaldraws(s.traits.ntraits), gammadraws(s.traits.ntraits);
    addeffnormal.fill(0);
    addeffgamma.fill(0);
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        const bool mutation = allqtnmutind(q) != 0;
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            normaldraws(j) = gasdev(s.random) * (mutation ? scalemut : scalenormal);
            if (withgamma)
                gammadraws(j) = random_gamma(s.random, s.qtn.shapeparam, s.qtn.scaleparam, true) *
                                (mutation ? scalemut : scalegamma);
            if (gasdev(s.random) < 0) gammadraws(j) = -gammadraws(j);
            addeffnormal(q, j) = correlated(s.values.cholcovaspec, j, normaldraws);
            if (s.loci.qtngamma(q) == 1)
                addeffgamma(q, j) = correlated(s.values.cholcovaspec, j, gammadraws);
        }
    }
}

void simuldominanceeffects(state &s, const array2<double> &addeffnormal,
                           const array2<double> &addeffgamma, array2<double> &domdegnormal,
                           array2<double> &domdeggamma, array2<double> &domeffnormal,
                           array2<double> &domeffgamma)
{
    const double sd = std::sqrt(s.qtn.domdegvar);
    const auto degree = [&] { return gasdev(s.random) * sd + s.qtn.domdegmean; };
    for (array2<double> *a : {&domdegnormal, &domdeggamma, &domeffnormal, &domeffgamma}) a->fill(0);
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            domdegnormal(q, j) = degree();
            domeffnormal(q, j) = domdegnormal(q, j) * std::fabs(addeffnormal(q, j));
            if (s.qtn.nqtngamma > 0) {
                domdeggamma(q, j) = degree();
                domeffgamma(q, j) = domdeggamma(q, j) * std::fabs(addeffgamma(q, j));
            }
        }
}

void computeaverageallelesubsteffects(const state &s, const array1<double> &qtnfreq,
                                      const array2<double> &addeffnormal,
                                      const array2<double> &addeffgamma,
                                      const array2<double> &domeffnormal,
                                      const array2<double> &domeffgamma,
                                      array2<double> &alphanormal, array2<double> &alphagamma)
{
    alphanormal.fill(0);
    alphagamma.fill(0);
    for (int64 j = 1; j <= s.traits.ntraits; ++j)
        for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
            const double p = qtnfreq(q);
            alphanormal(q, j) = addeffnormal(q, j) + domeffnormal(q, j) * ((1 - p) - p);
            if (s.qtn.nqtngamma > 0)
                alphagamma(q, j) = addeffgamma(q, j) + domeffgamma(q, j) * ((1 - p) - p);
        }
}

void simuleffectsforrecombination(state &s)
{
    const bool normal = s.selection.recombdistrib == effectdistribution::normal;
    const double c = singlesqrt(static_cast<double>(s.loci.ntotqtnrecomb));
    s.loci.addeffrecomb.fill(0);
    for (int64 q = 1; q <= s.loci.ntotqtnrecomb; ++q) {
        double &effect = s.loci.addeffrecomb(q);
        if (normal) {
            effect = gasdev(s.random) / c;
        } else {
            effect =
                random_gamma(s.random, s.selection.shaperecomb, s.selection.scalerecomb, true) / c;
            if (gasdev(s.random) < 0) effect = -effect;
        }
    }
}
