// settings.h - lines "key ,value" of the specification files of the evaluation programs.
//
// The key stands before the first comma and is compared in lower case; the value is all that
// follows, without the blanks around it. A text may begin with a blank, as free-form records do.
// Lines that begin with # are headings.
#pragma once

#include "files.h"

#include <string>
#include <vector>

struct setting {
    std::string file; // where it stands, for messages
    int64 line = 0;
    std::string name; // as written
    std::string key;  // lower-cased
    std::string value;
};

// Reads all lines from the next record to the end of the file; lines of blanks and headings are
// passed over.
// Stops: I/O errors for a line without a comma and for a key that comes twice.
std::vector<setting> readsettings(infile &in);

// The setting of that (lower-case) key; nullptr if the file has none.
const setting *findsetting(const std::vector<setting> &settings, const std::string &key);
// The same; an I/O error that names file and key if the file has none.
const setting &needsetting(const std::string &filename, const std::vector<setting> &settings,
                           const std::string &key);

// An I/O error about the line of the setting.
[[noreturn]] void complainabout(const setting &line, const std::string &what);

// Values. A value of another kind or outside the limits is an I/O error naming file and line.
int64 integervalue(const setting &line, int64 lowest, int64 highest = INT64_MAX);
// A finite number; not below lowest.
double realvalue(const setting &line, double lowest);
// The name of a file, not empty.
std::string filevalue(const setting &line);
