#include "values/genicvariances.h"

#include "files.h"
#include "markers/sitesets.h"
#include "sortstat.h"
#include "textlayout.h"
#include "traits/qtnclasses.h"
#include "words.h"

#include <numeric>
#include <string>

namespace
{
textline variancetitle(int64 ntraits)
{
    std::string title = "Generation  QtnModel     ";
    const char *separator = "";
    for (const char *label : {"TotalAdditGenicVar", "TotalDominGenicVar", "TotalAdditGeneticVar",
                              "TotalDominGeneticVar"}) {
        std::string group;
        for (int64 j = 1; j <= ntraits; ++j) group += (j > 1 ? " " : "") + (label + numbertext(j));
        title += separator + cuttext(group, 1000);
        separator = " ";
    }
    textline line;
    putleft(line, title, 1500);
    return line;
}

// By the genotypes of the generation.
void takecurrentfrequencies(qtnsetdata &set)
{
    const int64 nindiv = set.qtngenos.extent1().size();
    for (int64 q = 1; q <= set.qtngenos.extent2().size(); ++q) {
        const int8 *const genotypes = set.qtngenos.column(q);
        const int64 ncopies = std::accumulate(genotypes, genotypes + nindiv, 0);
        set.currentfreq(q) = filedfrequency(ncopies, nindiv);
    }
}

// The variances of a generation, (nqtnmodels, ntraits).
struct generationvariances {
    array2<double> additgenic, domingenic, additgenetic, domingenetic;
};

void sumloci(const state &s, int64 p, int64 j, generationvariances &v)
{
    const qtnmodeldata &model = s.loci.model(p);
    const array1<double> &freq = s.loci.sets[model.set].currentfreq;
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        const double f = freq(q);
        v.additgenic(p, j) += locusgenicvariance(f, model.alpha(q, j));
        if (!s.qtn.dominonoff) continue;
        const double deviation = 2 * f * (1 - f) * model.domeff(q, j);
        v.domingenic(p, j) += deviation * deviation;
    }
}

double samplevariance(const state &s, const array3<double> &values, int64 gen, int64 p, int64 j)
{
    double ave, adev, sdev, var, skew, curt;
    moment(values.column(p, j) + firstindivofgen(s, gen) - 1, s.pedi.nindivinthisgen(gen), ave,
           adev, sdev, var, skew, curt);
    return var;
}

void writevariances(const state &s, int64 currentgen, const generationvariances &v)
{
    outfile out;
    if (currentgen == 1) {
        out.open(variancetable);
        out.writeline(variancetitle(s.traits.ntraits));
    } else {
        out.openandkeep(variancetable, 1 + (currentgen - 1) * s.qtn.nqtnmodels,
                        {{currentgen - 1, s.qtn.nqtnmodels}}, s.marks.get());
    }
    textline line;
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
        puti(line, currentgen, 10);
        puti(line, p, 10);
        for (const array2<double> *variances :
             {&v.additgenic, &v.domingenic, &v.additgenetic, &v.domingenetic})
            for (int64 j = 1; j <= s.traits.ntraits; ++j) putf(line, (*variances)(p, j), 20, 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void computetotalgenicvariances(state &s, int64 currentgen)
{
    for (const qtnset set : traitsets) takecurrentfrequencies(s.loci.sets[set]);
    generationvariances v;
    for (array2<double> *a : {&v.additgenic, &v.domingenic, &v.additgenetic, &v.domingenetic})
        a->allocate(s.qtn.nqtnmodels, s.traits.ntraits);
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            sumloci(s, p, j, v);
            v.additgenetic(p, j) = samplevariance(s, s.values.tbv, currentgen, p, j);
            if (s.qtn.dominonoff)
                v.domingenetic(p, j) = samplevariance(s, s.values.tdv, currentgen, p, j);
        }
    writevariances(s, currentgen, v);
}

std::vector<variancesofmodel> readgenicvariances(const state &s)
{
    std::vector<variancesofmodel> lines;
    infile in(variancetable, author::system);
    in.skiprecords(1);
    while (in.nextrecord()) {
        variancesofmodel &line = lines.emplace_back();
        line.generation = in.integer();
        line.model = in.integer();
        for (int64 k = 1; k <= 4 * s.traits.ntraits && !trim(in.rest()).empty(); ++k)
            line.values.push_back(in.anyreal());
    }
    return lines;
}
