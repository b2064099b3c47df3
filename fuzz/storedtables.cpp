// What a run that goes on reads of earlier ones. An input is up to eight files: of chromosome 1
// SegSitesIncluded.txt, NbOfQtnMutationsAndSnp.txt, MutDeNovoInfo.txt, MutIndivIndicator.txt,
// PhysicalMapIncluded.txt and the sites of a chip; PedigreeTbvTdvTpv.txt and RecombinationCount.txt.
#include "harness.h"

#include "founders/stores.h"
#include "haplotypes/crossingfiles.h"
#include "markers/sitesets.h"
#include "pedigree/pedigree.h"
#include "selection/trainingsets.h"
#include "traits/covariances.h"
#include "values/phenotypes.h"
#include "values/valuearrays.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr int64 nsites = 4, nindiv = 3;
    const auto parts = partsof(data, size, 8);
    putfile(sitesincludedfile(1), parts[0]);
    putfile(sitenumbersfile(1), parts[1]);
    putfile(mutationsfile(1), parts[2]);
    putfile(carriersfile(1), parts[3]);
    putfile(includedmapfile(1), parts[4]);
    putfile(informationfile(1, siteset(1)), parts[5]);
    putfile(valuetable, parts[6]);
    putfile(recombinationcounts, parts[7]);
    runsettings settings = smallsettings();
    settings.founders.nchrom = 1;
    settings.founders.ndenovomutperchr = 10;
    settings.pop.nindivp = nindiv;
    orderly([&] {
        smallstate s(settings);
        arrayscope arrays;
        makechromarrays(s, arrays);
        readsegsitesdatafromallchrom(s);
    });
    orderly([] { readincludedmap(1, nsites); });
    orderly([] { readsites(informationfile(1, siteset(1)), nsites, 60); });
    smallstate s(settings);
    arrayscope arrays;
    makevaluearrays(s, arrays);
    makepedigreearrays(s, arrays);
    for (int64 i = 1; i <= nindiv; ++i) s.pedi.ped(i).newid = i;
    putfile(residualfactorfile(1), parts[4]);
    orderly([&] { readtruevalues(s, nindiv); });
    orderly([&] { readrecombcounts(s, nindiv); });
    orderly([&] { readresidualfactors(s); });
    return 0;
}
