#include "Quillomere/quillomere.h"

#include "Quillomere/testset.h"
#include "evaluationhelpers/progress.h"
#include "words.h"

#include <cstdio>

namespace
{
constexpr const char *ebvfile = "Ebv.txt", *solutionfile = "SnpSolutions.txt",
                     *frequencyfile = "AlleleFreq.txt", *correlationfile = "TbvEbvCorrelation.txt";

void removeearlierresults()
{
    for (const char *file : {ebvfile, solutionfile, frequencyfile, correlationfile})
        std::remove(file); // mostly there is none
}

void writerecord(outfile &out, textline &line, int64 number, double value)
{
    puti(line, number, 20);
    putfree(line, value);
    out.writeline(line);
}

void writesolutions(const quillomerespec &spec, const trainingset &training,
                    const array1<double> &solution)
{
    outfile solutions(solutionfile), frequencies(frequencyfile);
    textline line;
    int64 next = 1; // segregating SNP
    for (int64 j = 1; j <= spec.nsnp; ++j) {
        if (next > training.segregating.size() || training.segregating(next) != j) {
            writerecord(solutions, line, j, 0);
            continue;
        }
        writerecord(solutions, line, j, solution(next));
        writerecord(frequencies, line, j, training.genotypes.freq(next));
        ++next;
    }
    solutions.close();
    frequencies.close();
}

void writeestimates(const testset &test)
{
    outfile estimates(ebvfile), correlation(correlationfile);
    textline line;
    for (int64 i = 1; i <= test.ebv.size(); ++i)
        writerecord(estimates, line, test.indiv(i), test.ebv(i));
    putfree(line, test.correlation);
    correlation.writeline(line);
    estimates.close();
    correlation.close();
}

void reporttraining(const trainingset &training)
{
    note(numbertext(training.phenotype.size()) + " individuals, " +
         numbertext(training.segregating.size()) + " SNPs that segregate in training, " +
         numbertext(static_cast<int64>(training.genotypes.missing.size())) + " missing genotypes");
}
} // namespace

void quillomere()
{
    note("Quillomere: genomic prediction by SNP-BLUP");
    removeearlierresults();
    const quillomerespec spec = readquillomerespec("QuillomereSpec.txt");
    setprocessors(spec.numberofprocessors);
    trainingset training;
    {
        const step reading("Reading the training data");
        training = readtrainingset(spec);
    }
    reporttraining(training);
    snpblup estimated;
    {
        const step solving("Solving the equations");
        estimated = solvesnpblup(training.genotypes, training.phenotype, spec.vara, spec.vare,
                                 spec.nround, spec.file);
    }
    testset test;
    {
        const step predicting("Predicting " + numbertext(spec.nanistest) + " test individuals");
        test = predicttestset(spec, training, estimated.solution);
    }
    note("Correlation of true and estimated values: " + shortnumber(test.correlation));
    {
        const step writing("Writing the results");
        writesolutions(spec, training, estimated.solution);
        writeestimates(test);
    }
    note("Quillomere has ended normally");
}
