#include "evaluation/relationshipruns.h"

#include "cyclefolder.h"
#include "evaluation/companionruns.h"
#include "evaluation/selectionchip.h"
#include "evaluation/trainingdata.h"
#include "evaluation/valuefiles.h"
#include "shell.h"
#include "stops.h"
#include "textlayout.h"

namespace
{
constexpr const char *brenvasklog = "outBrenvask", *corvalindlog = "outCorvalind";

std::string matrixfile(int64 selectioncycle)
{
    return cyclefolder(selectioncycle) + relationshipmatrix;
}

std::string resultfile(int64 selectioncycle, const char *name)
{
    return cyclefolder(selectioncycle) + "CorvalindResults/" + name;
}

// Opens a result of a program, which must be there.
infile openresult(const std::string &path, int64 selectioncycle, const char *log)
{
    if (!pathexists(path)) ioerror(path, "was not made; " + lookinlog(selectioncycle, log));
    return infile(path, author::program);
}

bool areonqtn(const state &s)
{
    return s.selection.selontbvyes1no0 != 0;
}

textline genotypefileline(const state &s, std::string_view genotdata)
{
    const std::string key = "GenotypeFile               ,";
    if (s.selection.selmethindicator != 2) return freeline(key + "None");
    if (!genotdata.empty()) return freeline(key, genotdata);
    if (areonqtn(s)) return freeline(key + testqtngenotypes);
    return freeline(key + testgenotypes(s));
}

std::string rankingfile(const state &s)
{
    if (s.traits.ntraits > 1 || s.selection.recombselonoff) return selectionindexfile;
    return areonqtn(s) ? truetestvalues(s, 1) : estimatesfile(s, 1);
}

void writegenders(const state &s, int64 selectioncycle)
{
    outfile out(cyclefolder(selectioncycle) + "GenderTesting.txt");
    for (int64 i = s.cycle.starttestindiv; i <= s.cycle.endtestindiv; ++i)
        out.writeline(freeline(i, s.pedi.globalgender(i)));
    out.close();
}
} // namespace

void writebrenvaskspec(const state &s, int64 selectioncycle, relationshipbase base,
                       std::string_view genotdata)
{
    outfile out(cyclefolder(selectioncycle) + "BrenvaskSpec.txt");
    const auto heading = [&](const char *line) { out.writeline(line); };
    const auto free = [&](const auto &...values) { out.writeline(freeline(values...)); };
    heading("#####################Input parameters#####################################");
    out.writeline(genotypefileline(s, genotdata));
    free("PedigreeFile               ,None");
    free("WeightFile                 ,None");
    free("NumberOfTraits             ,1");
    free("NumberOfSnp                ,", areonqtn(s) ? s.loci.ntotqtn : s.loci.nsnpforsel);
    free("InversionOfG               ,Ordinary");
    free("DiagonalFudgeFactor        ,0.001");
    heading("#####################Matrices to be constructed###########################");
    free("MakeG                      ,Yes");
    free("MakeGinverse               ,No");
    free("MakeA                      ,No");
    free("MakeAinverse               ,No");
    free("MakeH                      ,No");
    free("MakeHinverse               ,No");
    heading("#####################Option for G matrices only to use inside Solvanto####");
    free("UseAlleleFreqFromAPreviousSelCycleOnOff     ,",
         base == relationshipbase::first ? "On" : "Off");
    free("UseAlleleFreqFromThisSelCycle               ,1");
    heading("##############################Output options##############################");
    free("VanRadenGFullMat      ,Yes");
    free("VanRadenGIJA        ,No");
    free("InverseVanRadenGFullMat   ,No");
    free("InverseVanRadenGIJA     ,No");
    free("AmatFullMat         ,No");
    free("AmatIJA           ,No");
    free("InverseAmatFullMat      ,No");
    free("InverseAmatIJA        ,No");
    free("HmatFullMat         ,No");
    free("HmatIJA           ,No");
    free("InverseHmatFullMat      ,No");
    free("InverseHmatIJA        ,No");
    out.close();
}

void runbrenvask(state &s, int64 selectioncycle)
{
    runcompanion(s, {"Brenvask", "./TmpBrenvask.sh", brenvasklog, {}}, selectioncycle);
}

