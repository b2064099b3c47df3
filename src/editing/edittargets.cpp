#include "editing/edittargets.h"

#include "cyclefolder.h"
#include "files.h"
#include "markers/sitesets.h"
#include "sortstat.h"
#include "textlayout.h"
#include "traits/effectfiles.h"
#include "words.h"

#include <string>
#include <vector>

std::string editgainfile(int64 selcycle, int64 gen)
{
    return cyclefolder(selcycle) + "QtnGeneticGainAlleleFreqGener" + numbertext(gen) + ".txt";
}

std::string editlistfile(const state &s, int64 selcycle, int64 gen)
{
    return cyclefolder(selcycle) + nameofset(setofselection(s)) + "QtnSortedForGeneEditingGener" +
           numbertext(gen) + ".txt";
}

namespace
{
int64 parentstobeedited(const state &s, int64 parentgen)
{
    if (s.pop.nsireinthisgen(parentgen) > 0) return s.pop.nsireinthisgen(parentgen);
    if (s.pop.nselfedparinthisgen(parentgen) > 0) return s.pop.nselfedparinthisgen(parentgen);
    return s.pop.nrandparinthisgen(parentgen);
}

void writedeltagfile(const std::string &path, const array1<qtv> &qtvarray)
{
    outfile out(path);
    out.writeline("QtnGlobalID        QtnChrom        QtnSeqIdOnChrom     QtnFavAllele        "
                  "QtnFavAlleleFreq        QtnMeanChange       QtnNewFreq");
    textline line;
    for (const qtv &q : qtvarray) {
        for (int64 value : {q.id, q.chromosome, q.snpid, q.favallele}) puti(line, value, 20);
        for (double value : {q.favallelefreq, q.gain, q.newfreq}) putf(line, value, 20, 10);
        out.writeline(line);
    }
    out.close();
}

// Places in qtvarray, lowest gain first.
std::vector<group> sortqtv(const array1<qtv> &qtvarray)
{
    std::vector<group> order;
    for (int64 q = 1; q <= qtvarray.size(); ++q)
        order.push_back({q, static_cast<float>(qtvarray(q).gain)});
    qsort(order.data(), qtvarray.size());
    return order;
}

void writeqtvgefile(const std::string &path, const array1<qtv> &qtvarray,
                    const std::vector<group> &order)
{
    outfile out(path);
    textline line;
    puta(line,
         "              LineId         GlobalQtnId             ChromId     QtnSeqIdOnChrom      "
         "QtnEffPos1Neg0    IndivMutIndicator    GeneticGain    NewFreq",
         147);
    out.writeline(line);
    int64 lineid = 0;
    for (const group &place : order) {
        const qtv &q = qtvarray(place.order);
        for (int64 value : {++lineid, q.id, q.chromosome, q.snpid, q.favallele, int64(0)})
            puti(line, value, 20);
        putf(line, q.gain, 20, 10);
        putf(line, q.newfreq, 20, 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void readaddeff(const state &s, array1<qtv> &qtvarray)
{
    infile in(additiveeffectfile(setofselection(s)), author::system);
    in.skiprecords(1);
    int64 id = 0;
    for (qtv &q : qtvarray) {
        in.record();
        in.identifier(++id, "QTN");
        q.id = id;
        q.chromosome = in.integer();
        q.snpid = in.integer();
        q.addeff = q.addeffnorm = in.real();
        if (s.qtn.nqtngamma > 0) q.addeffgamma = in.real();
    }
    in.stopifmore();
}

void readfreq(const state &s, int64 gen, array1<qtv> &qtvarray)
{
    int64 q = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        infile in(frequencyfile(h, setofselection(s), gen - 1), author::system);
        for (int64 onchrom = 1; onchrom <= s.loci.nqtnonthischrom(h); ++onchrom) {
            qtv &at = qtvarray(++q);
            in.record();
            in.skipwords(1);
            in.identifier(at.snpid, "site");
            qtveffect(at.addeff, in.fraction(), at.favallele, at.favallelefreq);
        }
    }
}

void qtveffect(double addeff, double freq, int64 &favallele, double &favfreq)
{
    favallele = addeff > 0 ? 1 : 0;
    favfreq = addeff > 0 ? freq : 1 - freq;
}

double calcmeanval(double addeffect, double freq)
{
    return 2 * addeffect * freq;
}

double calcsirefreq(double favallelefreq, int64 nsires, int64 nsiresge)
{
    return (favallelefreq * static_cast<double>(nsires - nsiresge) +
            static_cast<double>(nsiresge)) /
           static_cast<double>(nsires);
}

double calcprogenyfreq(double sirenewfreq, double favallelefreq)
{
    return (sirenewfreq + favallelefreq) / 2;
}

void changemean(double qtvaddeffect, int64 nsires, int64 nsiresge, double favallelefreq,
                double &deltag, double &progenyfreq)
{
    const double currmeanvalue = calcmeanval(qtvaddeffect, favallelefreq);
    const double sirenewfreq = calcsirefreq(favallelefreq, nsires, nsiresge);
    progenyfreq = calcprogenyfreq(sirenewfreq, favallelefreq);
    deltag = calcmeanval(qtvaddeffect, progenyfreq) - currmeanvalue;
}

void deltagarrayfill(int64 nsires, int64 nsiresge, array1<qtv> &qtvarray)
{
    for (qtv &q : qtvarray)
        changemean(q.addeff, nsires, nsiresge, q.favallelefreq, q.gain, q.newfreq);
}

void runge(const state &s, int64 selcycle, int64 gen)
{
    array1<qtv> qtvarray(s.loci.ntotqtn);
    readaddeff(s, qtvarray);
    readfreq(s, gen, qtvarray);
    deltagarrayfill(parentstobeedited(s, gen - 1), s.editing.nindedited, qtvarray);
    writedeltagfile(editgainfile(selcycle, gen), qtvarray);
    writeqtvgefile(editlistfile(s, selcycle, gen), qtvarray, sortqtv(qtvarray));
}

void readeditlist(state &s, int64 selcycle, int64 gen)
{
    editdata &edits = s.edits;
    infile in(editlistfile(s, selcycle, gen), author::system);
    in.skiprecords(1);
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        in.record();
        in.identifier(q, "line");
        edits.qtnidsortedbyabsvalrecodedid(q) = in.within(1, s.loci.ntotqtn);
        edits.qtnidsortedbyabsvalchrom(q) = in.integer();
        edits.qtnidsortedbyabsval(q) = in.integer();
        edits.qtnforgeneditposneg(q) = in.integer();
        edits.qtnidsortedbyabsvalmutindivid(q) = in.integer();
    }
    in.stopifmore();
}
