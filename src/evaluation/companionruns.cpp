#include "evaluation/companionruns.h"

#include "cyclefolder.h"
#include "shell.h"

void writecycleseed(const state &s, int64 selectioncycle)
{
    writeseed(cyclefolder(selectioncycle) + seedfile, s.random.idum);
}

void runcompanion(const companionrun &run, int64 selectioncycle)
{
    const std::string folder = cyclefolder(selectioncycle);
    const auto step = [&](const std::string &command, const char *letter) {
        runshell(command, "Run" + run.program + (run.letteredfailures ? letter : ""));
    };
    step("cp " + run.program + " " + folder, " A");

    outfile out(run.script);
    out.writeline(freeline("cd " + folder));
    out.writeline(freeline("./" + run.program + " > " + run.log));
    for (const std::string &line : run.afterwards) out.writeline(freeline(line));
    out.writeline(freeline("cd .."));
    out.close();
    step("chmod +x " + run.script, " B");
    step(run.script, " C");
    step("rm -f " + run.script, " D");
}

std::string lookinlog(int64 selectioncycle, const char *log)
{
    return "look in " + cyclefolder(selectioncycle) + log + " for what the program printed";
}
