// The readers of genomic prediction. An input is up to six files: the specification, genotypes and
// phenotypes of training, FixedSnp.txt, genotypes and true values of the test individuals.
#include "harness.h"

#include "Quillomere/quillomerespec.h"
#include "Quillomere/testset.h"
#include "Quillomere/trainingset.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 6);
    putfile("QuillomereSpec.txt", parts[0]);
    orderly([] { readquillomerespec("QuillomereSpec.txt"); });
    putfile("TrainingGenotypes.txt", parts[1]);
    putfile("Phenotypes.txt", parts[2]);
    putfile("FixedSnp.txt", parts[3]);
    putfile("TestGenotypes.txt", parts[4]);
    putfile("Tbv.txt", parts[5]);
    orderly([] {
        quillomerespec spec;
        spec.file = "QuillomereSpec.txt";
        spec.genotypetraining = "TrainingGenotypes.txt";
        spec.phenotypetraining = "Phenotypes.txt";
        spec.fixedsnpfile = "FixedSnp.txt";
        spec.genotypetesting = "TestGenotypes.txt";
        spec.tbvtesting = "Tbv.txt";
        spec.nsnp = 4;
        spec.nanistraining = spec.nanistest = 3;
        const trainingset training = readtrainingset(spec);
        predicttestset(spec, training, array1<double>(training.segregating.size()));
    });
    return 0;
}
