#include "traits/effectfiles.h"

#include "files.h"
#include "textlayout.h"
#include "words.h"

#include <vector>

namespace
{
constexpr const char *recombinationfile = "./SimulatedData/RecombinationQtnInformationEffects.txt";

std::string fileofset(qtnset set, const char *rest)
{
    return std::string("./SimulatedData/") + nameofset(set) + rest;
}
} // namespace

std::string dominanceeffectfile(qtnset set)
{
    return fileofset(set, "QtnDominEffects.txt");
}
std::string substitutioneffectfile(qtnset set)
{
    return fileofset(set, "QtnAverAlleleSubstEffects.txt");
}

namespace
{
// How the names of their columns begin.
constexpr const char *additivelabel = "AddEff", *dominancelabel = "DomEff", *degreelabel = "DomDeg",
                     *substitutionlabel = "Alpha";

using effects = array2<double> qtnmodeldata::*;

// One kind of effect, the columns of the models of a set side by side.
struct effectblock {
    const char *label;
    effects values;
};

// The models of a set that are in use, normal before gamma.
std::vector<int64> modelsofset(const state &s, qtnset set)
{
    std::vector<int64> models;
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p)
        if (s.loci.model(p).set == set) models.push_back(p);
    return models;
}

void putkeys(textline &line, const qtnsetdata &set, int64 q)
{
    for (const int64 key : {q, set.chromid(q), set.qtnid(q)}) puti(line, key, 10);
}

// Names of the columns of one kind of effect: models, and in them traits.
std::vector<std::string> columnlabels(const state &s, qtnset set, const std::string &kind)
{
    std::vector<std::string> labels;
    for (const int64 p : modelsofset(s, set))
        for (int64 j = 1; j <= s.traits.ntraits; ++j)
            labels.push_back(
                kind +
                (s.loci.model(p).distribution == effectdistribution::normal ? "Norm" : "Gamm") +
                (set == qtnset::unrestricted ? "Unres" : "Restr") + numbertext(j));
    return labels;
}

textline effecttitle(const state &s, qtnset set, const std::string &prefix,
                     const std::vector<effectblock> &blocks)
{
    textline labels;
    for (const effectblock &block : blocks)
        for (const std::string &label : columnlabels(s, set, block.label)) {
            if (!labels.empty()) labels.append(4, ' ');
            labels += label;
        }
    textline title;
    putleft(title, prefix + labels, 1000);
    return title;
}

void writeeffectfile(const state &s, const std::string &path, qtnset set, const std::string &prefix,
                     const std::vector<effectblock> &blocks)
{
    outfile out(path);
    out.writeline(effecttitle(s, set, prefix, blocks));
    textline line;
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        putkeys(line, s.loci.sets[set], q);
        for (const effectblock &block : blocks)
            for (const int64 p : modelsofset(s, set))
                for (int64 j = 1; j <= s.traits.ntraits; ++j)
                    putf(line, (s.loci.model(p).*block.values)(q, j), 20, 10);
        out.writeline(line);
    }
    out.close();
}

void writeinformationfile(const state &s, qtnset which)
{
    const qtnsetdata &set = s.loci.sets[which];
    outfile out(informationfile(which));
    textline line;
    puta(line,
         "GlobalQtnId  ChromId QtnSeqIdOnChrom  MinorAlelleFreq  NonZeroAlleleFreq   "
         "QtnPhysicalPosOnChrom  MutIndicator   IndivMutIndicator",
         130);
    out.writeline(line);
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        putkeys(line, set, q);
        for (const double x : {set.maf(q), set.referencefreq(q), set.pos(q)}) putf(line, x, 20, 10);
        for (const int64 x : {set.mutind(q), set.mutindiv(q)}) puti(line, x, 20);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void compileqtninformation(const state &s)
{
    for (const qtnset set : traitsets) writeinformationfile(s, set);
}

void compileqtnadditiveeffects(const state &s)
{
    for (const qtnset set : traitsets)
        writeeffectfile(s, additiveeffectfile(set), set, "GlobalQtnId  ChromId  QtnSeqIdOnChrom ",
                        {{additivelabel, &qtnmodeldata::addeff}});
}

void compileqtndominanceeffects(const state &s)
{
    for (const qtnset set : traitsets) {
        // The odd first word is part of the format that readers of this file know.
        const bool odd = set == qtnset::restricted && s.qtn.nqtngamma <= 0;
        writeeffectfile(
            s, dominanceeffectfile(set), set,
            std::string(odd ? "GobalQtnId" : "GlobalQtnId") + "  ChromId  QtnSeqIdOnChrom ",
            {{dominancelabel, &qtnmodeldata::domeff}, {degreelabel, &qtnmodeldata::domdeg}});
    }
}

void compileqtnaverallelesubsteff(const state &s)
{
    for (const qtnset set : traitsets)
        writeeffectfile(s, substitutioneffectfile(set), set,
                        "GlobalQtnId  ChromId  QtnSeqIdOnChrom  ",
                        {{substitutionlabel, &qtnmodeldata::alpha}});
}

void compileqtnrecombination(const state &s)
{
    const qtnsetdata &set = s.loci.sets[qtnset::recombination];
    outfile out(recombinationfile);
    textline line;
    puta(line,
         "GlobalQtnId  ChromId QtnSeqIdOnChrom  MinorAlelleFreq  NonZeroAlleleFreq   "
         "QtnPhysicalPosOnChrom   AdditEffect",
         110);
    out.writeline(line);
    for (int64 q = 1; q <= s.loci.ntotqtnrecomb; ++q) {
        putkeys(line, set, q);
        for (const double x :
             {set.maf(q), set.referencefreq(q), set.pos(q), s.loci.addeffrecomb(q)})
            putf(line, x, 20, 10);
        out.writeline(line);
    }
    out.close();
}

std::string informationfile(qtnset set)
{
    return fileofset(set, "QtnInformation.txt");
}

std::string additiveeffectfile(qtnset set)
{
    return fileofset(set, "QtnAdditEffects.txt");
}

namespace
{
void readfrequencies(qtnset which, array1<double> &freq)
{
    infile in(informationfile(which), author::system);
    in.skiprecords(1);
    int64 q = 0;
    for (double &f : freq) {
        in.record();
        in.identifier(++q, "QTN");
        in.skipwords(3); // chromosome, site and minor allele frequency
        f = in.fraction();
    }
    in.stopifmore();
}

// The first columns of an effect file: those of one kind.
void readeffects(state &s, const std::string &path, qtnset set, effects values)
{
    infile in(path, author::system);
    in.skiprecords(1);
    const std::vector<int64> models = modelsofset(s, set);
    std::vector<double> row(models.size() * static_cast<std::size_t>(s.traits.ntraits));
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q) {
        in.record();
        in.identifier(q, "QTN");
        in.skipwords(2);
        in.anyreals(row.data(), std::ssize(row));
        const double *value = row.data();
        for (const int64 p : models)
            for (int64 j = 1; j <= s.traits.ntraits; ++j)
                (s.loci.model(p).*values)(q, j) = *value++;
    }
    in.stopifmore();
}

void readrecombinationeffects(state &s)
{
    infile in(recombinationfile, author::system);
    in.skiprecords(1);
    for (int64 q = 1; q <= s.loci.ntotqtnrecomb; ++q) {
        in.record();
        in.identifier(q, "QTN");
        in.skipwords(3);
        s.loci.sets[qtnset::recombination].referencefreq(q) = in.fraction();
        in.skipwords(1);
        s.loci.addeffrecomb(q) = in.anyreal();
    }
    in.stopifmore();
}
} // namespace

