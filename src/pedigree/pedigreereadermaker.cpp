#include "pedigree/pedigreereadermaker.h"

#include "pedigree/matings.h"
#include "pedigree/pedigree.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <algorithm>

namespace
{
// Rows of the generations before those of this run.
int64 rowsofearlierruns(const state &s)
{
    return s.run.specstartgen == 1 ? 0 : lastindivofgen(s, s.run.specstartgen - 1);
}

[[noreturn]] void stopforgeneration(const char *message, int64 width, int64 gen, int64 code)
{
    textline line;
    puta(line, message, width);
    puti(line, gen, 5);
    printline(line);
    stopwithcode(code);
}

[[noreturn]] void notenoughselfed(int64 gen)
{
    stopforgeneration("ERROR: Not enough plants to be selfed for generation", 52, gen, 110017);
}
[[noreturn]] void notenoughcrossed(int64 gen)
{
    stopforgeneration("ERROR: Not enough plants to be crossed for generation", 53, gen, 110021);
}
[[noreturn]] void notenoughmaleplants(int64 gen)
{
    stopforgeneration("ERROR: Not enough male plants for generation", 44, gen, 110019);
}
[[noreturn]] void notenoughfemaleplants(int64 gen)
{
    stopforgeneration("ERROR: Not enough female plants for generation", 46, gen, 110020);
}
[[noreturn]] void notenoughsires(int64 gen)
{
    stopforgeneration("ERROR: Not enough sires for generation", 38, gen, 110023);
}
[[noreturn]] void notenoughdams(int64 gen)
{
    stopforgeneration("ERROR: Not enough dams for generation", 37, gen, 110024);
}

// ------------------------------------------------------- what earlier runs left

void readearliergenerations(state &s)
{
    infile in(generationtable);
    in.skiprecords(1);
    for (int64 j = 1; j < s.run.specstartgen; ++j) {
        in.record();
        in.integer();
        const int64 nindiv = in.integer();
        s.pedi.nmalinthisgen(j) = in.integer();
        s.pedi.nfeminthisgen(j) = in.integer();
        if (nindiv == s.pop.nindivinthisgen(j)) continue;
        textline line;
        puta(line, "ERROR: The number of individuals in generation", 46);
        puti(line, j, 4);
        printline(line);
        printline("must be reset to its initial value");
        stopwithcode(110014);
    }
}

// Rows of an internal pedigree are made anew, so only an external one needs its earlier rows.
void readearlierrows(state &s)
{
    infile in(pedigreetable);
    in.skiprecords(1);
    for (int64 i = 1; i <= rowsofearlierruns(s); ++i) readpedigreeline(in, s.pedi.ped(i), i);
}

void readearliergenders(state &s)
{
    infile in(gendertable);
    in.skiprecords(1);
    for (int64 i = 1; i <= rowsofearlierruns(s); ++i) {
        in.record();
        in.integer();
        in.integer();
        s.pedi.globalgender(i) = in.integer();
    }
}

void readwhatearlierrunsleft(state &s)
{
    readearliergenerations(s);
    if (!isword(s.pop.pedigreestatus, "internal")) readearlierrows(s);
    readearliergenders(s);
}

// ------------------------------------------------------- genders

void drawgenders(state &s)
{
    int64 jump = rowsofearlierruns(s);
    array1<int64> shufflegender;
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) {
        const int64 n = s.pop.nindivinthisgen(j);
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

void checklinesofexternalpedigree(const state &s, int64 nlines)
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
    checklinesofexternalpedigree(s, nindivpfile);
    const int64 jump = rowsofearlierruns(s);
    pedigreeindex index;
    for (int64 i = 1; i <= jump; ++i) index.add(s.pedi.ped(i));
    infile in(s.pop.pedigreefile);
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
    }
    textline line;
    puta(line, "  Pedigree imported for generation", 34);
    puti(line, s.run.specstartgen, 4);
    printline(line);
    fillwithfounders(s, nindivpfile + 1, here); // rows just filled stay as they are
}

// ------------------------------------------------------- parents of the burn-in generations

void setdamtosire(state &s, int64 gen)
{
    for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i)
        s.pedi.ped(i).newdam = s.pedi.ped(i).newsire;
}

