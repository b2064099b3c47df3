// gathering.h - what chip and sequence output share: rows of alleles as text.
//
// Rows are those of allelerows.h. The text of an allele is " 0" or " 1", so that the
// genotype row is formed from both gametes' rows by adding bytes.
#pragma once

#include "state.h"

// Opens a result file: anew for generation 1, else behind the lines of the generations before.
//   linesperindiv  2 for phases, 1 for genotypes
//   nsites         alleles in a line
//   titlelength    bytes of a title line, line end included; 0 for none
void openresultfile(outfile &out, const state &s, const std::string &path, int64 firsttmpgen,
                    int64 linesperindiv, int64 nsites, int64 titlelength);

// Rows of one individual over the whole genome: filled chromosome by chromosome, then written.
class individualrows
{
  public:
    individualrows(outfile &phasefile, outfile &genotypefile, int64 numberofsites);
    void begin(int64 individual);
    // Place of the text of the next alleles of a gamete, 1 or 2, to be filled in.
    char *text(int gamete) const { return rows[gamete - 1] + at; }
    // n alleles of both gametes have been filled in.
    void advance(int64 n) { at += 2 * static_cast<std::size_t>(n); }
    // Fills the genotype row, which ends the three.
    void write();

  private:
    outfile &phases, &genotypes;
    int64 nsites;
    int64 id = 0;
    char *rows[2] = {nullptr, nullptr};
    std::size_t at = 0;
};

// Copies the text of n alleles. False, with the copy undone or half done, if it isn't of " 0" and "
// 1".
bool copyalleletext(char *to, const char *from, int64 n);
// Writes n alleles, held as 64-bit integers at any address, as text. False if there is another
// value than 0 or 1.
bool putintegeralleles(char *to, const char *alleles, int64 n);
