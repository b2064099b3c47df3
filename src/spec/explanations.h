// explanations.h - what the reader of the specification says on standard error: why it refuses a
// line, and what it read otherwise than it may have been meant. Standard output keeps the keys' own
// messages.
#pragma once

#include "spec/specreader.h"

#include <initializer_list>

// The key as users write it.
std::string properkey(std::string_view name);
// A real with 17 digits, by which it can be told from every other.
std::string realdigits(double value);

// Explains the refusal of value i of the record at hand (0: of the whole record), with file, line,
// the line itself with a caret, and what the key wants. reason: what is wrong; empty where the value
// tells it.
void explainvalue(const specreader &r, int64 i, std::string_view reason = "");

// Explains a refusal behind the last record that these keys have led to: where each stands and what
// it wants, or that it is missing. reason: a line in front; may be empty.
void explainkeys(const specreader &r, std::initializer_list<std::string_view> names,
                 std::string_view reason = "");

// Explains a record that is neither key nor matrix row: the key that is spelt most alike, or what
// else it may have been meant to be.
void explainunexpected(const specreader &r);

// Warnings behind a key that has been read: a word that its switch doesn't know, with what it was
// taken for; more values than the key takes.
void warnofwords(const specreader &r);
void warnofsurplus(const specreader &r, int64 wanted, std::string_view what);
// A warning about the record at hand.
void warnhere(const specreader &r, std::string_view text);
// Behind the last record: keys that have been set, but are without effect.
void warnofidle(const specreader &r);
