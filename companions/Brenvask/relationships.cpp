#include "Brenvask/relationships.h"

#include "stops.h"
#include "words.h"

#include <cstdlib>

extern "C" {
void openblas_set_num_threads(int n);
void ssyrk_(const char *uplo, const char *trans, const int *n, const int *k, const float *alpha,
            const float *a, const int *lda, const float *beta, float *c, const int *ldc);
}

namespace
{
constexpr int64 slabsperpanel = 25; // 1,000 loci: wide enough for ssyrk to run at full speed

// Adds the products of a panel's first nloci rows to the lower triangle.
void addproducts(const array2<float> &panel, int64 nloci, array2<float> &cc)
{
    const int n = static_cast<int>(cc.extent2().size()), k = static_cast<int>(nloci),
              width = static_cast<int>(panel.extent1().size());
    const float one = 1;
    ssyrk_("L", "T", &n, &k, &one, panel.data(), &width, &one, cc.data(), &n);
}

void mirrorlower(array2<float> &cc)
{
    const int64 n = cc.extent2().size();
    for (int64 k = 1; k <= n; ++k)
        for (int64 i = k + 1; i <= n; ++i) cc(k, i) = cc(i, k);
}

// The missing genotypes, locus by locus.
std::vector<missinggenotype> sortedbylocus(const genotypestore &g)
{
    std::vector<missinggenotype> missing = g.missing;
    std::stable_sort(
        missing.begin(), missing.end(),
        [](const missinggenotype &a, const missinggenotype &b) { return a.snp < b.snp; });
    return missing;
}

// Adds what the missing genotypes of a panel contribute to atmissing. The list is gone through from
// next on, up to the last locus of the panel, which begins with locus first.
using missinglist = std::vector<missinggenotype>;
void addmissing(const array2<float> &panel, int64 first, const array1<double> &u,
                const missinglist &list, missinglist::const_iterator &next,
                array2<double> &atmissing)
{
    const int64 n = atmissing.extent2().size();
    array1<double> known(n);
    while (next != list.end() && next->snp < first + panel.extent1().size()) {
        const int64 j = next->snp;
        auto behind = next;
        while (behind != list.end() && behind->snp == j) ++behind;
        for (int64 i = 1; i <= n; ++i)
            known(i) = u(j) * static_cast<double>(panel(j - first + 1, i));
        for (auto m = next; m != behind; ++m) known(m->indiv) = u(j) * (u(j) / 2);
        for (; next != behind; ++next)
            for (int64 i = 1; i <= n; ++i) atmissing(i, next->indiv) += known(i);
    }
}

void sumproducts(const genotypestore &g, const array1<double> &u, relationships &r)
{
    if (!std::getenv("OPENBLAS_NUM_THREADS")) openblas_set_num_threads(1);
    r.cc.allocate(g.nindiv, g.nindiv);
    const missinglist missing = sortedbylocus(g);
    if (!missing.empty()) r.atmissing.allocate(g.nindiv, g.nindiv);
    auto next = missing.begin();
    array2<float> panel(std::min(slabsperpanel, g.nslabs()) * slabwidth, g.nindiv);
    for (int64 slab = 1; slab <= g.nslabs(); slab += slabsperpanel) {
        const int64 first = (slab - 1) * slabwidth + 1;
        unpackslabs(g, slab, panel);
        addproducts(panel, std::min(panel.extent1().size(), g.nsnp - first + 1), r.cc);
        if (!missing.empty()) addmissing(panel, first, u, missing, next, r.atmissing);
    }
    mirrorlower(r.cc);
}

// Sum of u c for each individual, c = u where the genotype is missing.
void sumcentres(const genotypestore &g, const array1<double> &u, array1<double> &uc)
{
    array2<double> value(extent(0, 2), g.nsnp);
    for (int64 j = 1; j <= g.nsnp; ++j)
        for (int64 c = 0; c <= 2; ++c) value(c, j) = u(j) * static_cast<double>(c - 1);
    uc.allocate(g.nindiv);
    sumoversnps(g, value, uc);
    for (const missinggenotype &m : g.missing) uc(m.indiv) += u(m.snp) * u(m.snp);
}
} // namespace

relationships computerelationships(const genotypestore &g, const array1<double> &freq,
                                   const std::string &source, double fudge)
{
    relationships r;
    r.n = g.nindiv;
    r.fudge = fudge;
    array1<double> u(g.nsnp);
    for (int64 j = 1; j <= g.nsnp; ++j) {
        u(j) = 2 * freq(j) - 1;
        r.usumsq += u(j) * u(j);
        r.scale += 2 * freq(j) * (1 - freq(j));
    }
    if (!(r.scale > 0))
        ioerror(source,
                "all " + numbertext(g.nsnp) + " loci are fixed: there are no relationships");
    sumcentres(g, u, r.uc);
    sumproducts(g, u, r);
    return r;
}
