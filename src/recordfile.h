// recordfile.h - a text file whose lines are read in any order.
//
// A failure ends the run with an I/O error that names the file and the reason (see stops.h).
#pragma once

#include "arrays.h"
#include "bytebuffer.h"
#include "descriptors.h"

#include <string>
#include <string_view>
#include <vector>

// A file whose lines are read in any order, by their numbers from 1. Line ends are found once each,
// as far as they are needed; that takes 8 bytes of memory for each line.
class recordfile
{
  public:
    // The file must exist.
    void open(const std::string &filename);
    void close() { descriptor.close(); }
    bool isopen() const { return descriptor.isopen(); }
    const std::string &path() const { return name; }
    // The text of line n without its line end, valid until the next call. An I/O error if the file
    // holds fewer lines.
    std::string_view line(int64 n);

  private:
    void load(int64 offset);
    void findlineends();
    filedescriptor descriptor;
    std::string name;
    std::vector<int64> starts; // offset of line n at place n - 1; of the end behind the last line
    int64 scanned = 0;         // up to here line ends have been looked for
    bool ended = false;        // they all have been found
    bytebuffer buffer;
    int64 bufferstart = 0, filled = 0; // offset in the file of the buffer's bytes, their number
};
