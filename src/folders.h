// folders.h - making and removing the folders of a run.
#pragma once

#include "shell.h"

#include <string>
#include <string_view>
#include <vector>

// Folders that a run writes into.
constexpr const char *runfolders[] = {"Chromosomes", "SimulatedData", "Selection"};

// Makes a folder, in one that exists. A failure prints the line of a failed command with the
// routine's name and is counted.
bool makefolder(const std::string &path, std::string_view routine, commandfailures &failures);
// Removes a folder with all that it holds; nothing where there is none. Links in it are removed, not
// followed. A folder that can't be removed is an I/O error behind the failure line: what an earlier
// run left would mix with what this one writes.
void removefolder(const std::string &path, std::string_view routine);
// An I/O error if there is a symbolic link of that name, or in the folder of that name: a run writes
// into folders of its own.
void refuselinks(const std::string &path);
// What a folder holds, by name and in order, without "." and ".."; false, with errno, where it can't be
// read. The library's own iterators end the program by a signal where memory is missing.
bool readfolder(const std::string &path, std::vector<std::string> &names);
// Whether a folder holds nothing, or isn't there. An I/O error where it can't be read.
bool isemptyfolder(const std::string &path);
