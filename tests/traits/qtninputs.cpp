#include "traits/qtninputs.h"

#include "testsupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <numeric>

namespace
{
template <class... T> std::string format(const char *layout, T... values)
{
    char text[800];
    std::snprintf(text, sizeof text, layout, values...);
    return text;
}

int64 sum(const std::vector<int64> &values)
{
    return std::accumulate(values.begin(), values.end(), int64{0});
}
} // namespace

double throughfile(double value)
{
    return std::strtod(format("%.10f", value).c_str(), nullptr);
}

int64 qtninputs::nindiv() const
{
    return sum(sizes);
}

int64 qtninputs::first(int64 generation) const
{
    return std::accumulate(sizes.begin(), sizes.begin() + generation, int64{0});
}

state qtninputs::settings(int64 ntraits) const
{
    state s;
    s.random.idum = -77;
    s.founders.nchrom = static_cast<int64>(qtnperchrom.size());
    s.founders.morgans = 1.5;
    s.run.specstartgen = 1;
    s.run.specendgen = s.pop.ngen = static_cast<int64>(sizes.size());
    s.pop.ngensel = 0;
    s.pop.nindivp = nindiv();
    s.pop.nindivinthisgen.allocate({0, s.pop.ngen});
    s.pop.cumindivnbtogen.allocate({0, s.pop.ngen});
    for (int64 g = 1; g <= s.pop.ngen; ++g) {
        s.pop.nindivinthisgen(g) = sizes[static_cast<std::size_t>(g - 1)];
        s.pop.cumindivnbtogen(g) = first(g);
    }
    s.pedi.pedigreestatus = "internal";
    s.sites.ndenovomutperchr = nmutations;
    s.chips.nchip = 1;
    s.qtn.nqtn = sum(qtnperchrom) - nmutations * s.founders.nchrom;
    s.qtn.nqtngamma = s.qtn.nqtn;
    s.qtn.nqtnmodels = 4;
    s.qtn.shapeparam = 0.4;
    s.qtn.scaleparam = 1.66;
    s.qtn.varamutprop = 0.25;
    s.traits.ntraits = ntraits;
    for (array1<double> *a : {&s.traits.indexwt, &s.traits.herit, &s.traits.varaspec})
        a->allocate(ntraits);
    for (array2<double> *a :
         {&s.traits.coraspec, &s.traits.core, &s.traits.covaspec, &s.traits.cholcovaspec})
        a->allocate(ntraits, ntraits);
    for (array3<double> *a : {&s.traits.cove, &s.traits.cholcove}) a->allocate(4, ntraits, ntraits);
    for (int64 j = 1; j <= ntraits; ++j) {
        s.traits.herit(j) = 0.2 + 0.1 * static_cast<double>(j);
        s.traits.varaspec(j) = static_cast<double>(j);
        for (int64 h = 1; h <= ntraits; ++h) {
            s.traits.coraspec(j, h) = j == h ? 1.0 : 0.5;
            s.traits.core(j, h) = j == h ? 1.0 : -0.2;
        }
    }
    s.selection.shaperecomb = 0.5;
    s.selection.scalerecomb = 2.0;
    s.values.heritrecomb = 0.3;
    return s;
}

double qtninputs::frequency(const qtnset &set, int64 generation, int64 q) const
{
    int64 count = 0;
    for (int64 i = first(generation); i < first(generation + 1); ++i)
        count += set.genotypes[static_cast<std::size_t>(i)][static_cast<std::size_t>(q)];
    const std::size_t g = static_cast<std::size_t>(generation);
    return throughfile(static_cast<double>(count) / (2.0 * static_cast<double>(sizes[g])));
}

void qtninputs::drawset(const state &s, qtnset &set, const std::vector<int64> &perchrom,
                        bool mutations)
{
    set = qtnset();
    std::uniform_real_distribution<double> uniform;
    std::vector<double> freq;
    for (const int64 n : perchrom)
        for (int64 k = 0; k < n; ++k) {
            const bool mutation = mutations && k < nmutations;
            set.site.push_back(60 * k + 7);
            set.mutind.push_back(mutation ? 1 : 0);
            set.carrier.push_back(mutation ? 5 : 0);
            set.maf.push_back(throughfile(0.5 * uniform(draws)));
            set.position.push_back(throughfile(uniform(draws)));
            freq.push_back(0.1 + 0.8 * uniform(draws));
        }
    for (int64 i = 0; i < s.pop.nindivp; ++i) {
        std::vector<int> row;
        for (const double f : freq)
            row.push_back((uniform(draws) < f ? 1 : 0) + (uniform(draws) < f ? 1 : 0));
        set.genotypes.push_back(row);
    }
}