void writecorvalindspec(const state &s, int64 selectioncycle, int64 currentgen)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    outfile out(cyclefolder(selectioncycle) + "CorvalindSpec.txt");
    const auto free = [&](const auto &...values) { out.writeline(freeline(values...)); };
    free("RelationshipMatrixFile                  ,GFullMatrix1-1.txt");
    free(std::string("BreedingValueFile                       ,") + rankingfile(s));
    if (s.pop.animbreedonoff)
        free("PerformMatingsConsideringTheGender      ,Yes");
    else
        free("PerformMatingsConsideringTheGender      ,", s.pop.gendermatters);
    if (s.pop.animbreedonoff || s.pop.plantsbygender) {
        free("GenderFile                              ,GenderTesting.txt");
        free("NumberOfMales                           ,", s.pedi.nmalinthisgen(currentgen - 1));
        free("NumberOfFemales                         ,", s.pedi.nfeminthisgen(currentgen - 1));
    } else {
        free("NumberOfIndividuals                     ,", cycle.ntestindiv);
    }
    free("NumberOfMatings                         ,", s.pedi.nindivinthisgen(currentgen));
    free("PercentageDifferenceInbreeding           ,", sel.percentdeltaf);
    free("SizeOfPopulationOfXvectors              ,", sel.sizeofxvecpopoc);
    free("MaximumNumberOfGenerations              ,", sel.maxnbofgenoc);
    out.close();
    writegenders(s, selectioncycle);
}

void runcorvalind(state &s, int64 selectioncycle)
{
    writecycleseed(s, selectioncycle);
    runcompanion(s, {"Corvalind", "./TmpCorvalind.sh", corvalindlog, {}}, selectioncycle);
}

std::vector<double> averagerelationships(int64 selectioncycle,
                                         const std::vector<array1<double>> &vectors)
{
    const int64 n = vectors.front().size();
    infile in = openresult(matrixfile(selectioncycle), selectioncycle, brenvasklog);
    std::vector<double> averages(vectors.size(), 0.0);
    array1<double> row(n);
    int64 first = 0;
    for (int64 i = 1; i <= n; ++i) {
        in.record();
        if (i == 1)
            first = in.integer();
        else
            in.identifier(first + i - 1, "individual"); // in the order of their genotypes
        in.reals(row.data(), n);
        for (std::size_t v = 0; v < vectors.size(); ++v) {
            const array1<double> &x = vectors[v];
            double sum = 0;
            for (int64 k = 1; k <= n; ++k) sum += x(k) * row(k);
            averages[v] += sum * x(i);
        }
    }
    if (in.nextrecord())
        in.complain("a relationship matrix of " + numbertext(n) + " individuals ends before this");
    return averages;
}

frontierends readfrontier(int64 selectioncycle)
{
    const std::string path = resultfile(selectioncycle, "Frontier.txt");
    infile in = openresult(path, selectioncycle, corvalindlog);
    const int64 nlambda = countlines(path) - 1;
    if (nlambda < 1) ioerror(path, "holds no solution; " + lookinlog(selectioncycle, corvalindlog));
    frontierends ends;
    in.record(); // the title
    int64 before = 0;
    for (int64 r = 1; r <= nlambda; ++r) {
        in.record();
        const int64 solution = in.integer();
        if (r > 1 && solution == before) in.complain("a second line of this solution");
        before = solution;
        in.real();
        ends.finalxax = in.real();
        in.real();
        in.word();
        if (r == 1) ends.globalminxax = ends.finalxax;
    }
    return ends;
}

std::vector<mating> readmatinglist(const state &s, int64 selectioncycle, int64 nmatings)
{
    infile in =
        openresult(resultfile(selectioncycle, "MatingListFinal.txt"), selectioncycle, corvalindlog);
    const auto place = [&] {
        const int64 x = in.integer();
        if (x < 1 || x > s.cycle.ntestindiv)
            in.complain("a parent must be a candidate, 1 to " + numbertext(s.cycle.ntestindiv));
        return x;
    };
    std::vector<mating> matings(static_cast<std::size_t>(nmatings));
    for (mating &pair : matings) {
        in.record();
        pair.male = place();
        pair.female = place();
    }
    if (in.nextrecord()) in.complain("there are " + numbertext(nmatings) + " matings to be made");
    return matings;
}
