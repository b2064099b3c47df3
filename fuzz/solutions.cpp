// What a training leaves for other cycles. An input is up to four files: FixedSnp.txt, AlleleFreqTrain.txt,
// SnpSolutions.txt and the genotypes of the test individuals.
#include "harness.h"

#include "cyclefolder.h"
#include "evaluation/selectionchip.h"
#include "evaluation/solutionfiles.h"
#include "evaluation/trainingdata.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 4);
    smallstate s(smallsettings());
    constexpr int64 nsnp = 6, ntest = 3;
    s.loci.nsnp = s.loci.nsnpforsel = nsnp;
    s.cycle.fixedsnp.allocate(nsnp);
    s.cycle.ntestindiv = ntest;
    const std::string folder = cyclefolder(1);
    putfile(folder + fixedsnpfile, parts[0]);
    putfile(folder + trainingfrequencies, parts[1]);
    putfile(folder + onetraitsolutions, parts[2]);
    putfile(folder + testgenotypes(s), parts[3]);
    orderly([&] { readsolutions(s, folder + onetraitsolutions); });
    orderly([&] { scalegenottestingdata(s, 1, 1); });
    return 0;
}
