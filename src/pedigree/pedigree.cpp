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