void readqtneffects(state &s)
{
    for (const qtnset set : traitsets) {
        readfrequencies(set, s.loci.sets[set].referencefreq);
        readeffects(s, s.qtn.dominonoff ? substitutioneffectfile(set) : additiveeffectfile(set),
                    set, &qtnmodeldata::alpha);
        if (s.qtn.dominonoff) readeffects(s, dominanceeffectfile(set), set, &qtnmodeldata::domeff);
    }
    if (s.selection.recombselonoff) readrecombinationeffects(s);
}

std::vector<qtnsite> readqtnsites(qtnset set)
{
    const bool istrait = set != qtnset::recombination;
    std::vector<qtnsite> sites;
    infile in(istrait ? informationfile(set) : recombinationfile, author::system);
    in.skiprecords(1);
    while (in.nextrecord()) {
        qtnsite &qtn = sites.emplace_back();
        in.skipwords(1); // its number, which is the line's
        for (int64 *value : {&qtn.chrom, &qtn.site}) *value = in.integer();
        for (double *value : {&qtn.maf, &qtn.referencefreq, &qtn.pos}) *value = in.real();
        if (!istrait) continue;
        for (int64 *value : {&qtn.mutation, &qtn.carrier}) *value = in.integer();
    }
    return sites;
}

effecttable readeffecttable(const state &s, qtnset set, int64 nqtn)
{
    effecttable table;
    table.rows.resize(static_cast<std::size_t>(nqtn));
    // A file's columns behind the first skipped ones go behind those of the files before.
    const auto append = [&](const std::string &path, int64 nskipped,
                            const std::vector<std::string> &names) {
        infile in(path, author::system);
        in.skiprecords(1);
        for (std::vector<double> &row : table.rows) {
            in.record();
            in.skipwords(nskipped);
            row.resize(row.size() + names.size());
            in.anyreals(row.data() + row.size() - names.size(), std::ssize(names));
        }
        table.names.insert(table.names.end(), names.begin(), names.end());
    };
    if (set == qtnset::recombination) {
        append(recombinationfile, 6, {"AddEffRecomb"});
        return table;
    }
    append(additiveeffectfile(set), 3, columnlabels(s, set, additivelabel));
    if (!s.qtn.dominonoff) return table;
    std::vector<std::string> dominance = columnlabels(s, set, dominancelabel);
    for (const std::string &label : columnlabels(s, set, degreelabel)) dominance.push_back(label);
    append(dominanceeffectfile(set), 3, dominance);
    append(substitutioneffectfile(set), 3, columnlabels(s, set, substitutionlabel));
    return table;
}

std::vector<std::string> effectfilesof(const state &s)
{
    std::vector<std::string> files;
    for (const qtnset set : traitsets) {
        files.push_back(informationfile(set));
        files.push_back(additiveeffectfile(set));
        if (!s.qtn.dominonoff) continue;
        files.push_back(dominanceeffectfile(set));
        files.push_back(substitutioneffectfile(set));
    }
    if (s.selection.recombselonoff) files.push_back(recombinationfile);
    return files;
}
