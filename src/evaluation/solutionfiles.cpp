#include "evaluation/solutionfiles.h"

#include "cyclefolder.h"
#include "evaluation/valuefiles.h"
#include "shell.h"

namespace
{
void copyfile(state &s, const std::string &file, const std::string &folder, const char *routine)
{
    runshell("cp " + file + " " + folder, routine, s.failures);
}
} // namespace

std::string solutionsfile(const state &s, int64 selectedtrait)
{
    return "SnpSolutions" + traitsuffix(s, selectedtrait) + ".txt";
}

void writefixedsnp(state &s, int64 selectioncycle)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    int64 nloci = areqtnadded(s) ? s.loci.ntotqtn : 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        nloci += s.loci.nsnponthischipchrom(s.chips.tmpchip, h);
    const int64 ntraining = sel.selphenstrat == 6 ? cycle.trainindiv.size() : cycle.ntrainindiv;
    outfile out(cyclefolder(selectioncycle) + fixedsnpfile);
    for (int64 j = 1; j <= nloci; ++j) {
        const bool fixed = cycle.fixedsnp(j) == 0 || cycle.fixedsnp(j) == 2 * ntraining;
        out.writeline(freeline(fixed ? 0 : 1));
    }
    out.close();
}

void readfixedsnp(state &s, int64 selectioncycle)
{
    infile in(cyclefolder(selectioncycle) + fixedsnpfile);
    for (int64 j = 1; j <= s.loci.nsnpforsel; ++j) {
        in.record();
        s.cycle.fixedsnp(j) = in.integer();
    }
}

array1<double> readsolutions(const state &s, int64 selectioncycle, const std::string &name)
{
    array1<double> solutions(s.loci.nsnpforsel);
    infile in(cyclefolder(selectioncycle) + name);
    for (double &solution : solutions) {
        in.record();
        in.skipwords(1);
        solution = in.real();
    }
    return solutions;
}

void copytrainingdata(state &s, int64 selectioncycle, int64 selectedtrait)
{
    const auto copy = [&](const std::string &name) {
        copyfile(s, cyclefolder(s.selection.fixedtrainselcycle) + name, cyclefolder(selectioncycle),
                 "CopyTrainingData");
    };
    copy(solutionsfile(s, selectedtrait));
    copy(trainingfrequencies);
    copy(fixedsnpfile);
    copy(trainingphenotypes(s, selectedtrait));
    if (!s.selection.recombselonoff) return;
    copy(recombsolutions);
    copy(recombtrainingphenotypes);
}

void importtrainingdata(state &s, int64 selectioncycle)
{
    const auto copy = [&](const char *name) {
        copyfile(s, std::string("./") + name, cyclefolder(selectioncycle), "ImportTrainingData");
    };
    copy(onetraitsolutions);
    copy(trainingfrequencies);
    copy(fixedsnpfile);
    copy(onetraitphenotypes);
    if (!s.selection.recombselonoff) return;
    copy(recombsolutions);
    copy(recombtrainingphenotypes);
}
