// words.h - words and texts of settings.
//
// Settings are compared by their lower-cased first word, everywhere in the system.
#pragma once

#include "arrays.h"
#include "infile.h"

#include <string>
#include <string_view>

// Widths of the fixed-width texts: settings and paths. A longer text is cut.
constexpr std::size_t settingwidth = 300;
constexpr std::size_t pathwidth = 512;

// The text without leading or trailing blanks.
std::string_view trim(std::string_view text);
// The text without trailing blanks.
std::string_view trimright(std::string_view text);
// The text cut to its first width characters, trailing blanks dropped.
std::string cuttext(std::string_view text, std::size_t width);

// Lower-cased copy of the trimmed text, A to Z only, of at most 512 characters.
std::string tlc(std::string_view text);
// Lower-cased first word: from the first character up to the first blank; empty when the text
// begins with a blank. Takes the first 512 characters into account.
std::string parsestringwindows(std::string_view text);
// Whether the lower-cased first word of a setting is the given (lower-case) word.
inline bool isword(std::string_view setting, std::string_view word)
{
    return parsestringwindows(setting) == word;
}

// An integer in its shortest form, for building names.
std::string numbertext(int64 value);

// Number of lines with content of a text file that must exist.
int64 countlines(const std::string &filename);
// The same of a file just opened, which is back at its first record then.
int64 countlines(infile &in);
