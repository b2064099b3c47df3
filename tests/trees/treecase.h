// treecase.h - the cases of the stored trees: reading them, running them, and the sums of the files
// that they leave. README.md tells the two layouts and the rules of what is compared.
#pragma once

#include "filetree.h"
#include "specsupport.h"

#include <functional>
#include <string>
#include <vector>

// What is done in the folder before a run: a command of the shell, or a file that is written.
struct treeaction {
    std::string file; // empty for a command
    std::string text; // the file's content, or the command
};

struct treerun {
    std::string folder = "."; // where it runs, below the folder of the case
    std::vector<treeaction> actions;
    spectext spec{""};
};

// Names of all cases, in alphabetical order.
std::vector<std::string> treecases();
// The runs of a case. Throws std::invalid_argument with the line that isn't understood.
std::vector<treerun> readtreecase(const std::string &name);

// The files after a run, as they are compared, and their paths in the order in which they were last
// written; the folder that it ran in, and its exit status.
struct treeofrun {
    filetree files;
    std::vector<std::string> writingorder;
    std::string folder;
    int status = 0;
};
// Runs a case in an empty folder with the programs of a build, and hands over the files after every
// run. The runs stop where the routine that gets them says false. beforerun is given the folder in
// which a run is about to begin.
void runtreecase(const std::string &name, const std::string &bin, const std::string &folder,
                 const std::function<bool(const treeofrun &)> &withrun,
                 const std::function<void(const std::string &)> &beforerun = {});

// Everything that could make a run differ between machines, set for the programs that this process
// starts.
void setcommonmachine();

// Sums of files by their paths: 64 bits, FNV-1a (Fowler, Noll and Vo), 16 hexadecimal digits.
filetree sumsof(const filetree &files);
// The stored sums after every run of a case; none if the case has no sums yet.
std::vector<filetree> readsums(const std::string &name);
void writesums(const std::string &name, const std::vector<filetree> &sums);
