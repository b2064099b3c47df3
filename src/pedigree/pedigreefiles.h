// pedigreefiles.h - the three files of the pedigree table, one title line and then one line per
// individual or generation, all lines of one file equally long:
//   SimulatedData/Pedigree.txt            5I20, blank, path left-aligned in 512 columns:
//   generation,
//                                         oldglobalid, newid, newsire, newdam, path
//   SimulatedData/Gender.txt              3I20: generation, row, gender (1 male, 2 female)
//   SimulatedData/NbOfIndivInEachGen.txt  I4,3I20: generation, individuals, males, females
//
// The merge of individuals by a list leaves rows of four columns in Pedigree.txt, 4I20: generation,
// row, 0, 0. They stay as they are when later runs add theirs, and are read as individuals with
// unknown parents.
#pragma once

#include "state.h"

#include <string>
#include <vector>

constexpr const char *pedigreetable = "SimulatedData/Pedigree.txt";
constexpr const char *gendertable = "SimulatedData/Gender.txt";
constexpr const char *generationtable = "SimulatedData/NbOfIndivInEachGen.txt";

// ------------------------------------------------------- Pedigree.txt

// Goes to the next line, and puts it into a row, which is number rownumber of the table: the newid
// of a line of four columns. The row isn't marked as filled.
void readpedigreeline(infile &in, pedigreeline &row, int64 rownumber);
// Fills the first n rows of ped.
void readpedigree(state &s, int64 n);
// Whether its first nrows rows can be kept when others are written behind them.
void checkkeptrows(int64 nrows);
// Writes the rows of generations specstartgen to specendgen behind those of the generations
// before; what stood there is replaced. Sets the rows' generation.
void writeoutpedigree(state &s);
// The same, where since then only rows of one generation may have changed, or the sizes of
// generations: rows of the others stay as they were written by this run.
void writegeneration(state &s, int64 gen);
// Writes a whole file of these rows; of n individuals of generation 1 in lines of four columns.
void writewholepedigree(const array1<pedigreeline> &ped);
void writefourcolumns(int64 n);

// ------------------------------------------------------- Gender.txt

// A line of the file, and its length in bytes, line end included.
constexpr int64 genderlinelength = 3 * 20 + 1;
struct genderline {
    int64 generation = 0, row = 0, gender = 0;
};
// Lines 1 to n behind the title.
std::vector<genderline> readgenderlines(int64 n);
// Writes the genders of generations specstartgen to specendgen behind those of the generations
// before.
void writegenders(const state &s);

// ------------------------------------------------------- NbOfIndivInEachGen.txt

struct generationcounts {
    int64 nindiv = 0, nmal = 0, nfem = 0;
};
// All generations of a file, which may be another run's: generation g at offset g - 1.
std::vector<generationcounts> readgenerationcounts(const std::string &path);
// The first n generations of this run's file, an I/O error if it holds fewer.
std::vector<generationcounts> readgenerations(int64 n);
// Writes generations firstgen, firstgen + 1, ... behind those before.
void writegenerationcounts(int64 firstgen, const std::vector<generationcounts> &counts);

// ------------------------------------------------------- all three

// Fills ped and globalgender up to generation specendgen, the three counts per generation and
// cumindivnbtogen from the files. The arrays exist already.
void readpedigreegender(state &s);
