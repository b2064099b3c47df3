// The pedigree of earlier runs, and that of a user for a burn-in and for a cycle. An input is up to five
// files: Pedigree.txt, Gender.txt, NbOfIndivInEachGen.txt, the user's pedigree, ExternalPedigree.txt.
#include "harness.h"

#include "arrayscope.h"
#include "cyclefolder.h"
#include "pedigree/pedigree.h"
#include "pedigree/pedigreefiles.h"
#include "pedigree/pedigreereadermaker.h"
#include "selection/pedigreeimport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 5);
    putfile(pedigreetable, parts[0]);
    putfile(gendertable, parts[1]);
    putfile(generationtable, parts[2]);
    putfile("Pedigree.txt", parts[3]);
    putfile(cyclefolder(1) + "ExternalPedigree.txt", parts[4]);
    runsettings settings = smallsettings();
    settings.run.specstartgen = settings.run.specendgen = 2;
    orderly([&] {
        smallstate s(settings);
        arrayscope arrays;
        makepedigreearrays(s, arrays);
        readpedigreegender(s);
    });
    orderly([&] {
        smallstate s(settings);
        arrayscope arrays;
        makepedigreearrays(s, arrays);
        s.cycle.endtestindiv = lastindivofgen(s, 2);
        importexternalpedforcurrentselgen(s, 1, 3);
    });
    settings.run.specstartgen = 1;
    settings.pop.pedigreefrom = pedigreesource::file;
    settings.pop.pedigreefile = "Pedigree.txt";
    orderly([&] {
        smallstate s(settings);
        pedigreereadermaker(s);
    });
    return 0;
}