void drawplantparents(state &s, int64 gen)
{
    const int64 parentgen = gen - 1;
    if (s.pop.nselfedparinthisgen(parentgen) > 0) {
        selectnextparentsrandom(s, 1, gen, s.pop.nselfedparinthisgen(parentgen));
        setdamtosire(s, gen);
    } else if (s.pop.nrandparinthisgen(parentgen) > 0) {
        selectnextparentsrandom(s, 1, gen, s.pop.nrandparinthisgen(parentgen));
    } else {
        selectnextparentsrandom(s, 1, gen, s.pop.nsireinthisgen(parentgen));
        if (s.pop.ngendh == 0)
            selectnextparentsrandom(s, 2, gen, s.pop.ndaminthisgen(parentgen));
        else if (s.pop.createdhinthisgen(gen) == 1)
            setdamtosire(s, gen); // doubled haploids come from one parent
    }
}

void drawparentsofburnin(state &s)
{
    const int64 firstgen = std::max<int64>(2, s.run.specstartgen);
    const int64 lastgen = std::min(s.run.specendgen, s.pop.ngen);
    for (int64 j = firstgen; j <= lastgen; ++j) {
        if (s.pop.plantbreedonoff) {
            drawplantparents(s, j);
        } else {
            selectnextparentsrandom(s, 1, j, s.pop.nsireinthisgen(j - 1));
            selectnextparentsrandom(s, 2, j, s.pop.ndaminthisgen(j - 1));
        }
    }
}

// ------------------------------------------------------- files

void writegenders(const state &s)
{
    outfile out;
    if (s.run.specstartgen == 1) {
        out.open(gendertable);
        out.writeline("          Generation               Indiv               Gender");
    } else {
        out.openandkeep(gendertable, 1 + rowsofearlierruns(s));
    }
    textline line;
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) {
        for (int64 k = firstindivofgen(s, j); k <= lastindivofgen(s, j); ++k) {
            puti(line, j, 20);
            puti(line, k, 20);
            puti(line, s.pedi.globalgender(k), 20);
            out.writeline(line);
        }
    }
    out.close();
}

void writegenerationcounts(const state &s)
{
    outfile out;
    if (s.run.specstartgen == 1) {
        out.open(generationtable);
        out.writeline(generationtitle);
    } else {
        out.openandkeep(generationtable, s.run.specstartgen);
    }
    textline line;
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) {
        putgenerationline(line, j, s.pop.nindivinthisgen(j), s.pedi.nmalinthisgen(j),
                          s.pedi.nfeminthisgen(j));
        out.writeline(line);
    }
    out.close();
}

void allocatearraysforpedigree(state &s)
{
    s.pedi.ped.allocate(s.pop.nindivp);
    s.pedi.globalgender.allocate(s.pop.nindivp);
    s.pedi.nmalinthisgen.allocate(s.pop.ngen + s.pop.ngensel);
    s.pedi.nfeminthisgen.allocate(s.pop.ngen + s.pop.ngensel);
}

void deallocatearraysforpedigree(state &s)
{
    s.pedi.ped.release();
    s.pedi.globalgender.release();
    s.pedi.nmalinthisgen.release();
    s.pedi.nfeminthisgen.release();
}
} // namespace

void pedigreereadermaker(state &s)
{
    allocatearraysforpedigree(s);
    if (s.run.specstartgen > 1) readwhatearlierrunsleft(s);
    drawgenders(s);
    const std::string here = workingdirectory();
    if (!isword(s.pop.pedigreestatus, "internal")) {
        importpedigree(s, here);
    } else {
        if (s.run.specendgen > 1) checknbofselectedindiv(s);
        fillwithfounders(s, 1, here);
        if (s.run.specendgen > 1) drawparentsofburnin(s);
    }
    writeoutpedigree(s);
    writegenders(s);
    writegenerationcounts(s);
    deallocatearraysforpedigree(s);
    printline("");
}

// ------------------------------------------------------- numbers of parents

