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

author trainingauthor(const state &s)
{
    return s.selection.externsolonoff ? author::user : author::program;
}

void readfixedsnp(state &s, const std::string &folder)
{
    infile in(folder + fixedsnpfile, trainingauthor(s));
    const bool own = trainingauthor(s) != author::user;
    for (int64 j = 1; j <= s.loci.nsnpforsel; ++j) {
        in.record();
        s.cycle.fixedsnp(j) = own ? in.within(0, 1) : in.integer();
    }
    if (own) in.stopifmore();
}

array1<double> readsolutions(const state &s, const std::string &path)
{
    array1<double> solutions(s.loci.nsnpforsel);
    infile in(path, trainingauthor(s));
    const bool own = trainingauthor(s) != author::user;
    int64 locus = 0;
    for (double &solution : solutions) {
        in.record();
        ++locus;
        if (own)
            in.identifier(locus, "SNP");
        else
            in.skipwords(1);
        solution = in.real();
    }
    if (own) in.stopifmore();
    return solutions;
}

std::vector<std::string> trainingfiles(const state &s, int64 selectedtrait)
{
    std::vector<std::string> names{solutionsfile(s, selectedtrait), trainingfrequencies,
                                   fixedsnpfile, trainingphenotypes(s, selectedtrait)};
    if (s.selection.recombselonoff)
        names.insert(names.end(), {recombsolutions, recombtrainingphenotypes});
    return names;
}

void copytrainingdata(state &s, int64 selectioncycle, int64 selectedtrait)
{
    for (const std::string &name : trainingfiles(s, selectedtrait))
        copyfile(s, cyclefolder(s.selection.fixedtrainselcycle) + name, cyclefolder(selectioncycle),
                 "CopyTrainingData");
}

void importtrainingdata(state &s, int64 selectioncycle)
{
    for (const std::string &name : trainingfiles(s, 1)) // there is one trait alone
        copyfile(s, "./" + name, cyclefolder(selectioncycle), "ImportTrainingData");
}
