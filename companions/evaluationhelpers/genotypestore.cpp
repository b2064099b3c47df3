#include "evaluationhelpers/genotypestore.h"

#include <cmath>
#include <cstring>

namespace
{
constexpr int64 perbyte = 5, bytesperslab = 8;
static_assert(perbyte * bytesperslab == slabwidth);
constexpr int64 ncodes = 243; // 3^5
using bytetables = double[bytesperslab][ncodes];

struct digittable {
    std::uint8_t digit[ncodes][perbyte];
};
constexpr digittable makedigits()
{
    digittable table{};
    for (int64 code = 0; code < ncodes; ++code) {
        int64 left = code;
        for (int64 k = 0; k < perbyte; ++k) {
            table.digit[code][k] = static_cast<std::uint8_t>(left % 3);
            left /= 3;
        }
    }
    return table;
}
constexpr digittable digits = makedigits();

// Genotypes less 1 of each value of a byte.
struct centredtable {
    float value[ncodes][perbyte];
};
constexpr centredtable makecentred()
{
    centredtable table{};
    for (int64 code = 0; code < ncodes; ++code)
        for (int64 k = 0; k < perbyte; ++k)
            table.value[code][k] = static_cast<float>(digits.digit[code][k]) - 1;
    return table;
}
constexpr centredtable centred = makecentred();

// What each value of each byte of a slab adds: the sum over its five SNPs of value(genotype, SNP).
// Built digit by digit: the first 3^k entries are those of the first k SNPs alone.
void buildtables(const array2<double> &value, int64 firstsnp, bytetables &tables)
{
    int64 j = firstsnp;
    for (double *table :
         {tables[0], tables[1], tables[2], tables[3], tables[4], tables[5], tables[6], tables[7]}) {
        table[0] = 0;
        for (int64 k = 0, filled = 1; k < perbyte; ++k, ++j, filled *= 3) {
            double of[3] = {0, 0, 0}; // SNPs behind the last are stored as 0 and add nothing
            if (j <= value.extent2().hi) std::memcpy(of, value.column(j), sizeof of);
            for (int64 c = 2; c >= 0; --c)
                for (int64 e = 0; e < filled; ++e) table[c * filled + e] = table[e] + of[c];
        }
    }
}

// Takes the weights collected for the 243 values of a byte apart: out(k) = sum of weight times
// genotype of its SNP k. From the last SNP to the first, each time folding its three thirds.
void unfold(double *weight, double *out)
{
    for (int64 k = perbyte - 1, third = ncodes / 3; k >= 0; --k, third /= 3) {
        double ones = 0, twos = 0;
        for (int64 e = 0; e < third; ++e) {
            ones += weight[third + e];
            twos += weight[2 * third + e];
            weight[e] += weight[third + e] + weight[2 * third + e];
        }
        out[k] = ones + 2 * twos;
    }
}

// out(j) = sum over individuals of genotype(i, j) * w(i), missing genotypes as 0.
void sumoverindividuals(const genotypestore &g, const array1<double> &w, array1<double> &out)
{
    bytetables weights;
    for (int64 slab = 1; slab <= g.nslabs(); ++slab) {
        std::memset(weights, 0, sizeof weights);
        const std::uint8_t *code = g.codes.column(1, slab);
        const double *weight = w.data();
        for (int64 i = 0; i < g.nindiv; ++i, code += bytesperslab)
            for (int64 b = 0; b < bytesperslab; ++b) weights[b][code[b]] += weight[i];
        double sums[slabwidth];
        for (int64 b = 0; b < bytesperslab; ++b) unfold(weights[b], sums + b * perbyte);
        const int64 before = (slab - 1) * slabwidth;
        for (int64 k = 0; k < std::min(slabwidth, g.nsnp - before); ++k)
            out(before + k + 1) = sums[k];
    }
}

array1<double> countmissing(const genotypestore &g)
{
    array1<double> nmissing(g.nsnp, 0.0);
    for (const missinggenotype &m : g.missing) nmissing(m.snp) += 1;
    return nmissing;
}

double scaled(const genotypestore &g, int64 genotype, int64 snp)
{
    return (static_cast<double>(genotype) - 2 * g.freq(snp)) / g.sd(snp);
}

// The missing genotypes of an individual from a SNP on.
std::vector<missinggenotype>::const_iterator firstmissing(const genotypestore &g, int64 indiv,
                                                          int64 snp)
{
    const auto before = [](const missinggenotype &m, const missinggenotype &than) {
        return m.indiv < than.indiv || (m.indiv == than.indiv && m.snp < than.snp);
    };
    const missinggenotype from = {static_cast<std::int32_t>(indiv), static_cast<std::int32_t>(snp)};
    return std::lower_bound(g.missing.begin(), g.missing.end(), from, before);
}
} // namespace

