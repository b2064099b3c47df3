#include "traits/effectdistributions.h"

#include "randomnumbers.h"
#include "sortstat.h"
#include "words.h"

#include <algorithm>
#include <cmath>

namespace
{
// 1 / sqrt(n) in single precision by design: the rounding reaches the files.
double scaleofqtn(int64 n)
{
    return singlesqrt(singlequotient(1.0, static_cast<double>(n)));
}

qtnmodeldata &modelofset(state &s, qtnset set, effectdistribution distribution)
{
    return *std::find_if(s.loci.models.begin(), s.loci.models.end(), [&](const qtnmodeldata &m) {
        return m.set == set && m.distribution == distribution;
    });
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

void simuladditiveeffects(state &s, qtnset set)
{
    const bool withgamma = s.qtn.nqtngamma > 0;
    const array1<int64> &mutind = s.loci.sets[set].mutind;
    array2<double> &addeffnormal = modelofset(s, set, effectdistribution::normal).addeff;
    array2<double> &addeffgamma = modelofset(s, set, effectdistribution::gamma).addeff;
    const double scalenormal = scaleofqtn(s.loci.ntotqtn);
    const double scalegamma = scaleofqtn(s.loci.ntotqtngamma);
    const double scalemut = scaleofmutations(s);
    array1<double> normaldraws(s.traits.ntraits), gammadraws(s.traits.ntraits);
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        const bool mutation = mutind(q) != 0;
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

void simuldominanceeffects(state &s, qtnset set)
{
    const double sd = std::sqrt(s.qtn.domdegvar);
    qtnmodeldata &normal = modelofset(s, set, effectdistribution::normal);
    qtnmodeldata &gamma = modelofset(s, set, effectdistribution::gamma);
    const auto draw = [&](qtnmodeldata &model, int64 q, int64 j) {
        model.domdeg(q, j) = gasdev(s.random) * sd + s.qtn.domdegmean;
        model.domeff(q, j) = model.domdeg(q, j) * std::fabs(model.addeff(q, j));
    };
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            draw(normal, q, j);
            if (s.qtn.nqtngamma > 0) draw(gamma, q, j);
        }
}

void computeaverageallelesubsteffects(state &s, int64 p)
{
    qtnmodeldata &model = s.loci.model(p);
    const array1<double> &freq = s.loci.sets[model.set].referencefreq;
    for (int64 j = 1; j <= s.traits.ntraits; ++j)
        for (int64 q = 1; q <= s.loci.ntotqtn; ++q)
            model.alpha(q, j) = model.addeff(q, j) + model.domeff(q, j) * ((1 - freq(q)) - freq(q));
}

void simuleffectsforrecombination(state &s)
{
    const bool normal = s.selection.recombdistrib == effectdistribution::normal;
    const double c = singlesqrt(static_cast<double>(s.loci.ntotqtnrecomb));
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
