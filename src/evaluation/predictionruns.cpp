#include "evaluation/predictionruns.h"

#include "cyclefolder.h"
#include "evaluation/companionruns.h"
#include "evaluation/selectionchip.h"
#include "evaluation/solutionfiles.h"
#include "evaluation/valuefiles.h"
#include "shell.h"
#include "stops.h"
#include "textlayout.h"

#include <cmath>
#include <vector>

std::string trainingpedigree(int64 selectedtrait)
{
    return "PedigreeBlupTrain" + numbertext(selectedtrait) + ".txt";
}

namespace
{
std::string pedigreeestimates(int64 selectedtrait)
{
    return "EbvTrait" + numbertext(selectedtrait) + ".txt";
}

constexpr const char *script = "./TmpQuillomere.sh";
constexpr const char *logname = "outQuillomere";

// The specification that both programs get under pedigree prediction; the two files differ in a
// few lines. parameters: DataFormatParameters.txt, otherwise QuillomereSpec.txt.
void writepedigreespec(const state &s, int64 selectioncycle, int64 selectedtrait, int64 runid,
                       bool parameters)
{
    outfile out(cyclefolder(selectioncycle) +
                (parameters ? "DataFormatParameters.txt" : "QuillomereSpec.txt"));
    const auto free = [&](const auto &...values) { out.writeline(freeline(values...)); };
    free(parameters ? "Run for Solvanto" : "Test");
    free("Blup");
    if (runid == 2)
        free("SelectionPhenRecomb.txt,TmpChip1GenotypeTrain.txt,XmatFormat");
    else if (parameters)
        out.writeline(trainingpedigree(selectedtrait));
    else
        free("SelectionPhen.txt");
    free("Animal                            ,!P,0,F");
    free("Sire                              ,!P");
    free("Dam                               ,!P");
    free(parameters ? "Id                                ,!I"
                    : "Id                            ,!I");
    free(parameters ? "Phen                              ,!R" : "Phen                      ,!R");
    free("MissingValue                      ,-99");
    free("nIterations                       ,10000");
    free("nBurnIn                           ,1000");
    free(parameters ? "OutputIterationNumber             ,10"
                    : "OutputIterationNumber           ,10");
    free("nBlupIterations                   ,0");
    free("FixedEffects                      ,Mean");
    free("FixedRegression                   ,None");
    free("Yvariable                         ,Phen");
    free("SnpSolver                         ,BayesA");
    free("NumberSnp                         ,0");
    free("TotalGeneticVariance              ,0.30");
    free("StartValueSnpVariance             ,1.00");
    free("StartValuePolygenicVariance       ,", s.cycle.selectionvaratr(selectedtrait));
    free("StartValueResidualVariance        ,", s.values.vare(s.qtn.qtnmodel, selectedtrait));
    free(parameters ? "StartValueGeneticGroupVariance    ,0.0"
                    : "StartValueGeneticGroupVariance      ,0.0");
    free(runid == 2 ? "PolygenicFixed                    ,Yes"
                    : "PolygenicFixed                    ,No");
    free("ResidualFixed                     ,No");
    free("GeneticGroupVarianceFixed         ,No");
    free("PosteriorMeanOnly         ,No");
    out.close();
}

void writegenomicspec(const state &s, int64 selectioncycle, int64 selectedtrait, int64 runid)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    const bool recomb = s.traits.ntraits == 1 && runid == 2;
    outfile out(cyclefolder(selectioncycle) + "QuillomereSpec.txt");
    const auto free = [&](const auto &...values) { out.writeline(freeline(values...)); };
    free("GenotypeTraining      ," + traininggenotypes(s));
    free("GenotypeTesting       ," + testgenotypes(s));
    free(recomb ? std::string("PhenotypeTraining   ,") + recombtrainingphenotypes
                : "PhenotypeTraining     ," + trainingphenotypes(s, selectedtrait));
    free(recomb ? std::string("TbvTesting        ,") + recombtestvalues
                : "TbvTesting            ," + truetestvalues(s, selectedtrait));
    free(std::string("FixedSnpFile          ,") + fixedsnpfile);
    free("nSnp                  ,", s.loci.nsnpforsel);
    free("nAnisTraining         ,",
         sel.selphenstrat == 6 ? cycle.trainindiv.size() : cycle.ntrainindiv);
    free("nAnisTest             ,", cycle.ntestindiv);
    free("nRound                ,1000");
    free("nBurn                 ,0");
    free("VarA                  ,",
         runid == 2 ? cycle.selectionvararecombtr : cycle.selectionvaratr(selectedtrait));
    free("VarE                  ,",
         runid == 2 ? s.values.varerecomb : s.values.vare(s.qtn.qtnmodel, selectedtrait));
    free("NumberOfProcessors    ,1");
    free("ScalingOption         ,", 2);
    free("MissingGenoCode       ,9");
    free("MarkerSolver          ,Ridge");
    out.close();
}

