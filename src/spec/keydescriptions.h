// keydescriptions.h - what each key of SolvantoSpec.txt is, for those who write one: the table
// behind `solvanto --keys`, the tables of docs/spec-file.md and the messages about a key.
//
// Stops and messages stand with the readers (specreader.h, speckey). All texts are "" where there
// is nothing to say.
#pragma once

#include <span>
#include <string_view>

struct keydescription {
    const char *name; // as users write it
    // Short: integer, real, word, text, on/off with the word that decides, per generation, two
    // reals, ... "Internal or ..." takes the word Internal, or any other word and the value.
    const char *form;
    const char *words;  // the words that it knows, separated by blanks; "" where any text is taken
    const char *bounds; // what is wanted, to stand behind "wanted: "
    // What holds where the key is left out. "required": the specification is refused without it
    // (where needs are given: when they hold). "required for generation 1": a run that makes
    // generation 1 can't do without it.
    const char *standard;
    const char *standsafter; // keys that must stand on earlier lines, and what happens otherwise
    const char *meaning;     // one sentence
    const char *unit;
    const char *usual;   // usual value or values
    const char *pitfall; // the mistake that people make with it
    // When it has an effect; "" always, "never" never, otherwise conditions separated by blanks
    // that all must hold: Key=word|word, Key!=word|word, Key>number. A key that is left out counts
    // as its standard.
    const char *needs;
};

// All keys, box by box, in the order of specreader.h.
std::span<const keydescription> keydescriptions();

// The key of that name in any case of letters; null if there is none.
const keydescription *describekey(std::string_view name);