namespace
{
void checkselfedplants(const state &s, int64 j)
{
    if (s.pop.ndaminthisgen(j) > 0 || s.pop.nsireinthisgen(j) > 0 || s.pop.nrandparinthisgen(j) > 0)
        stopforgeneration("  ERROR: There is a conflict in the number of parents for generation ",
                          69, j, 110016);
    if (s.pop.nselfedparinthisgen(j) > s.pop.nindivinthisgen(j)) notenoughselfed(j);
}

void checkcrossedplants(const state &s, int64 j)
{
    const bool respectgender = isword(s.pop.gendermatters, "yes");
    if (s.pop.nsireinthisgen(j) == 0 && s.pop.ndaminthisgen(j) == 0 &&
        s.pop.nrandparinthisgen(j) == 0) {
        if (j <= s.pop.ngen - 1) {
            printfree(" ERROR: Number of parents cannot be null for generation", j);
            stopwithcode(110018);
        }
        textline line;
        puta(line, " NOTE: Numbers of parents in generation", 40);
        puti(line, j, 5);
        puta(line, " have not been provided", 23);
        printline(line);
    }
    if (respectgender && s.pop.nsireinthisgen(j) > s.pedi.nmalinthisgen(j)) notenoughmaleplants(j);
    if (respectgender && s.pop.ndaminthisgen(j) > s.pedi.nfeminthisgen(j)) notenoughfemaleplants(j);
    if (!respectgender && s.pop.nrandparinthisgen(j) > s.pop.nindivinthisgen(j))
        notenoughcrossed(j);
    if (s.pop.nrandparinthisgen(j) > 0 &&
        std::min(s.pop.nrandparinthisgen(j), s.pop.nindivinthisgen(j + 1)) < 2)
        stopforrandommating(j);
}

void checkanimals(const state &s, int64 j)
{
    if (s.pop.nsireinthisgen(j) == 0 && s.pop.ndaminthisgen(j) == 0)
        stopforgeneration("ERROR: Number of sires and dams must be non-null for generation", 63, j,
                          110022);
    if (s.pop.nsireinthisgen(j) > s.pedi.nmalinthisgen(j)) notenoughsires(j);
    if (s.pop.ndaminthisgen(j) > s.pedi.nfeminthisgen(j)) notenoughdams(j);
}
} // namespace

void checknbofselectedindiv(state &s)
{
    for (int64 j = std::max<int64>(1, s.run.specstartgen - 1); j < s.run.specendgen; ++j) {
        if (!s.pop.plantbreedonoff)
            checkanimals(s, j);
        else if (s.pop.nselfedparinthisgen(j) > 0)
            checkselfedplants(s, j);
        else
            checkcrossedplants(s, j);
    }
}

// ------------------------------------------------------- random choice

bool genderisignored(const state &s, int64 currentgen)
{
    return s.pop.plantbreedonoff && (s.pop.nrandparinthisgen(currentgen - 1) > 0 ||
                                     s.pop.nselfedparinthisgen(currentgen - 1) > 0);
}

void stopiftoofewparents(const state &s, int64 parentgender, int64 currentgen, int64 npargender,
                         int64 navailable)
{
    if (npargender >= 1 && npargender <= navailable) return;
    const int64 gen = currentgen - 1;
    if (s.pop.plantbreedonoff) {
        if (s.pop.nselfedparinthisgen(gen) > 0) notenoughselfed(gen);
        if (s.pop.nrandparinthisgen(gen) > 0) notenoughcrossed(gen);
        if (parentgender == 1) notenoughmaleplants(gen);
        notenoughfemaleplants(gen);
    }
    if (parentgender == 1) notenoughsires(gen);
    notenoughdams(gen);
}

namespace
{
// npargender distinct rows of the generation before, in the order in which they were drawn.
array1<int64> drawparents(state &s, int64 parentgender, int64 currentgen, int64 npargender)
{
    const int64 nindiv = s.pop.nindivinthisgen(currentgen - 1);
    const int64 indivpos = currentgen > 2 ? s.pop.cumindivnbtogen(currentgen - 2) : 0;
    const bool anygender = genderisignored(s, currentgen);
    array1<int64> eligible(nindiv), selectedindividuals(nindiv);
    int64 navailable = 0;
    for (int64 i = 1; i <= nindiv; ++i) {
        eligible(i) = anygender || s.pedi.globalgender(indivpos + i) == parentgender;
        navailable += eligible(i);
    }
    stopiftoofewparents(s, parentgender, currentgen, npargender, navailable);
    for (int64 k = 1; k <= npargender; ++k) {
        int64 drawn;
        do drawn = static_cast<int64>(ran1(s.random) * static_cast<double>(nindiv)) + 1;
        while (!eligible(drawn));
        eligible(drawn) = 0; // chosen once at most
        selectedindividuals(k) = drawn + indivpos;
    }
    return selectedindividuals;
}
} // namespace

void selectnextparentsrandom(state &s, int64 parentgender, int64 currentgen, int64 npargender)
{
    const array1<int64> parents = drawparents(s, parentgender, currentgen, npargender);
    const int64 nmatings = s.pop.nindivinthisgen(currentgen);
    const int64 firstrow = firstindivofgen(s, currentgen);
    array1<int64> matingvec(nmatings);
    buildmatingvec(parents, npargender, nmatings, matingvec);
    assignparents(s, firstrow, nmatings, matingvec, parentgender);
    if (s.pop.nrandparinthisgen(currentgen - 1) > 0)
        randommating(s, firstrow, nmatings, matingvec, 2);
}