void runprediction(state &s, int64 selectioncycle, const char *program,
                   std::vector<std::string> afterwards)
{
    writecycleseed(s, selectioncycle);
    runcompanion(s, {program, script, logname, std::move(afterwards), true}, selectioncycle);
}

// An integer and a real at the beginning of a record; false where they can't be read.
bool readpair(std::string_view record, int64 &number, double &value)
{
    constexpr const char *separators = " \t,";
    std::string_view words[2];
    std::size_t at = 0;
    for (std::string_view &word : words) {
        at = record.find_first_not_of(separators, at);
        if (at == std::string_view::npos) return false;
        const std::size_t end = std::min(record.find_first_of(separators, at), record.size());
        word = record.substr(at, end - at);
        at = end;
    }
    return readinteger(words[0], number) && readreal(words[1], value);
}

// One estimate for each test individual, as a prediction program left them: in any order, each once.
void readestimates(const state &s, int64 selectioncycle, const std::string &name, double *estimates)
{
    const std::string path = cyclefolder(selectioncycle) + name;
    if (!pathexists(path))
        ioerror(path,
                "was not made by the prediction program; " + lookinlog(selectioncycle, logname));
    infile in(path, author::program);
    const int64 n = s.cycle.ntestindiv;
    std::vector<bool> known(static_cast<std::size_t>(n));
    for (int64 i = 0; i < n; ++i) {
        if (!in.nextrecord())
            ioerror(path, "holds " + numbertext(i) + " estimates for " + numbertext(n) +
                              " candidates; " + lookinlog(selectioncycle, logname));
        const int64 k = in.integer() - s.cycle.starttestindiv;
        if (k < 0 || k >= n) in.complain("this individual is none of the candidates");
        if (known[static_cast<std::size_t>(k)]) in.complain("a second estimate of this candidate");
        known[static_cast<std::size_t>(k)] = true;
        estimates[k] = in.real();
    }
    while (in.nextrecord())
        if (!trim(in.line()).empty()) in.complain("there are more estimates than candidates");
}

// Estimates from scaled genotypes and solutions; written to a file of the cycle.
void multiplysolutions(const state &s, int64 selectioncycle, const std::string &solutions,
                       const std::string &genotypes, const std::string &target, double *estimates)
{
    const std::string folder = cyclefolder(selectioncycle);
    const int64 nloci = s.loci.nsnpforsel;
    const array1<double> snpsol = readsolutions(s, folder + solutions);
    array1<double> tmpgenosvec(nloci);
    infile genotypefile(folder + genotypes, author::system);
    valuefile out(selectioncycle, target);
    for (int64 i = 0; i < s.cycle.ntestindiv; ++i) {
        genotypefile.record();
        const int64 id = s.cycle.starttestindiv + i;
        genotypefile.identifier(id, "individual");
        genotypefile.reals(tmpgenosvec.data(), nloci);
        double sum = 0;
        for (int64 m = 1; m <= nloci; ++m) sum += tmpgenosvec(m) * snpsol(m);
        estimates[i] = sum;
        out.put(id, sum);
    }
    out.close();
}
} // namespace

void writequillomerepspec(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid)
{
    writepedigreespec(s, selectioncycle, selectedtrait, runid, true);
}

void writequillomerespec(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid)
{
    if (s.selection.selmethindicator == 1)
        writepedigreespec(s, selectioncycle, selectedtrait, runid, false);
    else
        writegenomicspec(s, selectioncycle, selectedtrait, runid);
}

