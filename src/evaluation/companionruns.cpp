#include "evaluation/companionruns.h"

#include "cyclefolder.h"
#include "shell.h"
#include "textlayout.h"
#include "words.h"

#include <unistd.h>

void writecycleseed(const state &s, int64 selectioncycle)
{
    writeseed(cyclefolder(selectioncycle) + seedfile, s.random.idum);
}

namespace
{
// The status of a script whose program ended well, while a command behind it failed.
constexpr int failedbehind = 125;

// A program that fails is told at the end of the run; standard output tells of scripts alone.
void runscript(state &s, const companionrun &run, int64 selectioncycle)
{
    const int status = shellstatus(run.script);
    if (status == 0) return;
    if (access(run.script.c_str(), X_OK) != 0)
        printline("failure : Solvanto : Run" + run.program + (run.letteredfailures ? " C" : ""));
    const std::string when = " in cycle " + numbertext(selectioncycle) + ": ";
    const std::string look = lookinlog(selectioncycle, run.log.c_str());
    notefailure(s.failures,
                status == failedbehind && !run.afterwards.empty()
                    ? "a result of " + run.program + " couldn't be copied, moved or removed" +
                          when + "the command's own message tells why, and " + look
                    : run.program + " ended with status " + numbertext(status) + when + look);
}
} // namespace

void runcompanion(state &s, const companionrun &run, int64 selectioncycle)
{
    const std::string folder = cyclefolder(selectioncycle);
    const auto step = [&](const std::string &command, const char *letter) {
        runshell(command, "Run" + run.program + (run.letteredfailures ? letter : ""), s.failures);
    };
    step("cp " + run.program + " " + folder, " A");

    outfile out(run.script);
    out.writeline(freeline("cd " + folder));
    out.writeline(freeline("./" + run.program + " > " + run.log));
    out.writeline("status=$?");
    const std::string orfail = " || [ $status -ne 0 ] || status=" + std::to_string(failedbehind);
    for (const std::string &line : run.afterwards) out.writeline(freeline(line + orfail));
    out.writeline(freeline("cd .."));
    out.writeline("exit $status");
    out.close();
    step("chmod +x " + run.script, " B");
    runscript(s, run, selectioncycle);
    step("rm -f " + run.script, " D");
}

std::string lookinlog(int64 selectioncycle, const char *log)
{
    return "look in " + cyclefolder(selectioncycle) + log + " for what the program printed";
}
