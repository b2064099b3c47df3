// filemarks.h - where the records of generations end in the files that a run extends.
#pragma once

#include "arrays.h"

#include <map>
#include <string>

// What was written and read within the run needs no search for line ends. A mark holds as long as
// the file isn't made anew.
class filemarks
{
  public:
    // Offset behind the first nlines lines of a file; -1 where it isn't known.
    int64 behind(const std::string &path, int64 nlines) const
    {
        const auto file = files.find(path);
        if (file == files.end()) return -1;
        const auto mark = file->second.find(nlines);
        return mark == file->second.end() ? -1 : mark->second;
    }
    // What stood behind is forgotten: the file was cut there, or ends there.
    void set(const std::string &path, int64 nlines, int64 offset)
    {
        auto &marks = files[path];
        marks.erase(marks.lower_bound(nlines), marks.end());
        marks[nlines] = offset;
    }

  private:
    std::map<std::string, std::map<int64, int64>> files;
};