void runquillomerep(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid)
{
    if (runid <= 0) printline("Run ID set incorrectly");
    runprediction(s, selectioncycle, "QuillomereP",
                  {"mv ResultAverageEstimatedPolygenicBreedingValues.txt " +
                   pedigreeestimates(selectedtrait)});
}

void runquillomere(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid)
{
    const std::string estimates = onetraitestimates, solutions = onetraitsolutions;
    const std::string correlation = "TbvEbvCorrelation.txt";
    std::vector<std::string> lines = {std::string("cp AlleleFreq.txt ") + trainingfrequencies,
                                      "rm AlleleFreq.txt"};
    if (runid == 2) {
        lines.push_back("cp " + solutions + " " + recombsolutions);
        lines.push_back("cp " + estimates + " ./" + recombestimates);
        lines.push_back("cp " + correlation + " TbvEbvCorrelRecomb.txt");
    }
    if (s.traits.ntraits > 1) {
        const std::string trait = traitsuffix(s, selectedtrait);
        lines.push_back("cp " + estimates + " " + estimatesfile(s, selectedtrait));
        lines.push_back("cp " + solutions + " " + solutionsfile(s, selectedtrait));
        lines.push_back("cp " + correlation + " TbvEbvCorrelation" + trait + ".txt");
        lines.push_back("rm -f " + estimates + " " + solutions + " " + correlation);
    }
    runprediction(s, selectioncycle, "Quillomere", lines);
}

void readquillomerepebvs(state &s, int64 selectioncycle, int64 selectedtrait)
{
    cycledata &cycle = s.cycle;
    const std::string folder = cyclefolder(selectioncycle), trait = numbertext(selectedtrait);
    const std::string path = folder + pedigreeestimates(selectedtrait);
    if (!pathexists(path)) outfile(path).close();
    infile in(path, author::program);
    outfile out(folder + "EBVsReadIn" + trait + ".txt");
    const int64 pedfirstindiv = firstindivofgen(s, firstpedigreegen(s));
    const int64 firsttestindiv = firstindivofgen(s, s.pop.ngen + selectioncycle - 1);
    int64 i = 0, tmpindiv = 0;
    double tmppebv = 0;
    textline line;
    while (i < cycle.ntestindiv && in.nextrecord() && readpair(in.line(), tmpindiv, tmppebv)) {
        const int64 row = pedfirstindiv + tmpindiv - 1;
        if (row < firsttestindiv) continue;
        // A user's pedigree may have given the candidates identifiers that aren't their rows.
        const bool isrow = s.pedi.ped(firsttestindiv + i).newid == firsttestindiv + i;
        if (isrow && row != firsttestindiv + i)
            in.complain("it is the estimate of individual " + numbertext(row) + ", that of " +
                        numbertext(firsttestindiv + i) + " is wanted");
        if (!std::isfinite(tmppebv)) in.complain("a finite number is wanted");
        ++i;
        cycle.estimatedbvtrait(i, selectedtrait) = tmppebv;
        puti(line, i, 10);
        puti(line, row, 10);
        putf(line, tmppebv, 20, 8);
        out.writeline(line);
    }
    out.close();
    if (i < cycle.ntestindiv)
        warn(s.options, path, 0,
             "it holds estimates of " + numbertext(i) + " of " + numbertext(cycle.ntestindiv) +
                 " candidates, the others count as 0; " + lookinlog(selectioncycle, logname));
}

void computereadebv(state &s, int64 selectioncycle, int64 selectedtrait)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    double *const estimates = cycle.estimatedbvtrait.column(selectedtrait);
    if (aresolutionsinforce(s, selectioncycle)) {
        multiplysolutions(s, selectioncycle, solutionsfile(s, selectedtrait), scaledgenotypes(s, 1),
                          onetraitestimates, estimates);
        if (sel.recombselonoff)
            multiplysolutions(s, selectioncycle, recombsolutions, scaledgenotypes(s, 2),
                              recombestimates, cycle.estimatedbvrecomb.data());
        return;
    }
    readestimates(s, selectioncycle, estimatesfile(s, selectedtrait), estimates);
    if (sel.recombselonoff)
        readestimates(s, selectioncycle, recombestimates, cycle.estimatedbvrecomb.data());
}
