// arguments.h - the command line of solvanto. Without arguments it is a run as the specification
// has it; nothing on the command line changes what a run writes or prints on standard output.
#pragma once

#include "programinfo.h"
#include "runoptions.h"

struct arguments {
    enum class actions { run, check, done };
    actions action = actions::run; // done: the arguments were answered
    runoptions options;
    int status = 0; // exit status where they are
};

// Reads the command line, and answers --help, --version, --keys and --tidylist. Another argument
// than those of --help is refused on standard error with status 2, and nothing has been touched by then.
arguments readarguments(int argc, char **argv);
