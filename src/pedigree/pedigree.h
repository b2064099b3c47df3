// pedigree.h - the pedigree table.
//
// Row k of ped is individual k, everywhere in the system. The table lives only while a stage
// works with it; between stages it stands in the files of pedigreefiles.h.
#pragma once

#include "arrayscope.h"
#include "state.h"

#include <string>
#include <unordered_map>

// Makes the table and what goes with it, all entries 0: ped and globalgender (nindivp),
// nmalinthisgen and nfeminthisgen (ngen+ngensel).
void makepedigreearrays(state &s, arrayscope &arrays);

// Fills a row that has not been filled before, otherwise does nothing. path: working directory
// of the run that makes the row; the present one if it isn't given.
void initline(pedigreeline &row, int64 oldglobalid, int64 newid, int64 newsire, int64 newdam,
              int64 generation, const std::string &path = "");

void getidsiredamfromline(const pedigreeline &row, int64 &id, int64 &sire, int64 &dam);

// Rows by the identifiers that individuals entered the table with, the last one for each; 0 if
// there is none.
class pedigreeindex
{
  public:
    void add(const pedigreeline &row) { rows[row.oldglobalid] = row.newid; }
    // Identifier 0 is always unknown: rows not yet filled bear it.
    int64 find(int64 inputid) const
    {
        const auto found = inputid == 0 ? rows.end() : rows.find(inputid);
        return found == rows.end() ? 0 : found->second;
    }

  private:
    std::unordered_map<int64, int64> rows;
};
