#include "pedigree/pedigree.h"

#include "shell.h"
#include "words.h"

void makepedigreearrays(state &s, arrayscope &arrays)
{
    arrays.make(s.pedi.ped, s.pop.nindivp);
    arrays.make(s.pedi.globalgender, s.pop.nindivp);
    arrays.make(s.pedi.nmalinthisgen, s.pop.ngen + s.pop.ngensel);
    arrays.make(s.pedi.nfeminthisgen, s.pop.ngen + s.pop.ngensel);
}

void initline(pedigreeline &row, int64 oldglobalid, int64 newid, int64 newsire, int64 newdam,
              int64 generation, const std::string &path)
{
    if (row.initialised) return;
    row.generation = generation;
    row.oldglobalid = oldglobalid;
    row.newid = newid;
    row.newsire = newsire;
    row.newdam = newdam;
    row.path = cuttext(path.empty() ? workingdirectory() : path, pathwidth);
    row.initialised = true;
}

void getidsiredamfromline(const pedigreeline &row, int64 &id, int64 &sire, int64 &dam)
{
    id = row.newid;
    sire = row.newsire;
    dam = row.newdam;
}

int64 getsiredambyindex(const pedigreeline &row, int64 index)
{
    return index == 1 ? row.newid : index == 2 ? row.newsire : row.newdam;
}

void getpedigreeposbyid(const state &s, int64 inputid, int64 &pedigreeid)
{
    pedigreeid = 0;
    for (const pedigreeline &row : s.pedi.ped)
        if (row.oldglobalid == inputid) pedigreeid = row.newid;
}

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

void putgenerationline(textline &line, int64 gen, int64 nindiv, int64 nmal, int64 nfem)
{
    puti(line, gen, 4);
    puti(line, nindiv, 20);
    puti(line, nmal, 20);
    puti(line, nfem, 20);
}

namespace
{
void readrows(state &s)
{
    infile in(pedigreetable);
    in.skiprecords(1);
    for (int64 i = 1; i <= lastindivofgen(s, s.run.specendgen); ++i)
        readpedigreeline(in, s.pedi.ped(i), i);
}

void readgenerationcounts(state &s)
{
    infile in(generationtable);
    in.skiprecords(1);
    for (int64 j = 1; j <= s.run.specendgen; ++j) {
        in.record();
        in.integer();
        s.pop.nindivinthisgen(j) = in.integer();
        s.pedi.nmalinthisgen(j) = in.integer();
        s.pedi.nfeminthisgen(j) = in.integer();
    }
}
} // namespace

void readgenders(state &s)
{
    infile in(gendertable);
    in.skiprecords(1);
    for (int64 i = 1; i <= lastindivofgen(s, s.run.specendgen); ++i) {
        in.record();
        in.integer();
        in.integer();
        s.pedi.globalgender(i) = in.integer();
    }
}

void readpedigreegender(state &s)
{
    readrows(s);
    if (isword(s.pop.pedigreestatus, "internal")) readgenders(s);
    readgenerationcounts(s);
    for (int64 j = 1; j <= s.pop.ngen + s.pop.ngensel; ++j)
        s.pop.cumindivnbtogen(j) = s.pop.cumindivnbtogen(j - 1) + s.pop.nindivinthisgen(j);
}

namespace
{
// Goes on behind the first nrows rows: by one seek, unless a merge has left shorter ones.
void openbehindrows(outfile &out, int64 nrows)
{
    infile in(pedigreetable);
    const auto haslength = [&](int64 length) {
        return in.nextrecord() && static_cast<int64>(in.line().size()) + 1 == length;
    };
    if (haslength(pedigreetitlelength) && haslength(pedigreelinelength))
        out.openandkeepfixed(pedigreetable, nrows, pedigreelinelength, pedigreetitlelength);
    else
        out.openandkeep(pedigreetable, 1 + nrows);
}
} // namespace

void writeoutpedigree(state &s)
{
    outfile out;
    textline line;
    if (s.run.specstartgen == 1) {
        out.open(pedigreetable);
        putpedigreetitle(line);
        out.writeline(line);
    } else {
        openbehindrows(out, lastindivofgen(s, s.run.specstartgen - 1));
    }
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) {
        for (int64 k = firstindivofgen(s, j); k <= lastindivofgen(s, j); ++k) {
            s.pedi.ped(k).generation = j;
            putpedigreeline(line, s.pedi.ped(k));
            out.writeline(line);
        }
    }
    out.close();
}
