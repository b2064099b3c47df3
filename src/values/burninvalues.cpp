#include "values/burninvalues.h"

#include "runplan.h"

#include "files.h"
#include "sortstat.h"
#include "textlayout.h"
#include "traits/covariances.h"
#include "traits/effectfiles.h"
#include "values/breedingvalues.h"
#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "values/qtngenotypes.h"
#include "values/recombtrait.h"
#include "values/valuearrays.h"
#include "words.h"

#include <algorithm>

namespace
{
constexpr const char *componentstable = "./SimulatedData/TraitVarianceComponents.txt";
constexpr const char *recombcomponents = "./SimulatedData/RecombinationVarianceComponents.txt";

// Sample covariances between the traits of one model; means are taken first.
void computecovariances(const state &s, const array3<double> &values, int64 p, int64 startindiv,
                        int64 endindiv, array3<double> &covariance)
{
    const int64 ntraits = s.traits.ntraits;
    const double n = static_cast<double>(endindiv - startindiv + 1);
    array1<double> mean(ntraits);
    for (int64 j = 1; j <= ntraits; ++j) {
        for (int64 i = startindiv; i <= endindiv; ++i) mean(j) += values(i, p, j);
        mean(j) /= n;
    }
    for (int64 j = 1; j <= ntraits; ++j)
        for (int64 k = 1; k <= ntraits; ++k) {
            double sum = 0;
            for (int64 i = startindiv; i <= endindiv; ++i)
                sum += (values(i, p, j) - mean(j)) * (values(i, p, k) - mean(k));
            covariance(p, j, k) = sum / (n - 1);
        }
}

double narrowheritability(const valuedata &v, int64 p, int64 j)
{
    return v.vara(p, j) / (v.vara(p, j) + v.vard(p, j) + v.vare(p, j));
}

double broadheritability(const valuedata &v, int64 p, int64 j)
{
    const double genetic = v.vara(p, j) + v.vard(p, j);
    return genetic / (genetic + v.vare(p, j));
}

// n numbers 4F12.4: a new line behind every fourth.
template <class Value> void writerow(outfile &out, int64 n, Value value)
{
    textline line;
    for (int64 k = 1; k <= n; ++k) {
        putf(line, value(k), 12, 4);
        if (k % 4 == 0 && k < n) out.writeline(line);
    }
    out.writeline(line);
}

void writeheading(outfile &out, const char *heading)
{
    out.writeline(" ");
    textline line;
    puta(line, heading, 30);
    out.writeline(line);
}

void writecovariances(const state &s)
{
    const valuedata &v = s.values;
    const int64 ntraits = s.traits.ntraits;
    outfile out("./SimulatedData/TraitVarianceComponentsCovariance.txt");
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
        textline line;
        puta(line, " QTN model ", 11);
        puta(line, s.loci.model(p).name, 14);
        out.writeline(line);
        const auto writematrix = [&](const char *heading, const array3<double> &covariance) {
            writeheading(out, heading);
            for (int64 i = 1; i <= ntraits; ++i)
                writerow(out, ntraits, [&](int64 j) { return covariance(p, i, j); });
        };
        writematrix(" Additive genetic co-variance ", v.cova);
        writematrix(" Dominance genetic co-variance", v.covd);
        writematrix(" Residual co-variance         ", s.values.cove);
        writeheading(out, " Heritability (narrow-sense)  ");
        writerow(out, ntraits, [&](int64 j) { return narrowheritability(v, p, j); });
        writeheading(out, " Heritability (broad-sense)   ");
        writerow(out, ntraits, [&](int64 j) { return broadheritability(v, p, j); });
    }
    out.close();
}

// The five numbers of a trait under model p, in the order of the reports.
double component(const valuedata &v, int row, int64 p, int64 j)
{
    switch (row) {
    case 0:
        return v.vara(p, j);
    case 1:
        return v.vard(p, j);
    case 2:
        return v.vare(p, j);
    case 3:
        return narrowheritability(v, p, j);
    default:
        return broadheritability(v, p, j);
    }
}

void writecomponents(const state &s, outfile &out, int64 j)
{
    const bool withgamma = s.qtn.nqtngamma > 0;
    textline line;
    puta(line, "Variance components for trait", 29);
    puti(line, j, 2);
    out.writeline(line);
    puta(line,
         "                                        NormalModelUnres    NormalModelRestr   "
         "GammaModelUnrestr     GammaModelRestr",
         withgamma ? 116 : 76);
    out.writeline(line);
    const char *const labels[] = {"VarA", "VarD", "VarE", "Simulated narrow-sense heritability ",
                                  "Simulated broad-sense heritability  "};
    for (int row = 0; row < 5; ++row) {
        putleft(line, labels[row], 36);
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
            putf(line, component(s.values, row, p, j), 20, 10);
        out.writeline(line);
    }
}

