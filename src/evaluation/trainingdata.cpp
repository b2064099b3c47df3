#include "evaluation/trainingdata.h"

#include "allelerows.h"
#include "cyclefolder.h"
#include "evaluation/selectionchip.h"
#include "evaluation/solutionfiles.h"
#include "textlayout.h"
#include "values/qtngenotypes.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace
{
constexpr int64 fieldwidth = 40, fielddecimals = 30;
constexpr int64 ncodes = 4; // genotypes 0, 1, 2 and missing

// The scaled value of every genotype code at a locus of frequency p, laid out one after another.
void appendscaledfields(textline &fields, float p)
{
    const float scale = std::sqrt(2.0f * p * (1.0f - p) + 0.00001f);
    for (int64 code = 0; code < ncodes; ++code) {
        float genotype = code == ncodes - 1 ? 2.0f * p : static_cast<float>(code);
        genotype = genotype - 2.0f * p;
        genotype = genotype / scale;
        putf(fields, static_cast<double>(genotype), fieldwidth, fielddecimals);
    }
}

void appendzerofields(textline &fields)
{
    for (int64 code = 0; code < ncodes; ++code) putf(fields, 0, fieldwidth, fielddecimals);
}

} // namespace

textline layoutscaledfields(const state &s, const std::string &folder)
{
    textline fields;
    fields.reserve(static_cast<std::size_t>(s.loci.nsnpforsel * ncodes * fieldwidth));
    const author by = trainingauthor(s);
    infile
        frequencies; // opened with the first locus that segregates: a training by pedigree has none
    for (int64 j = 1; j <= s.loci.nsnpforsel; ++j) {
        if (s.cycle.fixedsnp(j) != 1) {
            appendzerofields(fields);
            continue;
        }
        if (!frequencies.isopen()) frequencies.open(folder + trainingfrequencies, by);
        frequencies.record();
        if (by == author::user)
            frequencies.skipwords(1);
        else
            frequencies.identifier(j, "SNP");
        appendscaledfields(fields, static_cast<float>(frequencies.real()));
    }
    if (by != author::user && frequencies.isopen()) frequencies.stopifmore();
    return fields;
}

void scalegenottestingdata(state &s, int64 selectioncycle, int64 runid)
{
    const std::string folder = cyclefolder(selectioncycle);
    const int64 nloci = s.loci.nsnpforsel;
    readfixedsnp(s, folder);
    const textline fields = layoutscaledfields(s, folder);

    infile in(folder + testgenotypes(s), author::system);
    outfile out(folder + scaledgenotypes(s, runid));
    std::vector<int8> genotypes(static_cast<std::size_t>(nloci));
    textline id;
    for (int64 i = s.cycle.starttestindiv; i <= s.cycle.endtestindiv; ++i) {
        readallelerow(in, i, genotypes.data(), nloci);
        puti(id, i, 20);
        out.write(id);
        id.clear();
        const char *from = fields.data();
        for (const int8 genotype : genotypes) {
            const int64 code = genotype < 0 || genotype > 2 ? ncodes - 1 : genotype;
            std::memcpy(out.reserve(fieldwidth), from + code * fieldwidth, fieldwidth);
            out.commit(fieldwidth);
            from += ncodes * fieldwidth;
        }
        out.write("\n");
    }
    out.close();
}

void writetestingqtngenotypes(state &s, int64 selectioncycle, int64 testgen,
                              int64 tmpstarttestindiv)
{
    const bool lastgeneration = testgen == s.pop.ngen + selectioncycle;
    infile in(qtngenotypefile(setofselection(s)), author::system);
    outfile out(cyclefolder(selectioncycle) +
                (lastgeneration ? lastqtngenotypes : testqtngenotypes));
    std::vector<int8> genotypes(static_cast<std::size_t>(s.loci.ntotqtn));
    in.skiprecords(tmpstarttestindiv - 1);
    for (int64 i = 1; i <= s.pedi.nindivinthisgen(testgen); ++i) {
        const int64 id = tmpstarttestindiv + i - 1;
        readallelerow(in, id, genotypes.data(), s.loci.ntotqtn, 2);
        writeallelerow(out, id, genotypes.data(), s.loci.ntotqtn);
    }
    out.close();
}
