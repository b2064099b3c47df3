#include "pedigree/pedigreefiles.h"

#include "stops.h"
#include "words.h"

namespace
{
// Bytes of a line of Pedigree.txt, and of its title, line end included.
constexpr int64 pedigreelinelength = 5 * 20 + 1 + 512 + 1, pedigreetitlelength = 6 * 20 + 1;

void putpedigreetitle(textline &line)
{
    for (const char *title : {"Generation", "OldGlobalID", "NewId", "NewSire", "NewDam", "Path"})
        puta(line, title, 20);
}

void putpedigreeline(textline &line, const pedigreeline &row)
{
    puti(line, row.generation, 20);
    puti(line, row.oldglobalid, 20);
    puti(line, row.newid, 20);
    puti(line, row.newsire, 20);
    puti(line, row.newdam, 20);
    line += ' ';
    putleft(line, row.path, pathwidth);
}
} // namespace

void readpedigreeline(infile &in, pedigreeline &row, int64 rownumber)
{
    in.record();
    constexpr std::size_t fifthcolumn = 4 * 20, pathcolumn = 5 * 20 + 1;
    const std::string_view line = in.line();
    const bool fourcolumns =
        line.size() >= fifthcolumn && trim(line.substr(fifthcolumn, 20)).empty();
    if (!fourcolumns && line.size() < pathcolumn)
        in.complain("is too short for a line of the pedigree");
    row.path = fourcolumns ? "" : cuttext(line.substr(pathcolumn), pathwidth);
    row.generation = in.integer();
    row.oldglobalid = in.integer();
    row.newid = fourcolumns ? rownumber : in.integer();
    row.newsire = fourcolumns ? 0 : in.integer();
    row.newdam = fourcolumns ? 0 : in.integer();
}

void readpedigree(state &s, int64 n)
{
    infile in(pedigreetable, author::system);
    in.skiprecords(1);
    std::string before;
    int64 gen = 1;
    for (int64 i = 1; i <= n; ++i) {
        pedigreeline &row = s.pedi.ped(i);
        readpedigreeline(in, row, i);
        while (i > lastindivofgen(s, gen)) ++gen;
        if (row.generation != gen)
            in.complain("generation " + numbertext(gen) + " is wanted for individual " +
                        numbertext(i) + ", not " + numbertext(row.generation));
        // From the cycles on, a user's pedigree may have given identifiers of its own.
        if (gen <= s.pop.ngen ? row.newid != i : in.line() == before)
            in.complain("it isn't the record of individual " + numbertext(i));
        for (const int64 parent : {row.newsire, row.newdam})
            if (parent < 0 || parent >= i)
                in.complain("parent " + numbertext(parent) + " doesn't stand on an earlier line");
        before = in.line();
    }
}

namespace
{
// A merge leaves shorter rows.
bool hasfixedrows()
{
    infile in(pedigreetable);
    const auto haslength = [&](int64 length) {
        return in.nextrecord() && static_cast<int64>(in.line().size()) + 1 == length;
    };
    return haslength(pedigreetitlelength) && haslength(pedigreelinelength);
}

// Goes on behind the first nrows rows: by one seek where their length is known.
void openbehindrows(outfile &out, int64 nrows)
{
    if (hasfixedrows())
        out.openandkeepfixed(pedigreetable, nrows, pedigreelinelength, pedigreetitlelength);
    else
        out.openandkeep(pedigreetable, 1 + nrows);
}
} // namespace

void checkkeptrows(int64 nrows)
{
    if (hasfixedrows())
        checkkeptfixed(pedigreetable, nrows, pedigreelinelength, pedigreetitlelength);
    else
        checkkept(pedigreetable, 1 + nrows);
}

namespace
{
void writerows(state &s, outfile &out, int64 gen)
{
    textline line;
    for (int64 k = firstindivofgen(s, gen); k <= lastindivofgen(s, gen); ++k) {
        s.pedi.ped(k).generation = gen;
        putpedigreeline(line, s.pedi.ped(k));
        out.writeline(line);
    }
}
} // namespace

void writeoutpedigree(state &s)
{
    const int64 first = firstindivofgen(s, s.run.specstartgen);
    outfile out;
    if (s.run.specstartgen == 1) {
        textline line;
        out.open(pedigreetable);
        putpedigreetitle(line);
        out.writeline(line);
    } else {
        openbehindrows(out, first - 1);
    }
    s.pedi.filed = {first, lastindivofgen(s, s.run.specendgen), out.position()};
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) writerows(s, out, j);
    out.close();
}