void printcomponents(const state &s, int64 j)
{
    const bool withgamma = s.qtn.nqtngamma > 0;
    textline line;
    puta(line, " Trait", 7);
    puti(line, j, 3);
    printline(line);
    line.clear();
    puta(line,
         "                                   NormalUnrestr NormalRestr GammaUnrestr GammaRestr",
         withgamma ? 85 : 60);
    printline(line);
    const char *const labels[] = {
        "  VarA                               ", "  VarD                               ",
        "  VarE                               ", " Simulated narrow-sense heritability",
        " Simulated broad-sense heritability "};
    for (int row = 0; row < 5; ++row) {
        line.clear();
        puta(line, labels[row], 37);
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
            putf(line, component(s.values, row, p, j), 12, 4);
        printline(line);
    }
    printfree("     ");
}

void writerecombination(const state &s)
{
    const valuedata &v = s.values;
    outfile out(recombcomponents);
    const auto write = [&](const char *label, double value) {
        textline line;
        puta(line, label, 30);
        putf(line, value, 20, 10);
        out.writeline(line);
    };
    write("Additive genetic variance     ", v.vararecomb);
    write("Residual variance             ", v.varerecomb);
    write("Heritability (narrow-sense)   ", v.vararecomb / (v.varerecomb + v.vararecomb));
    out.close();
}

void computegeneration(state &s, int64 gen)
{
    const int64 startindiv = firstindivofgen(s, gen), endindiv = lastindivofgen(s, gen);
    s.values.nindivinsimulrun = s.pedi.nindivinthisgen(gen);
    arrayscope arrays;
    makegenotypetables(s, arrays);
    compileqtngenotypes(s, gen, startindiv);
    computetbv(s, startindiv, endindiv);
    if (s.qtn.dominonoff) computetdv(s, startindiv, endindiv);
    computetotalgenicvariances(s, gen);
    if (s.selection.recombselonoff) computetbvrecomb(s, gen, startindiv, endindiv);
    if (gen == 1) {
        computevaravardvare(s, startindiv, endindiv);
        workoutresidualcovariances(s);
        printoutvarcomponents(s);
    }
    computetpv(s, gen, startindiv, endindiv);
}
} // namespace

void computetbvvaravareandburnintpv(state &s)
{
    const generationspan span = burningenerations(s);
    arrayscope arrays;
    makevaluearrays(s, arrays);
    readqtneffects(s);
    if (span.first > 1) readresidualfactors(s);
    for (int64 gen = span.first; gen <= span.last; ++gen) {
        tellpart(s, runpart::burninvalues, gen - span.first + 1, span.last - span.first + 1,
                 "generation " + numbertext(gen));
        computegeneration(s, gen);
    }
}

void computevaravardvare(state &s, int64 startindiv, int64 endindiv)
{
    valuedata &v = s.values;
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
        computecovariances(s, v.tbv, p, startindiv, endindiv, v.cova);
        computecovariances(s, v.tdv, p, startindiv, endindiv, v.covd);
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            v.vara(p, j) = v.cova(p, j, j);
            v.vard(p, j) = v.covd(p, j, j);
            const double genetic = v.vara(p, j) + v.vard(p, j), h = s.traits.herit(j);
            v.vare(p, j) = (genetic - h * genetic) / h;
        }
    }
    if (!s.selection.recombselonoff) return;
    double ave, adev, sdev, skew, curt;
    moment(&v.tbvrecombz(startindiv), endindiv - startindiv + 1, ave, adev, sdev, v.vararecomb,
           skew, curt);
    v.varerecomb = 1 / (s.founders.morgans * static_cast<double>(s.founders.nchrom));
}

void printoutvarcomponents(state &s)
{
    writecovariances(s);
    outfile out(componentstable);
    for (int64 j = 1; j <= s.traits.ntraits; ++j) {
        writecomponents(s, out, j);
        printcomponents(s, j);
    }
    out.close();
    if (s.selection.recombselonoff) writerecombination(s);
}

void readvare(state &s)
{
    infile in(componentstable, author::system);
    for (int64 j = 1; j <= s.traits.ntraits; ++j) {
        const auto label = [&](std::string_view wanted) {
            in.record();
            if (!in.line().starts_with(wanted))
                in.complain("a line \"" + std::string(wanted) + "\" is wanted");
        };
        label("Variance components for trait");
        in.skiprecords(1);
        for (const char *row : {"VarA", "VarD", "VarE"}) label(row);
        in.skipwords(1);
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) s.values.vare(p, j) = in.anyreal();
        in.skiprecords(2);
    }
    in.stopifmore();
    if (!s.selection.recombselonoff) return;
    infile recomb(recombcomponents, author::system);
    recomb.skiprecords(2);
    const std::string_view line = recomb.line();
    if (!line.starts_with("Residual variance") || line.size() <= 30 ||
        !readreal(trim(line.substr(30, 20)), s.values.varerecomb))
        recomb.complain("the residual variance is wanted in columns 31 to 50");
}
