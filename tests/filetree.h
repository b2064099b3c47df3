// filetree.h - the files that runs leave in a folder, and where two such trees differ.
#pragma once

#include <map>
#include <string>
#include <vector>

// Puts links to the programs of a build's folder into another folder; programs that the build
// doesn't have are left out.
void linkprograms(const std::string &bin, const std::string &folder);

// Whether a path is that of a program, or of a copy of one.
bool isprogram(const std::string &path);

// Contents of files by their paths, in alphabetical order.
using filetree = std::map<std::string, std::string>;

// The files below a folder, links and the programs and their copies left out.
filetree readtree(const std::string &folder);

// Paths of files that are in one of the trees only, or have other contents.
std::vector<std::string> differingpaths(const filetree &was, const filetree &is);

// Where a path differs, in words: that it is missing or new, or line, column, both sizes, and the
// text around the place.
std::string firstdifference(const std::string &path, const filetree &was, const filetree &is);
