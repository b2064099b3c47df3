// fileregistry.h - open files found by their paths.
//
// A merge has many files open at once, with names built at run time. Each is opened under a free
// stream number, the lowest there is, and looked up by its path from then on.
#pragma once

#include "files.h"
#include "flibs/dictionary.h"

#include <map>

// Stream numbers of the registry.
constexpr int64 firstunitnumber = 100, lastunitnumber = 10000;

// How a file is opened.
enum class filestatus {
    old,     // to be read; it must exist
    unknown, // to be read; made empty if there is none
    replace  // to be written anew
};

// One of the two is open.
struct openstream {
    recordfile in;
    outfile out;
};

struct fileregistry {
    dict_struct dict;
    bool init = false;                                                    // the table exists
    array1<int8> allocatedunits{extent(firstunitnumber, lastunitnumber)}; // 1: in use
    std::map<int64, openstream> streams;                                  // by stream number
};

// The lowest number not in use. Plain stop: all are.
int64 findfreeunitnumber(const fileregistry &r);
// Gives a unit that has none a free number, and marks it in use.
void initdescriptor(fileregistry &r, fileunit &unit);

// Opens the file under a free number. A path that is open already gets the new number; the old one
// stays in use.
void openfile(fileregistry &r, const std::string &path, filestatus rwtype);
// Stop 360000: the path isn't open.
int64 getunitnumber(const fileregistry &r, const std::string &path);
bool isopenfile(const fileregistry &r, const std::string &path);
// The streams of an open path. Stop 360000 as above.
recordfile &inputof(fileregistry &r, const std::string &path);
outfile &outputof(fileregistry &r, const std::string &path);
// Closes the file, frees its number and forgets the path. Stop 360000 as above.
void closefile(fileregistry &r, const std::string &path);
// Frees the table; the next openfile makes it anew.
void closedict(fileregistry &r);
