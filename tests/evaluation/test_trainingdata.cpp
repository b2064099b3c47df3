#include "evaluation/solutionfiles.h"
#include "evaluation/trainingdata.h"
#include "openstate.h"
#include "testsupport.h"

#include <filesystem>

using trainingdata = infolder;

TEST_F(trainingdata, fixedlocihavenoneorallofthealleles)
{
    std::filesystem::create_directories("Selection/SelectionFolder2");
    openstate s;
    s.founders.nchrom = s.chips.tmpchip = 1;
    s.loci.nsnponthischipchrom.allocate(1, 1, 5);
    s.selection.addqtntosnpchip = 2;
    s.cycle.fixedsnp.allocate(5);
    const int64 counts[] = {0, 1, 14, 7, 13};
    std::copy(counts, counts + 5, s.cycle.fixedsnp.begin());
    s.cycle.ntrainindiv = 7;
    writefixedsnp(s, 2);
    EXPECT_EQ(readfile("Selection/SelectionFolder2/FixedSnp.txt"), " 0\n 1\n 0\n 1\n 1\n");
    // Specified individuals count as often as they are listed, whatever their range.
    s.selection.selphenstrat = 6;
    s.cycle.ntrainindiv = 99;
    s.cycle.trainindiv.allocate(7);
    writefixedsnp(s, 2);
    EXPECT_EQ(readfile("Selection/SelectionFolder2/FixedSnp.txt"), " 0\n 1\n 0\n 1\n 1\n");
}