void makegenotypestore(genotypestore &g, int64 nindiv, int64 nsnp)
{
    g.nindiv = nindiv;
    g.nsnp = nsnp;
    g.codes.allocate(bytesperslab, nindiv, (nsnp + slabwidth - 1) / slabwidth, 0);
    g.missing.clear();
}

void packindividual(genotypestore &g, int64 indiv, const int8 *genotypes)
{
    int8 five[perbyte];
    for (int64 j = 0; j < g.nsnp; j += perbyte) {
        const int64 n = std::min(perbyte, g.nsnp - j);
        for (int64 k = 0; k < n; ++k) {
            five[k] = genotypes[j + k];
            if (five[k] >= 0 && five[k] <= 2) continue;
            g.missing.push_back(
                {static_cast<std::int32_t>(indiv), static_cast<std::int32_t>(j + k + 1)});
            five[k] = 0;
        }
        for (int64 k = n; k < perbyte; ++k) five[k] = 0;
        g.codes(j / perbyte % bytesperslab + 1, indiv, j / slabwidth + 1) =
            static_cast<std::uint8_t>(five[0] + 3 * five[1] + 9 * five[2] + 27 * five[3] +
                                      81 * five[4]);
    }
}

void computefrequencies(genotypestore &g)
{
    const array1<double> ones(g.nindiv, 1.0), nmissing = countmissing(g);
    g.freq.allocate(g.nsnp);
    sumoverindividuals(g, ones, g.freq); // counts of the allele, exact
    for (int64 j = 1; j <= g.nsnp; ++j) {
        const double nalleles = 2 * (static_cast<double>(g.nindiv) - nmissing(j));
        g.freq(j) = nalleles > 0 ? g.freq(j) / nalleles : 0;
    }
}

void computescales(genotypestore &g)
{
    computefrequencies(g);
    g.sd.allocate(g.nsnp);
    for (int64 j = 1; j <= g.nsnp; ++j)
        g.sd(j) = std::sqrt(2 * g.freq(j) * (1 - g.freq(j)) + 0.00001);

    array1<double> ntwos(g.nsnp, 0.0);
    for (int64 slab = 1; slab <= g.nslabs(); ++slab) {
        int64 counts[bytesperslab][ncodes] = {};
        const std::uint8_t *code = g.codes.column(1, slab);
        for (int64 i = 0; i < g.nindiv; ++i, code += bytesperslab)
            for (int64 b = 0; b < bytesperslab; ++b) ++counts[b][code[b]];
        for (int64 k = 0; k < std::min(slabwidth, g.nsnp - (slab - 1) * slabwidth); ++k)
            for (int64 c = 0; c < ncodes; ++c)
                if (digits.digit[c][k % perbyte] == 2)
                    ntwos((slab - 1) * slabwidth + k + 1) +=
                        static_cast<double>(counts[k / perbyte][c]);
    }
    const array1<double> nmissing = countmissing(g);
    g.sumsq.allocate(g.nsnp);
    for (int64 j = 1; j <= g.nsnp; ++j) {
        const double nknown = static_cast<double>(g.nindiv) - nmissing(j);
        const double nones = 2 * nknown * g.freq(j) - 2 * ntwos(j);
        const double z0 = scaled(g, 0, j), z1 = scaled(g, 1, j), z2 = scaled(g, 2, j);
        g.sumsq(j) = (nknown - nones - ntwos(j)) * z0 * z0 + nones * z1 * z1 + ntwos(j) * z2 * z2;
    }
}

