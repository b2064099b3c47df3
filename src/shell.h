// shell.h - commands for the system's command interpreter.
#pragma once

#include <string>
#include <string_view>

// Runs the command and waits for it. A failure prints "failure : Solvanto : " and the routine's
// name on standard output; the run goes on. True on success.
// A command that the user interrupted (SIGINT, SIGQUIT) ends this process by the same signal,
// since the interpreter's wait hides it from the caller.
bool runshell(const std::string &command, std::string_view routine);
// The same without a line of its own after a failure.
bool tryshell(const std::string &command);
// A text as one word of a command, whatever its characters.
std::string shellword(std::string_view text);

// Whether a folder of that name exists.
bool folderexists(const std::string &path);
// Whether a file or folder of that name exists.
bool pathexists(const std::string &path);
// The working directory, an I/O error where it can't be told.
std::string workingdirectory();
