#include "traits/simulateqtneffects.h"

#include "files.h"
#include "markers/sitesets.h"
#include "randomnumbers.h"
#include "traits/covariances.h"
#include "traits/effectarrays.h"
#include "traits/effectdistributions.h"
#include "traits/effectfiles.h"
#include "traits/qtnclasses.h"

namespace
{
void drawgammapositions(state &s)
{
    array1<int64> order(s.loci.ntotqtn);
    randomorder(order, s.loci.ntotqtn, s.random);
    s.loci.qtngamma.fill(0);
    for (int64 i = 1; i <= s.loci.ntotqtngamma; ++i) s.loci.qtngamma(order(i)) = 1;
}

// The QTN first + 1, first + 2, ... of a set, those of a chromosome.
void readsetofchrom(state &s, qtnset which, int64 chrom, int64 first)
{
    qtnsetdata &set = s.loci.sets[which];
    infile information(informationfile(chrom, which), author::system);
    infile frequencies(frequencyfile(chrom, which, 1), author::system);
    for (int64 q = first + 1; q <= first + s.loci.onthischrom(which)(chrom); ++q) {
        set.chromid(q) = chrom;
        information.record();
        information.identifier(q - first, "QTN");
        set.qtnid(q) = information.integer();
        set.maf(q) = information.fraction();
        set.pos(q) = information.fraction();
        if (which != qtnset::recombination) {
            set.mutind(q) = information.within(0, 1);
            set.mutindiv(q) = information.integer();
        }
        frequencies.record();
        frequencies.identifier(q - first, "QTN");
        frequencies.identifier(set.qtnid(q), "site");
        set.referencefreq(q) = frequencies.fraction();
    }
    information.stopifmore();
    frequencies.stopifmore();
}

void readset(state &s, qtnset set)
{
    int64 first = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        readsetofchrom(s, set, h, first);
        first += s.loci.onthischrom(set)(h);
    }
}

void leaveemptyfiles(const state &s)
{
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        outfile(informationfile(h, qtnset::recombination)).close();
        outfile(frequencyfile(h, qtnset::recombination, 1)).close();
    }
}

void draweffects(state &s)
{
    for (const qtnset set : traitsets) simuladditiveeffects(s, set);
    if (s.qtn.dominonoff) {
        for (const qtnset set : traitsets) simuldominanceeffects(s, set);
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) computeaverageallelesubsteffects(s, p);
    }
    if (s.selection.recombselonoff) simuleffectsforrecombination(s);
}
} // namespace

void readqtninformation(state &s)
{
    for (const qtnset set : setsinuse(s)) readset(s, set);
    if (!s.selection.recombselonoff) leaveemptyfiles(s);
    drawgammapositions(s);
}

void simulateqtneffects(state &s)
{
    arrayscope arrays;
    makeeffectarrays(s, arrays);
    readqtninformation(s);
    workoutgeneticcovariances(s);
    draweffects(s);

    compileqtninformation(s);
    compileqtnadditiveeffects(s);
    if (s.qtn.dominonoff) {
        compileqtndominanceeffects(s);
        compileqtnaverallelesubsteff(s);
    }
    if (s.selection.recombselonoff) compileqtnrecombination(s);
    classifyqtns(s);
}