void qtninputs::writeset(const qtnset &set, const std::string &name,
                         const std::string &informationname, const std::vector<int64> &perchrom,
                         bool withmutations) const
{
    std::size_t from = 0;
    for (std::size_t h = 0; h < perchrom.size(); ++h) {
        const std::string folder = chromfolder(static_cast<int64>(h) + 1);
        const std::size_t to = from + static_cast<std::size_t>(perchrom[h]);
        std::string information;
        for (std::size_t q = from; q < to; ++q) {
            information += format("%20zu%20ld%20.10f%20.10f", q - from + 1, set.site[q], set.maf[q],
                                  set.position[q]);
            if (withmutations) information += format("%20ld%20ld", set.mutind[q], set.carrier[q]);
            information += '\n';
        }
        writefile(folder + informationname, information);
        for (std::size_t g = 0; g < sizes.size(); ++g) {
            std::string genotypes, frequencies;
            for (int64 i = first(static_cast<int64>(g)); i < first(static_cast<int64>(g) + 1);
                 ++i) {
                genotypes += format("%20ld", i + 1);
                for (std::size_t q = from; q < to; ++q)
                    genotypes += format("%2d", set.genotypes[static_cast<std::size_t>(i)][q]);
                genotypes += '\n';
            }
            for (std::size_t q = from; q < to; ++q)
                frequencies += format("%20zu%20ld%20.10f\n", q - from + 1, set.site[q],
                                      frequency(set, static_cast<int64>(g), static_cast<int64>(q)));
            const std::string tail = "Generation" + std::to_string(g + 1) + ".txt";
            writefile(folder + name + "QtnGenotype" + tail, genotypes);
            writefile(folder + name + "QtnAlleleFreq" + tail, frequencies);
        }
        from = to;
    }
}

void qtninputs::writestores(const state &s) const
{
    for (std::size_t h = 0; h < qtnperchrom.size(); ++h) {
        const std::string folder = chromfolder(static_cast<int64>(h) + 1);
        writefile(folder + "SegSitesIncluded.txt", " 1200\n");
        std::string counts = format(" %ld %ld 10\n", qtnperchrom[h], nmutations);
        if (s.selection.recombselonoff)
            counts += format(" %ld %ld 10\n", recombperchrom[h], nmutations);
        writefile(folder + "NbOfQtnMutationsAndSnp.txt", counts);
        std::string mutations;
        for (int64 m = 0; m < nmutations; ++m)
            mutations += format(" %ld 5 1 %ld %ld\n", 60 * m + 7, m + 1, 60 * m + 7);
        writefile(folder + "MutDeNovoInfo.txt", mutations);
        writefile(folder + "MutIndivIndicator.txt", "");
    }
}

void qtninputs::writepedigree() const
{
    std::string pedigree(120, 'x'), genders(61, 'x'), generations(64, 'x');
    std::string counts = "          \n";
    pedigree += '\n', genders += '\n', generations += '\n';
    int64 i = 0;
    for (std::size_t g = 0; g < sizes.size(); ++g) {
        const int64 males = sizes[g] / 2;
        generations += format("%4zu%20ld%20ld%20ld\n", g + 1, sizes[g], males, sizes[g] - males);
        for (int64 k = 1; k <= sizes[g]; ++k) {
            ++i;
            const int64 sire = g == 0 ? 0 : first(static_cast<int64>(g) - 1) + 1;
            const int64 dam = g == 0 ? 0 : sire + 1;
            pedigree +=
                format("%20zu%20ld%20ld%20ld%20ld %-512s\n", g + 1, i, i, sire, dam, "/run");
            genders += format("%20zu%20ld%20d\n", g + 1, i, k <= males ? 1 : 2);
        }
    }
    writefile("SimulatedData/Pedigree.txt", pedigree);
    writefile("SimulatedData/Gender.txt", genders);
    writefile("SimulatedData/NbOfIndivInEachGen.txt", generations);
}

void qtninputs::write(const state &s)
{
    drawset(s, unrestricted, qtnperchrom, true);
    drawset(s, restricted, qtnperchrom, true);
    writeset(unrestricted, "Unrestricted", "UnRestrictedQtnInformation.txt", qtnperchrom, true);
    writeset(restricted, "Restricted", "RestrictedQtnInformation.txt", qtnperchrom, true);
    if (s.selection.recombselonoff) {
        drawset(s, recombination, recombperchrom, false);
        writeset(recombination, "Recombination", "RecombinationQtnInformation.txt", recombperchrom,
                 false);
        std::string counts;
        for (int64 i = 1; i <= s.pop.nindivp; ++i) {
            crossings.push_back({i % 4, i % 3});
            counts += format("%20ld%20ld%20ld\n", i, i % 4, i % 3);
        }
        writefile("SimulatedData/RecombinationCount.txt", counts);
    }
    writestores(s);
    writepedigree();
}
