// pedigree.h - the pedigree table, and its three files below SimulatedData.
//
// Row k of ped is individual k, everywhere in the system. The table lives only while a stage
// works with it; between stages it stands in these files, one title line and then one line per
// individual or generation, all lines of one file equally long:
//   Pedigree.txt             5I20, blank, path left-aligned in 512 columns: generation,
//                            oldglobalid, newid, newsire, newdam, path
//   Gender.txt               3I20: generation, row, gender (1 male, 2 female)
//   NbOfIndivInEachGen.txt   I4,3I20: generation, individuals, males, females
//
// The merge of individuals by a list leaves rows of four columns in Pedigree.txt, 4I20: generation,
// row, 0, 0. They stay as they are when later runs add theirs, and are read as individuals with
// unknown parents.
#pragma once

#include "arrayscope.h"
#include "state.h"

#include <string>
#include <unordered_map>

constexpr const char *pedigreetable = "SimulatedData/Pedigree.txt";
constexpr const char *gendertable = "SimulatedData/Gender.txt";
constexpr const char *generationtable = "SimulatedData/NbOfIndivInEachGen.txt";

// Bytes of a line of Pedigree.txt, and of its title, line end included.
constexpr int64 pedigreelinelength = 5 * 20 + 1 + 512 + 1, pedigreetitlelength = 6 * 20 + 1;

// Makes the table and what goes with it, all entries 0: ped and globalgender (nindivp),
// nmalinthisgen and nfeminthisgen (ngen+ngensel).
void makepedigreearrays(state &s, arrayscope &arrays);

// Fills a row that has not been filled before, otherwise does nothing. path: working directory
// of the run that makes the row; the present one if it isn't given.
void initline(pedigreeline &row, int64 oldglobalid, int64 newid, int64 newsire, int64 newdam,
              int64 generation, const std::string &path = "");

void getidsiredamfromline(const pedigreeline &row, int64 &id, int64 &sire, int64 &dam);
// newid for index 1, newsire for 2, newdam for 3.
int64 getsiredambyindex(const pedigreeline &row, int64 index);

// Row of the individual that entered the table as inputid: the last one, 0 if there is none.
// A scan of the whole table; whoever looks up many takes a pedigreeindex.
void getpedigreeposbyid(const state &s, int64 inputid, int64 &pedigreeid);

// The same look-up in constant time, for a table that is filled row by row.
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

// The next line of Pedigree.txt, in the file's layout, put into a row, which is number rownumber of
// the table: the newid of a line of four columns. The row isn't marked as filled.
void readpedigreeline(infile &in, pedigreeline &row, int64 rownumber);

// Title and line of Pedigree.txt.
void putpedigreetitle(textline &line);
void putpedigreeline(textline &line, const pedigreeline &row);
// Writes a whole Pedigree.txt of n individuals of generation 1 in lines of four columns.
void writefourcolumns(int64 n);

// Title and line of NbOfIndivInEachGen.txt.
constexpr const char *generationtitle =
    " Gen     nIndivInThisGen       nMalInThisGen       nFemInThisGen";
void putgenerationline(textline &line, int64 gen, int64 nindiv, int64 nmal, int64 nfem);

// Fills ped and globalgender up to generation specendgen, the three counts per generation and
// cumindivnbtogen from the files. With an external pedigree the genders stay as they are.
// The arrays exist already.
void readpedigreegender(state &s);

// Fills globalgender up to generation specendgen from Gender.txt: genders are drawn for an external
// pedigree, too, and the selection of parents by gender needs them.
void readgenders(state &s);

// Writes the rows of generations specstartgen to specendgen behind those of the generations
// before; what stood there is replaced. Sets the rows' generation.
void writeoutpedigree(state &s);
