#include "pedigree/pedigree.h"

#include "shell.h"
#include "words.h"

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

void readpedigreeline(infile &in, pedigreeline &row)
{
    in.record();
    constexpr std::size_t pathcolumn = 5 * 20 + 1;
    if (in.line().size() < pathcolumn) in.complain("is too short for a line of the pedigree");
    row.path = cuttext(in.line().substr(pathcolumn), pathwidth);
    row.generation = in.integer();
    row.oldglobalid = in.integer();
    row.newid = in.integer();
    row.newsire = in.integer();
    row.newdam = in.integer();
}

namespace
{
void readrows(state &s)
{
    infile in(pedigreetable);
    in.skiprecords(1);
    for (int64 i = 1; i <= lastindivofgen(s, s.run.specendgen); ++i)
        readpedigreeline(in, s.pedi.ped(i));
}

void readgenerationcounts(state &s)
{
    infile in(generationtable);
    in.skiprecords(1);
    for (int64 j = 1; j <= s.run.specendgen; ++j) {
        in.record();
        in.integer();
        s.pop.nindivinthisgen(j) = in.integer();
        s.pop.nmalinthisgen(j) = in.integer();
        s.pop.nfeminthisgen(j) = in.integer();
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
    if (isword(s.pedi.pedigreestatus, "internal")) readgenders(s);
    readgenerationcounts(s);
    for (int64 j = 1; j <= s.pop.ngen + s.pop.ngensel; ++j)
        s.pop.cumindivnbtogen(j) = s.pop.cumindivnbtogen(j - 1) + s.pop.nindivinthisgen(j);
}

void writeoutpedigree(state &s)
{
    outfile out;
    textline line;
    if (s.run.specstartgen == 1) {
        out.open(pedigreetable);
        for (const char *title :
             {"Generation", "OldGlobalID", "NewId", "NewSire", "NewDam", "Path"})
            puta(line, title, 20);
        out.writeline(line);
    } else {
        out.openandkeepfixed(pedigreetable, lastindivofgen(s, s.run.specstartgen - 1),
                             pedigreelinelength, pedigreetitlelength);
    }
    for (int64 j = s.run.specstartgen; j <= s.run.specendgen; ++j) {
        for (int64 k = firstindivofgen(s, j); k <= lastindivofgen(s, j); ++k) {
            pedigreeline &row = s.pedi.ped(k);
            row.generation = j;
            puti(line, row.generation, 20);
            puti(line, row.oldglobalid, 20);
            puti(line, row.newid, 20);
            puti(line, row.newsire, 20);
            puti(line, row.newdam, 20);
            line += ' ';
            putleft(line, row.path, pathwidth);
            out.writeline(line);
        }
    }
    out.close();
}
