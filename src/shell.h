// shell.h - commands for the system's command interpreter.
#pragma once

#include "arrays.h"
#include "descriptors.h"

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

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
// How many commands a run has side by side: what SOLVANTO_THREADS says, else the number of processors
// that this process may use. An I/O error where SOLVANTO_THREADS is no number from 1 to 1024.
int64 commandsatonce();

// Commands in chains: those of a chain run one behind the other, chains side by side, as many as there
// may be at once, in the order in which they were added. What is told of them doesn't depend on how
// many these are, and where it is one each begins when it is asked for.
class commandqueue
{
  public:
    explicit commandqueue(int64 natonce) : most(natonce) {}
    commandqueue(const commandqueue &) = delete;
    commandqueue &operator=(const commandqueue &) = delete;
    ~commandqueue(); // waits for the commands that run, and begins no other

    // A chain behind the others.
    void add(const std::vector<std::string> &commands);
    // Number of chains.
    int64 size() const { return static_cast<int64>(chains.size()); }
    int64 natonce() const { return most; }
    // As runshell, of command k of a chain, both from 1: to be asked for in order, the commands of the
    // first chain, those of the second and so on. What a command prints on standard output stands
    // where it is asked for.
    bool finish(int64 chain, int64 k, std::string_view routine, commandfailures &failures);

  private:
    struct queuedcommand {
        std::string text;
        pid_t child = 0; // while it runs
        bool ended = false;
        int status = 0;
        filedescriptor output; // while it runs
        std::string printed;   // once it has ended
    };
    struct chaintorun {
        std::vector<queuedcommand> commands;
        std::size_t nended = 0;
    };
    void beginmore();
    void begin(queuedcommand &command);
    void awaitone();
    void end(chaintorun &chain, int status);
    int64 most = 1, nrunning = 0;
    std::vector<chaintorun> chains;
    std::size_t firstopen = 0; // chains before it have ended
};

// A text as one word of a command, whatever its characters.
std::string shellword(std::string_view text);

// Whether a folder of that name exists.
bool folderexists(const std::string &path);
// Whether a file or folder of that name exists.
bool pathexists(const std::string &path);
// The working directory, an I/O error where it can't be told.
std::string workingdirectory();