void writegeneration(state &s, int64 gen)
{
    const filedpedigree &filed = s.pedi.filed;
    const int64 first = firstindivofgen(s, s.run.specstartgen);
    if (first != filed.first || lastindivofgen(s, s.run.specendgen) != filed.last) {
        writeoutpedigree(s);
        return;
    }
    outfile out;
    out.openover(pedigreetable,
                 filed.offset + (firstindivofgen(s, gen) - first) * pedigreelinelength);
    writerows(s, out, gen);
    out.close();
}

void writewholepedigree(const array1<pedigreeline> &ped)
{
    outfile out(pedigreetable);
    textline line;
    putpedigreetitle(line);
    out.writeline(line);
    for (const pedigreeline &row : ped) {
        putpedigreeline(line, row);
        out.writeline(line);
    }
    out.close();
}

void writefourcolumns(int64 n)
{
    outfile out(pedigreetable);
    out.writeline(
        "          Generation               Indiv              Father              Mother");
    textline line;
    for (int64 i = 1; i <= n; ++i) {
        for (const int64 value : {int64{1}, i, int64{0}, int64{0}}) puti(line, value, 20);
        out.writeline(line);
    }
    out.close();
}

// ------------------------------------------------------- genders

std::vector<genderline> readgenderlines(int64 n)
{
    std::vector<genderline> lines(static_cast<std::size_t>(n));
    infile in(gendertable, author::system);
    in.skiprecords(1);
    int64 row = 0;
    for (genderline &line : lines) {
        in.record();
        line.generation = in.integer();
        line.row = ++row;
        in.identifier(row, "individual");
        line.gender = in.within(0, 2);
    }
    return lines;
}

void writegenders(const state &s)
{
    outfile out;
    if (s.run.specstartgen == 1) {
        out.open(gendertable);
        out.writeline("          Generation               Indiv               Gender");
    } else {
        const int64 lastindiv = lastindivofgen(s, s.run.specstartgen - 1);
        out.openandkeep(gendertable, 1 + lastindiv, {{0, lastindiv}});
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

// ------------------------------------------------------- generations

std::vector<generationcounts> readgenerationcounts(const std::string &path)
{
    std::vector<generationcounts> generations;
    infile in(path, author::system);
    in.record();
    while (in.nextrecord()) {
        if (trim(in.line()).empty()) continue;
        generationcounts &counts = generations.emplace_back();
        in.identifier(std::ssize(generations), "generation");
        for (int64 *value : {&counts.nindiv, &counts.nmal, &counts.nfem}) *value = in.integer();
        if (counts.nindiv < 1) in.complain("a generation has at least one individual");
    }
    return generations;
}

std::vector<generationcounts> readgenerations(int64 n)
{
    std::vector<generationcounts> generations = readgenerationcounts(generationtable);
    if (std::ssize(generations) < n)
        ioerror(generationtable, "holds " + numbertext(std::ssize(generations)) +
                                     " generations where " + numbertext(n) + " are needed");
    generations.resize(static_cast<std::size_t>(n));
    return generations;
}

void writegenerationcounts(int64 firstgen, const std::vector<generationcounts> &counts)
{
    outfile out;
    if (firstgen == 1) {
        out.open(generationtable);
        out.writeline(" Gen     nIndivInThisGen       nMalInThisGen       nFemInThisGen");
    } else {
        out.openandkeep(generationtable, firstgen, {{firstgen - 1}});
    }
    textline line;
    int64 gen = firstgen;
    for (const generationcounts &c : counts) {
        puti(line, gen++, 4);
        for (const int64 value : {c.nindiv, c.nmal, c.nfem}) puti(line, value, 20);
        out.writeline(line);
    }
    out.close();
}

// ------------------------------------------------------- all three

void readpedigreegender(state &s)
{
    readpedigree(s, lastindivofgen(s, s.run.specendgen));
    int64 row = 0;
    for (const genderline &line : readgenderlines(lastindivofgen(s, s.run.specendgen)))
        s.pedi.globalgender(++row) = line.gender;
    int64 gen = 0;
    for (const generationcounts &counts : readgenerations(s.run.specendgen)) {
        s.pedi.nindivinthisgen(++gen) = counts.nindiv;
        s.pedi.nmalinthisgen(gen) = counts.nmal;
        s.pedi.nfeminthisgen(gen) = counts.nfem;
    }
    for (int64 j = 1; j <= s.pop.ngen + s.pop.ngensel; ++j)
        s.pedi.cumindivnbtogen(j) = s.pedi.cumindivnbtogen(j - 1) + s.pedi.nindivinthisgen(j);
}
