#include "traits/effectfiles.h"

#include "files.h"
#include "textlayout.h"
#include "words.h"

#include <string>
#include <vector>

namespace
{
// Values of all traits that stand side by side under one label.
struct effectblock {
    const char *label;
    const array2<double> *values;
    bool gamma;
};

void putkeys(textline &line, int64 q, int64 chrom, int64 site)
{
    puti(line, q, 10);
    puti(line, chrom, 10);
    puti(line, site, 10);
}

textline effecttitle(const state &s, const std::string &prefix,
                     const std::vector<effectblock> &blocks)
{
    textline labels;
    for (const effectblock &block : blocks)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            if (!labels.empty()) labels.append(4, ' ');
            labels += block.label + numbertext(j);
        }
    textline title;
    putleft(title, prefix + labels, 1000);
    return title;
}

void writeeffectfile(const state &s, const std::string &name, const std::string &prefix,
                     const array1<int64> &siteids, std::vector<effectblock> blocks)
{
    if (s.qtn.nqtngamma <= 0) std::erase_if(blocks, [](const effectblock &b) { return b.gamma; });
    outfile out("./SimulatedData/" + name);
    out.writeline(effecttitle(s, prefix, blocks));
    textline line;
    int64 q = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        for (int64 k = 1; k <= s.loci.nqtnonthischrom(h); ++k) {
            ++q;
            putkeys(line, q, h, siteids(q));
            for (const effectblock &block : blocks)
                for (int64 j = 1; j <= s.traits.ntraits; ++j)
                    putf(line, (*block.values)(q, j), 20, 10);
            out.writeline(line);
        }
    out.close();
}

void writeinformationfile(const state &s, const std::string &name, const array1<int64> &siteids,
                          const array1<double> &maf, const array1<double> &freq,
                          const array1<double> &position, const array1<int64> &mutind,
                          const array1<int64> &mutindiv)
{
    outfile out("./SimulatedData/" + name);
    textline line;
    puta(line,
         "GlobalQtnId  ChromId QtnSeqIdOnChrom  MinorAlelleFreq  NonZeroAlleleFreq   "
         "QtnPhysicalPosOnChrom  MutIndicator   IndivMutIndicator",
         130);
    out.writeline(line);
    int64 q = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        for (int64 k = 1; k <= s.loci.nqtnonthischrom(h); ++k) {
            ++q;
            putkeys(line, q, h, siteids(q));
            for (const double x : {maf(q), freq(q), position(q)}) putf(line, x, 20, 10);
            puti(line, mutind(q), 20);
            puti(line, mutindiv(q), 20);
            out.writeline(line);
        }
    out.close();
}
} // namespace

void compileqtninformation(const state &s)
{
    const locusdata &q = s.loci;
    writeinformationfile(s, "UnrestrictedQtnInformation.txt", q.allqtnidunres, q.allqtnmafunres,
                         q.allqtnfrequnres, q.allqtnposunres, q.allqtnmutindunres, q.mutindivunres);
    writeinformationfile(s, "RestrictedQtnInformation.txt", q.allqtnidrestr, q.allqtnmafrestr,
                         q.allqtnfreqrestr, q.allqtnposrestr, q.allqtnmutindrestr, q.mutindivrestr);
}

void compileqtnadditiveeffects(const state &s)
{
    const locusdata &q = s.loci;
    const std::string prefix = "GlobalQtnId  ChromId  QtnSeqIdOnChrom ";
    writeeffectfile(s, "UnrestrictedQtnAdditEffects.txt", prefix, q.allqtnidunres,
                    {{"AddEffNormUnres", &q.addeffnormalunres, false},
                     {"AddEffGammUnres", &q.addeffgammaunrestr, true}});
    writeeffectfile(s, "RestrictedQtnAdditEffects.txt", prefix, q.allqtnidrestr,
                    {{"AddEffNormRestr", &q.addeffnormalrestr, false},
                     {"AddEffGammRestr", &q.addeffgammarestr, true}});
}

void compileqtndominanceeffects(const state &s)
{
    const qtnsettings &q = s.qtn;
    const std::string rest = "  ChromId  QtnSeqIdOnChrom ";
    writeeffectfile(s, "UnrestrictedQtnDominEffects.txt", "GlobalQtnId" + rest,
                    s.loci.allqtnidunres,
                    {{"DomEffNormUnres", &s.loci.domeffnormalunres, false},
                     {"DomEffGammUnres", &s.loci.domeffgammaunres, true},
                     {"DomDegNormUnres", &s.loci.domdegnormalunres, false},
                     {"DomDegGammUnres", &s.loci.domdeggammaunrestr, true}});
    // The odd first word is part of the format that readers of this file know.
    const char *firstword = q.nqtngamma > 0 ? "GlobalQtnId" : "GobalQtnId";
    writeeffectfile(s, "RestrictedQtnDominEffects.txt", firstword + rest, s.loci.allqtnidrestr,
                    {{"DomEffNormRestr", &s.loci.domeffnormalrestr, false},
                     {"DomEffGammRestr", &s.loci.domeffgammarestr, true},
                     {"DomDegNormRestr", &s.loci.domdegnormalrestr, false},
                     {"DomDegGammRestr", &s.loci.domdeggammarestr, true}});
}

void compileqtnaverallelesubsteff(const state &s)
{
    const locusdata &q = s.loci;
    const std::string prefix = "GlobalQtnId  ChromId  QtnSeqIdOnChrom  ";
    writeeffectfile(s, "UnrestrictedQtnAverAlleleSubstEffects.txt", prefix, q.allqtnidunres,
                    {{"AlphaNormUnres", &q.alphanormalunres, false},
                     {"AlphaGammUnres", &q.alphagammaunrestr, true}});
    writeeffectfile(s, "RestrictedQtnAverAlleleSubstEffects.txt", prefix, q.allqtnidrestr,
                    {{"AlphaNormRestr", &q.alphanormalrestr, false},
                     {"AlphaGammRestr", &q.alphagammarestr, true}});
}

void compileqtnrecombination(const state &s)
{
    const locusdata &d = s.loci;
    outfile out("./SimulatedData/RecombinationQtnInformationEffects.txt");
    textline line;
    puta(line,
         "GlobalQtnId  ChromId QtnSeqIdOnChrom  MinorAlelleFreq  NonZeroAlleleFreq   "
         "QtnPhysicalPosOnChrom   AdditEffect",
         110);
    out.writeline(line);
    int64 q = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        for (int64 k = 1; k <= d.nqtnrecombonthischrom(h); ++k) {
            ++q;
            putkeys(line, q, h, d.allqtnidrecomb(q));
            for (const double x : {d.allqtnmafrecomb(q), d.allqtnfreqrecomb(q),
                                   d.allqtnposrecomb(q), d.addeffrecomb(q)})
                putf(line, x, 20, 10);
            out.writeline(line);
        }
    out.close();
}
