// What merges read before they write: the list, and of a folder its generations and its pedigree. An input is up
// to three files: list.txt, NbOfIndivInEachGen.txt and Pedigree.txt of the folder "source".
#include "harness.h"

#include "merge/mergedirectories.h"
#include "merge/mergeruns.h"
#include "pedigree/pedigreefiles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 3);
    putfile("list.txt", parts[0]);
    putfile(inrunfolder("source", generationtable), parts[1]);
    putfile(inrunfolder("source", pedigreetable), parts[2]);
    runsettings settings = smallsettings();
    settings.run.mergefiles = "list.txt";
    settings.run.numberofmergeruns = 1;
    orderly([&] { // individuals of the list
        smallstate s(settings);
        arrayscope arrays;
        planofruns(s, arrays);
    });
    orderly([&] { // whole folders
        smallstate s(settings);
        array1<pedigreeline> ped;
        mergepedigree(s, {"source", "source"}, ped);
    });
    return 0;
}