void sumoversnps(const genotypestore &g, const array2<double> &value, array1<double> &out)
{
    bytetables tables;
    out.fill(0);
    for (int64 slab = 1; slab <= g.nslabs(); ++slab) {
        buildtables(value, (slab - 1) * slabwidth + 1, tables);
        const std::uint8_t *code = g.codes.column(1, slab);
        double *sum = out.data();
        for (int64 i = 0; i < g.nindiv; ++i, code += bytesperslab)
            sum[i] += ((tables[0][code[0]] + tables[1][code[1]]) +
                       (tables[2][code[2]] + tables[3][code[3]])) +
                      ((tables[4][code[4]] + tables[5][code[5]]) +
                       (tables[6][code[6]] + tables[7][code[7]]));
    }
    for (const missinggenotype &m : g.missing) out(m.indiv) -= value(0, m.snp);
}

void timesz(const genotypestore &g, const array1<double> &x, array1<double> &out)
{
    array2<double> value(extent(0, 2), g.nsnp);
    for (int64 j = 1; j <= g.nsnp; ++j)
        for (int64 c = 0; c <= 2; ++c) value(c, j) = scaled(g, c, j) * x(j);
    sumoversnps(g, value, out);
}

void timesztransposed(const genotypestore &g, const array1<double> &w, array1<double> &out)
{
    double sum = 0;
    for (int64 i = 1; i <= g.nindiv; ++i) sum += w(i);
    array1<double> knownsum(g.nsnp, sum); // of the weights of individuals with a known genotype
    for (const missinggenotype &m : g.missing) knownsum(m.snp) -= w(m.indiv);
    sumoverindividuals(g, w, out);
    for (int64 j = 1; j <= g.nsnp; ++j) out(j) = (out(j) - 2 * g.freq(j) * knownsum(j)) / g.sd(j);
}

void individualsquares(const genotypestore &g, array1<double> &out)
{
    array2<double> value(extent(0, 2), g.nsnp);
    for (int64 j = 1; j <= g.nsnp; ++j)
        for (int64 c = 0; c <= 2; ++c) value(c, j) = scaled(g, c, j) * scaled(g, c, j);
    sumoversnps(g, value, out);
}

void scaledgenotypes(const genotypestore &g, int64 indiv, int64 firstsnp, int64 n, double *z)
{
    for (int64 k = 0; k < n; ++k) {
        const int64 at = firstsnp - 1 + k; // offset of the SNP
        const std::uint8_t code =
            g.codes(at / perbyte % bytesperslab + 1, indiv, at / slabwidth + 1);
        z[k] = scaled(g, digits.digit[code][at % perbyte], at + 1);
    }
    for (auto m = firstmissing(g, indiv, firstsnp);
         m != g.missing.end() && m->indiv == indiv && m->snp < firstsnp + n; ++m)
        z[m->snp - firstsnp] = 0;
}

void unpackslabs(const genotypestore &g, int64 firstslab, array2<float> &panel)
{
    const int64 width = panel.extent1().size(), firstsnp = (firstslab - 1) * slabwidth + 1;
    const int64 lastslab = std::min(firstslab + width / slabwidth - 1, g.nslabs());
    for (int64 slab = firstslab; slab <= lastslab; ++slab) {
        const std::uint8_t *code = g.codes.column(1, slab);
        float *to = panel.data() + (slab - firstslab) * slabwidth;
        for (int64 i = 0; i < g.nindiv; ++i, code += bytesperslab, to += width)
            for (int64 b = 0; b < bytesperslab; ++b)
                std::memcpy(to + b * perbyte, centred.value[code[b]], sizeof centred.value[0]);
    }
    if (g.missing.empty()) return;
    for (int64 i = 1; i <= g.nindiv; ++i)
        for (auto m = firstmissing(g, i, firstsnp);
             m != g.missing.end() && m->indiv == i && m->snp < firstsnp + width; ++m)
            panel(m->snp - firstsnp + 1, i) = 0;
}
