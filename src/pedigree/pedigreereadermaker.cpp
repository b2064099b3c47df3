#include "pedigree/pedigreereadermaker.h"

#include "pedigree/parentnumbers.h"
#include "pedigree/pedigree.h"
#include "pedigree/pedigreefiles.h"
#include "pedigree/pedigreewarnings.h"
#include "pedigree/randomparents.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

namespace
{
// Rows of the generations before those of this run.
int64 rowsofearlierruns(const state &s)
{
    return s.run.specstartgen == 1 ? 0 : lastindivofgen(s, s.run.specstartgen - 1);
}

// ------------------------------------------------------- what earlier runs left

[[noreturn]] void stopforothersize(int64 gen)
{
    textline line;
    puta(line, "ERROR: The number of individuals in generation", 46);
    puti(line, gen, 4);
    printline(line);
    printline("must be reset to its initial value");
    stopwithcode(110014);
}

void readearliergenerations(state &s)
{
    int64 gen = 0;
    for (const generationcounts &counts : readgenerations(s.run.specstartgen - 1)) {
        ++gen;
        s.pedi.nmalinthisgen(gen) = counts.nmal;
        s.pedi.nfeminthisgen(gen) = counts.nfem;
        if (counts.nindiv != s.pedi.nindivinthisgen(gen)) stopforothersize(gen);
    }
}

void readearlierruns(state &s)
{
    const int64 nrows = rowsofearlierruns(s);
    readearliergenerations(s);
    // Rows of an internal pedigree are made anew, so only an external one needs its earlier rows.
    if (s.pop.pedigreefrom == pedigreesource::file) readpedigree(s, nrows);
    int64 row = 0;
    for (const genderline &line : readgenderlines(nrows)) s.pedi.globalgender(++row) = line.gender;
}

// ------------------------------------------------------- genders

void drawgenders(state &s)
{
    int64 jump = rowsofearlierruns(s);
    array1<int64> shufflegender;
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) {
        const int64 n = s.pedi.nindivinthisgen(j);
        shufflegender.allocate(n);
        randomorder(shufflegender, n, s.random);
        for (int64 i = 1; i <= n; ++i)
            s.pedi.globalgender(jump + shufflegender(i)) = i % 2 == 0 ? 1 : 2;
        s.pedi.nmalinthisgen(j) = n / 2;
        s.pedi.nfeminthisgen(j) = n - n / 2;
        jump += n;
    }
}

// ------------------------------------------------------- the table

// Rows from firstrow to the end, without parents.
void fillwithfounders(state &s, int64 firstrow, const std::string &here)
{
    for (int64 i = firstrow; i <= s.pop.nindivp; ++i) initline(s.pedi.ped(i), i, i, 0, 0, 1, here);
}

void checkpedigreelines(const state &s, int64 nlines)
{
    const int64 nrows = s.pop.nindivp - rowsofearlierruns(s);
    if (nlines > nrows)
        ioerror(s.pop.pedigreefile,
                "holds " + numbertext(nlines) + " individuals where there is room for " +
                    numbertext(nrows) +
                    (s.run.specstartgen == 1 ? "; raise NumberOfIndividualsInEachGeneration or "
                                               "shorten the file"
                                             : "; a run that goes on takes a file of its own "
                                               "generations, or PedigreeStatus,Internal"));
}

void importpedigree(state &s, const std::string &here)
{
    const int64 nindivpfile = countlines(s.pop.pedigreefile);
    checkpedigreelines(s, nindivpfile);
    const int64 jump = rowsofearlierruns(s);
    pedigreeindex index;
    for (int64 i = 1; i <= jump; ++i) index.add(s.pedi.ped(i));
    infile in(s.pop.pedigreefile);
    pedigreefindings findings;
    for (int64 i = jump + 1; i <= jump + nindivpfile; ++i) {
        in.record();
        const int64 id = in.integer();
        const int64 linenumber = in.linenumber();
        const int64 sire = in.integer();
        const int64 dam = in.integer();
        if (in.linenumber() != linenumber)
            ioerror(s.pop.pedigreefile, "line " + numbertext(linenumber) +
                                            ": an individual, its sire and its dam are wanted");
        initline(s.pedi.ped(i), id, i, index.find(sire), index.find(dam), 1, here);
        index.add(s.pedi.ped(i));
        noteparents(findings, s, i, sire, dam, linenumber);
    }
    findings.nrowswithout = s.pop.nindivp - jump - nindivpfile;
    warnofpedigree(s.options, s.pop.pedigreefile, findings, index);
    textline line;
    puta(line, "  Pedigree imported for generation", 34);
    puti(line, s.run.specstartgen, 4);
    printline(line);
    fillwithfounders(s, nindivpfile + 1, here); // rows just filled stay as they are
}

// ------------------------------------------------------- files

void writecounts(const state &s)
{
    std::vector<generationcounts> counts;
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j)
        counts.push_back(
            {s.pedi.nindivinthisgen(j), s.pedi.nmalinthisgen(j), s.pedi.nfeminthisgen(j)});
    writegenerationcounts(s.run.specstartgen, counts);
}
} // namespace

void makepedigree(state &s)
{
    if (s.run.specstartgen > 1) readearlierruns(s);
    drawgenders(s);
    const std::string here = workingdirectory();
    if (s.pop.pedigreefrom == pedigreesource::file) {
        importpedigree(s, here);
    } else {
        if (s.run.specendgen > 1) checknbofselectedindiv(s);
        fillwithfounders(s, 1, here);
        if (s.run.specendgen > 1) drawburninparents(s);
    }
}

void pedigreereadermaker(state &s)
{
    arrayscope arrays;
    makepedigreearrays(s, arrays);
    makepedigree(s);
    writeoutpedigree(s);
    writegenders(s);
    writecounts(s);
    printline("");
}
