#include "values/phenotypes.h"

#include "files.h"
#include "pedigree/pedigree.h"
#include "randomnumbers.h"
#include "textlayout.h"
#include "words.h"

#include <string>

namespace
{
std::string labelgroup(const state &s, const char *value)
{
    // The fourth label has an a more than the third.
    static const char *const models[] = {"NormUnres", "NormRestr", "GammUnres", "GammaRestr"};
    std::string labels;
    for (int64 j = 1; j <= s.traits.ntraits; ++j)
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
            if (!labels.empty()) labels.append(7, ' ');
            labels += std::string(value) + models[p - 1] + numbertext(j);
        }
    return labels;
}

textline valuetitle(const state &s)
{
    const std::string gap(7, ' ');
    textline title;
    putleft(title,
            "Generation     Indiv    Father    Mother       " + labelgroup(s, "TBV") + gap +
                labelgroup(s, "TDV") + gap + labelgroup(s, "TPV"),
            1000);
    return title;
}

void drawphenotypes(state &s, int64 p, int64 startindiv, int64 endindiv)
{
    valuedata &v = s.values;
    array1<double> z(s.traits.ntraits);
    for (int64 i = startindiv; i <= endindiv; ++i)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            z(j) = gasdev(s.random);
            double residual = 0;
            for (int64 h = 1; h <= j; ++h) residual += s.values.cholcove(p, j, h) * z(h);
            v.tpv(i, p, j) = (v.tbv(i, p, j) + v.tdv(i, p, j)) + residual;
        }
}

void writevalues(const state &s, int64 currentgen, int64 startindiv, int64 endindiv)
{
    outfile out;
    if (currentgen == 1) {
        out.open(valuetable);
        out.writeline(valuetitle(s));
    } else {
        out.openandkeep(valuetable, startindiv, {{0, s.pedi.ped(startindiv - 1).newid}},
                        s.marks.get());
    }
    textline line;
    for (int64 i = startindiv; i <= endindiv; ++i) {
        int64 id, sire, dam;
        getidsiredamfromline(s.pedi.ped(i), id, sire, dam);
        for (const int64 key : {currentgen, id, sire, dam}) puti(line, key, 10);
        for (const array3<double> *values : {&s.values.tbv, &s.values.tdv, &s.values.tpv})
            for (int64 j = 1; j <= s.traits.ntraits; ++j)
                for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
                    putf(line, (*values)(i, p, j), 20, 10);
        out.writeline(line);
    }
    out.close();
}

void writemeans(const state &s, int64 currentgen, int64 startindiv, int64 endindiv)
{
    outfile out;
    textline line;
    if (currentgen == 1) {
        out.open(meanstable);
        puta(line,
             "          Generation            QTNmodel              Trait              meanTBV",
             80);
        out.writeline(line);
    } else {
        out.openandkeep(meanstable, 1 + (currentgen - 1) * s.traits.ntraits * s.qtn.nqtnmodels,
                        {{currentgen - 1, s.qtn.nqtnmodels, s.traits.ntraits}}, s.marks.get());
    }
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            double sum = 0;
            for (int64 i = startindiv; i <= endindiv; ++i) sum += s.values.tbv(i, p, j);
            for (const int64 key : {currentgen, p, j}) puti(line, key, 20);
            putf(line, sum / static_cast<double>(s.values.nindivinsimulrun), 20, 10);
            out.writeline(line);
        }
    out.close();
}
} // namespace

void computetpv(state &s, int64 currentgen, int64 startindiv, int64 endindiv)
{
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) drawphenotypes(s, p, startindiv, endindiv);
    writevalues(s, currentgen, startindiv, endindiv);
    writemeans(s, currentgen, startindiv, endindiv);
}

std::vector<meanofgeneration> readmeans()
{
    std::vector<meanofgeneration> lines;
    infile in(meanstable, author::system);
    in.skiprecords(1);
    while (in.nextrecord()) {
        meanofgeneration &line = lines.emplace_back();
        for (int64 *key : {&line.generation, &line.model, &line.trait}) *key = in.integer();
        line.meantbv = in.anyreal();
    }
    return lines;
}
