#include "values/qtnfiles.h"

#include "files.h"

#include <string>
#include <vector>

namespace
{
void readfrequencies(const std::string &name, array1<double> &freq)
{
    infile in("./SimulatedData/" + name);
    in.skiprecords(1);
    for (int64 q = 1; q <= freq.size(); ++q) {
        in.record();
        in.skipwords(4); // three numbers of the QTN, and its minor allele frequency
        freq(q) = in.real();
    }
}

void readeffects(const state &s, const std::string &name, array2<double> &normal,
                 array2<double> &gamma)
{
    infile in("./SimulatedData/" + name);
    in.skiprecords(1);
    const int64 ntraits = s.traits.ntraits;
    const int64 n = s.qtn.nqtngamma > 0 ? 2 * ntraits : ntraits;
    std::vector<double> row(static_cast<std::size_t>(n));
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        in.record();
        in.skipwords(3);
        in.reals(row.data(), n);
        for (int64 j = 1; j <= ntraits; ++j) normal(q, j) = row[static_cast<std::size_t>(j - 1)];
        for (int64 j = ntraits + 1; j <= n; ++j)
            gamma(q, j - ntraits) = row[static_cast<std::size_t>(j - 1)];
    }
}
} // namespace

void readreferencefrequencies(state &s)
{
    readfrequencies("UnrestrictedQtnInformation.txt", s.loci.allqtnfrequnres);
    readfrequencies("RestrictedQtnInformation.txt", s.loci.allqtnfreqrestr);
}

void readsubstitutioneffects(state &s)
{
    const std::string kind =
        s.qtn.dominonoff ? "QtnAverAlleleSubstEffects.txt" : "QtnAdditEffects.txt";
    readeffects(s, "Unrestricted" + kind, s.loci.alphanormalunres, s.loci.alphagammaunrestr);
    readeffects(s, "Restricted" + kind, s.loci.alphanormalrestr, s.loci.alphagammarestr);
}

void readdominanceeffects(state &s)
{
    readeffects(s, "UnrestrictedQtnDominEffects.txt", s.loci.domeffnormalunres,
                s.loci.domeffgammaunres);
    readeffects(s, "RestrictedQtnDominEffects.txt", s.loci.domeffnormalrestr,
                s.loci.domeffgammarestr);
}

void readrecombinationeffects(state &s)
{
    infile in("./SimulatedData/RecombinationQtnInformationEffects.txt");
    in.skiprecords(1);
    for (int64 q = 1; q <= s.loci.ntotqtnrecomb; ++q) {
        in.record();
        in.skipwords(4);
        s.loci.allqtnfreqrecomb(q) = in.real();
        in.skipwords(1);
        s.loci.addeffrecomb(q) = in.real();
    }
}
