// textlayout.h - how numbers and texts stand in lines: the one place for column layouts and
// free-form values.
//
// Layouts are named as in format lists: Aw, Iw, I0, Fw.d, Ew.d. Every put routine appends to a
// line; a value that does not fit its field fills it with asterisks.
#pragma once

#include "arrays.h"

#include <charconv>
#include <string>
#include <string_view>

using textline = std::string;

// Aw: right-aligned in w columns, cut to its first w characters when longer.
void puta(textline &line, std::string_view text, int64 w);
// Left-aligned in w columns, padded with blanks, cut when longer: titles and fixed-width texts.
void putleft(textline &line, std::string_view text, int64 w);
// Iw: right-aligned integer. w = 0 is I0: minimal width.
void puti(textline &line, int64 value, int64 w);
// Fw.d: fixed point with d decimals (0 to 30), rounded as printf does (exact value, ties to
// even). NaN stands as "NaN", infinities as "Infinity" and "-Infinity", right-aligned.
void putf(textline &line, double value, int64 w, int64 d);
// Ew.d: exponent form with a mantissa of d digits between 0.1 and 1: 0.10E-04.
void pute(textline &line, double value, int64 w, int64 d);
// At least w columns, right-aligned: d significant digits without trailing zeros, in exponent form
// below 0.0001 and from 10^d on (as printf's %w.dg). A longer number widens the field.
void putg(textline &line, double value, int64 w, int64 d);
// nI2 for values 0 to 9: alleles and genotypes, two columns each.
void putalleles(textline &line, const int8 *alleles, int64 n);
// The same into a buffer with room for 2n bytes; gives the place behind them.
char *putalleles(char *to, const int8 *alleles, int64 n);

// Free-form: one blank, then the value. A whole line of free-form values thus begins with a
// blank. Integers at minimal width; reals with the fewest digits that read back to the same
// double: fixed for 0 and 1e-4 <= |x| < 1e16, else scientific.
void putfree(textline &line, std::string_view text);
void putfree(textline &line, const char *text);
void putfree(textline &line, int64 value);
void putfree(textline &line, int value);
void putfree(textline &line, double value);
// A line of free-form values.
template <class... T> textline freeline(const T &...values)
{
    textline line;
    (putfree(line, values), ...);
    return line;
}

// A line of standard output, the text as it stands.
void printline(std::string_view text);
// A line of standard output of free-form values.
template <class... T> void printfree(const T &...values)
{
    printline(freeline(values...));
}

// Numbers read free-form. True if the whole text is one: an integer of up to 64 bits with an
// optional sign; a real in any form, with E or D exponents.
bool readinteger(std::string_view text, int64 &value);
bool readreal(std::string_view text, double &value);
