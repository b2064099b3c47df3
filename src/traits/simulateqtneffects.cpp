#include "traits/simulateqtneffects.h"

#include "files.h"
#include "randomnumbers.h"
#include "traits/covariances.h"
#include "traits/effectarrays.h"
#include "traits/effectdistributions.h"
#include "traits/effectfiles.h"
#include "traits/qtnclasses.h"

#include <string>

namespace
{
void drawgammapositions(state &s)
{
    array1<int64> order(s.loci.ntotqtn);
    randomorder(order, s.loci.ntotqtn, s.random);
    s.loci.qtngamma.fill(0);
    for (int64 i = 1; i <= s.loci.ntotqtngamma; ++i) s.loci.qtngamma(order(i)) = 1;
}

// QTN first+1 to first+n of one of the two sets, those of a chromosome.
void readset(const std::string &informationpath, const std::string &frequencypath, int64 first,
             int64 n, array1<int64> &siteid, array1<double> &maf, array1<double> &position,
             array1<int64> &mutind, array1<int64> &mutindiv, array1<double> &freq)
{
    infile information(informationpath), frequencies(frequencypath);
    for (int64 q = first + 1; q <= first + n; ++q) {
        information.record();
        information.word();
        siteid(q) = information.integer();
        maf(q) = information.real();
        position(q) = information.real();
        mutind(q) = information.integer();
        mutindiv(q) = information.integer();
        frequencies.record();
        frequencies.word();
        frequencies.word();
        freq(q) = frequencies.real();
    }
}

void readrecombinationset(state &s, const std::string &informationpath,
                          const std::string &frequencypath, int64 first, int64 n)
{
    infile information(informationpath), frequencies(frequencypath);
    for (int64 q = first + 1; q <= first + n; ++q) {
        information.record();
        information.word();
        s.loci.allqtnidrecomb(q) = information.integer();
        s.loci.allqtnmafrecomb(q) = information.real();
        s.loci.allqtnposrecomb(q) = information.real();
        frequencies.record();
        frequencies.word();
        s.loci.allqtnidrecomb(q) = frequencies.integer();
        s.loci.allqtnfreqrecomb(q) = frequencies.real();
    }
}

void drawadditiveeffects(state &s)
{
    locusdata &q = s.loci;
    simuladditiveeffects(s, q.allqtnmutindunres, q.addeffnormalunres, q.addeffgammaunrestr);
    simuladditiveeffects(s, q.allqtnmutindrestr, q.addeffnormalrestr, q.addeffgammarestr);
}

void drawdominanceeffects(state &s)
{
    locusdata &q = s.loci;
    simuldominanceeffects(s, q.addeffnormalunres, q.addeffgammaunrestr, q.domdegnormalunres,
                          q.domdeggammaunrestr, q.domeffnormalunres, q.domeffgammaunres);
    simuldominanceeffects(s, q.addeffnormalrestr, q.addeffgammarestr, q.domdegnormalrestr,
                          q.domdeggammarestr, q.domeffnormalrestr, q.domeffgammarestr);
    computeaverageallelesubsteffects(s, q.allqtnfrequnres, q.addeffnormalunres,
                                     q.addeffgammaunrestr, q.domeffnormalunres, q.domeffgammaunres,
                                     q.alphanormalunres, q.alphagammaunrestr);
    computeaverageallelesubsteffects(s, q.allqtnfreqrestr, q.addeffnormalrestr, q.addeffgammarestr,
                                     q.domeffnormalrestr, q.domeffgammarestr, q.alphanormalrestr,
                                     q.alphagammarestr);
}
} // namespace

void readqtninformation(state &s)
{
    locusdata &d = s.loci;
    int64 q = 0, l = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        const std::string folder = chromfolder(h);
        const std::string recombinformation = folder + "RecombinationQtnInformation.txt";
        const std::string recombfrequencies = folder + "RecombinationQtnAlleleFreqGeneration1.txt";
        readset(folder + "UnRestrictedQtnInformation.txt",
                folder + "UnrestrictedQtnAlleleFreqGeneration1.txt", q, d.nqtnonthischrom(h),
                d.allqtnidunres, d.allqtnmafunres, d.allqtnposunres, d.allqtnmutindunres,
                d.mutindivunres, d.allqtnfrequnres);
        readset(folder + "RestrictedQtnInformation.txt",
                folder + "RestrictedQtnAlleleFreqGeneration1.txt", q, d.nqtnonthischrom(h),
                d.allqtnidrestr, d.allqtnmafrestr, d.allqtnposrestr, d.allqtnmutindrestr,
                d.mutindivrestr, d.allqtnfreqrestr);
        q += d.nqtnonthischrom(h);
        if (s.selection.recombselonoff) {
            readrecombinationset(s, recombinformation, recombfrequencies, l,
                                 d.nqtnrecombonthischrom(h));
            l += d.nqtnrecombonthischrom(h);
        } else {
            outfile(recombinformation).close();
            outfile(recombfrequencies).close();
        }
    }
    drawgammapositions(s);
}

void simulateqtneffects(state &s)
{
    arrayscope arrays;
    makeeffectarrays(s, arrays);
    readqtninformation(s);
    workoutgeneticcovariances(s);
    drawadditiveeffects(s);
    if (s.qtn.dominonoff) drawdominanceeffects(s);
    if (s.selection.recombselonoff) simuleffectsforrecombination(s);

    compileqtninformation(s);
    compileqtnadditiveeffects(s);
    if (s.qtn.dominonoff) {
        compileqtndominanceeffects(s);
        compileqtnaverallelesubsteff(s);
    }
    if (s.selection.recombselonoff) compileqtnrecombination(s);
    classifyqtns(s);
}
