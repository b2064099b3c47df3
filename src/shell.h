// shell.h - commands for the system's command interpreter.
#pragma once

#include "arrays.h"

#include <string>
#include <string_view>

// What failed in a run that went on all the same.
struct commandfailures {
    int64 count = 0;
    std::string first;   // what failed first, and where to look
    bool strict = false; // the first failure ends the run
};
// Counts a failure. In a strict run it is told on standard error, and ends the run with status 3.
void notefailure(commandfailures &failures, const std::string &what);

// Runs the command and waits for it. A failure prints "failure : Solvanto : " and the routine's
// name on standard output, and is counted; the run goes on. True on success.
bool runshell(const std::string &command, std::string_view routine, commandfailures &failures);
// The same without a line of its own after a failure, and without counting it: the command's exit
// status, 128 + its number for a signal, -1 where it couldn't be run.
//
// The command and all that it starts are a process group of their own, which is killed when this
// process ends, however it ends: nothing of a run meets the next one.
int shellstatus(const std::string &command);
// A text as one word of a command, whatever its characters.
std::string shellword(std::string_view text);

// Whether a folder of that name exists.
bool folderexists(const std::string &path);
// Whether a file or folder of that name exists.
bool pathexists(const std::string &path);
// The working directory, an I/O error where it can't be told.
std::string workingdirectory();
