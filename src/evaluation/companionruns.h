// companionruns.h - running the programs that evaluate for the system in the folder of a cycle.
//
// The programs are executables in the working directory. Each is copied to the folder F of the
// cycle and run there by a script, which is removed afterwards; what it prints lands in a log in F,
// and all else passes through files in F.
#pragma once

#include "state.h"

#include <string>
#include <vector>

struct companionrun {
    std::string program;
    std::string script;                  // "./Tmp...sh" in the working directory
    std::string log;                     // in F
    std::vector<std::string> afterwards; // in F, behind the program; a failure is counted
    bool letteredfailures = false;       // failure lines name the step: A, B, C, D
};

// Seed.txt in F: idum. The run's own stream stays as it is.
void writecycleseed(const state &s, int64 selectioncycle);

// Copies the program to F, writes the script, makes it executable, runs it, removes it. A failing
// command prints its failure line, a program that ends with another status than 0 doesn't; both are
// counted, and the run goes on: whether the program left results shows when they are read.
void runcompanion(state &s, const companionrun &run, int64 selectioncycle);

// Where to look when a program left nothing, or too little: an end of an error message.
std::string lookinlog(int64 selectioncycle, const char *log);
