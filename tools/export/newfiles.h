// newfiles.h - files that stand whole or not at all.
#pragma once

#include <string>
#include <vector>

// A new folder beside files to be written, which goes with the record.
struct scratchfolder {
    explicit scratchfolder(const std::string &prefix);
    ~scratchfolder();
    scratchfolder(const scratchfolder &) = delete;
    scratchfolder &operator=(const scratchfolder &) = delete;
    std::string path;
};

// Written under other names, and renamed when all are complete. What is not renamed is removed.
class newfiles
{
  public:
    explicit newfiles(bool replacesothers) : force(replacesothers) {}
    newfiles(const newfiles &) = delete;
    newfiles &operator=(const newfiles &) = delete;
    ~newfiles();
    // The name under which to write a file. An I/O error where the file is there, and is not to be
    // replaced.
    std::string add(const std::string &path);
    // Puts all in place, in the order of add.
    void putinplace();

  private:
    bool force;
    std::vector<std::string> paths;
};
