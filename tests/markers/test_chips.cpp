// Choice of the chip markers and QTN of a chromosome, with and without regions.
#include "markers/chips.h"
#include "markers/qtnplacement.h"
#include "openstate.h"
#include "testsupport.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace
{
using sites = std::vector<int64>;

class markerchoice : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories("Chromosomes/Chromosome2");
        std::filesystem::create_directories("QtnSpecifications");
    }
};

// A chromosome of n sites; site k has minor allele frequency 0.1, 0.2, ... 0.5, 0.1, ...
void setchromosome(openstate &s, int64 n)
{
    s.founders.nchrom = 2;
    s.sites.nsegregincl = n;
    s.haplo.nblock = n / 60;
    s.sites.snponarrays.allocate(n);
    s.sites.minorallelefreq.allocate(n);
    s.sites.inclphysicalmap.allocate(n);
    s.sites.inclmutindicator.allocate(n);
    s.sites.inclmutindicatorindivid.allocate(n);
    for (int64 k = 1; k <= n; ++k) {
        s.sites.snponarrays(k) = k;
        s.sites.minorallelefreq(k) = static_cast<double>((k - 1) % 5 + 1) / 10;
        s.sites.inclphysicalmap(k) = static_cast<double>(k) / static_cast<double>(n + 1);
    }
    s.chips.nchip = 2;
    s.loci.nsnponthischipchrom.allocate(2, 2);
    s.loci.nsnponthischipchrom(1, 2) = 20; // the larger chip comes first
    s.loci.nsnponthischipchrom(2, 2) = 10;
    s.chips.nestedonoff = true;
    s.chips.snpchipinclqtn = 3;
    s.chips.minsnpfreq = 0.2;
    s.chips.maxsnpfreq = 0.4;
    s.qtn.minqtnfreq = 0.3;
    s.qtn.maxqtnfreq = 0.5;
    s.loci.nqtnonthischrom.allocate(2);
    s.loci.nqtnrecombonthischrom.allocate(2);
    s.loci.nqtnonthischrom(2) = 12;
    s.loci.nqtnrecombonthischrom(2) = 7;
    s.random.idum = -1234;
}

void setmutation(openstate &s, int64 site, int64 carrier)
{
    s.sites.inclmutindicator(site) = 1;
    s.sites.inclmutindicatorindivid(site) = carrier;
}

sites sitesof(const std::string &file)
{
    sites list;
    for (const std::string &line : readlines("Chromosomes/Chromosome2/" + file))
        list.push_back(static_cast<int64>(numbersof(line)[1]));
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
    EXPECT_EQ(std::set<int64>(list.begin(), list.end()).size(), list.size());
    return list;
}
const char *const unrestricted = "UnRestrictedQtnInformation.txt";
const char *const restricted = "RestrictedQtnInformation.txt";

} // namespace

TEST_F(markerchoice, liststhatendtoosoon)
{
    openstate s;
    setchromosome(s, 60);
    const auto stop = [&](auto body, int64 code, const std::string &message) {
        const outcome result = runbody(body);
        EXPECT_EQ(result.code(), code) << message;
        EXPECT_EQ(result.output, message);
    };
    EXPECT_EQ(makearray(s, 2, 1, 36), 59); // 36 of 60 sites lie in the band, 59 the last
    stop([&] { makearray(s, 2, 2, 37); }, 110013,
         "ERROR: Not Enough SNP Segregating on SNP array 2\n 60 36 37\n");
    chooseqtnunrestricted(s, 2, 50, 11);
    stop([&] { chooseqtnunrestricted(s, 2, 51, 11); }, 110028,
         "ERROR: Not Enough QTN Segregating on chromosome 2\n");
    chooseqtnrestricted(s, 2, 30, 11); // sites 13 to 60
    stop([&] { chooseqtnrestricted(s, 2, 31, 11); }, 110026,
         "ERROR: Not enough segregating sites for QTN model 3\n 60 31 30\n");
    // Enough sites in the band, but too few of them behind the place on the list.
    std::reverse(s.sites.snponarrays.begin(), s.sites.snponarrays.end());
    stop([&] { chooseqtnrestricted(s, 2, 30, 11); }, 110027,
         "ERROR: Not enough QTN segregating on chromosome 2\n");
    chooseqtnrecombination(s, 2, 60);
    stop([&] { chooseqtnrecombination(s, 2, 61); }, 110025,
         "ERROR: Not Enough QTN Segregating on chromosome 2\n");
}

TEST_F(markerchoice, regionsgivethesites)
{
    openstate s;
    setchromosome(s, 120);
    array1<int8> isqtvpos(120);
    const auto place = [&](const std::string &file, int64 nqtn, int64 lastsnp, bool first) {
        writefile("QtnSpecifications/Chromosome2.txt", file);
        return runbody([&] { getqtvpositions(s, nqtn, 2, isqtvpos, lastsnp, first); });
    };
    const auto count = [&](int64 from, int64 to) {
        return std::count(isqtvpos.begin() + from - 1, isqtvpos.begin() + to, 1);
    };
    const std::string warning = "WARNING: proportion of QTN over the defined regions must sum to "
                                "1.0 - rescaling for chromosome  2\n\n";
    // Sites 12 to 23, then 60 to 71; the last region takes what rounding down left: 4 of 10.
    EXPECT_EQ(place("0.1 0.2 0.65\n0.5,0.6,0.33 far\n", 10, 1, true).output, warning);
    EXPECT_EQ(count(12, 23), 6);
    EXPECT_EQ(count(60, 71), 4);
    EXPECT_EQ(count(1, 120), 10);
    EXPECT_EQ(place("0.1 0.2 0.65\n0.5 0.6 0.33\n", 10, 1, false).output, "");
    EXPECT_EQ(place("0.1 0.2 0.5\n0.5 0.6 0.5\n", 10, 1, true).output, "");

    // Overlapping regions: the second fills what the first left, sites 12 to 23.
    place("0.1 0.2 0.5\n0.1 0.2 0.5\n", 12, 1, true);
    EXPECT_EQ(count(12, 23), 12);
    // The first region starts at site 1, and site 6 is no candidate: 5 sites, 3 pass on.
    place("0 0.05 0.8\n 0.5 1 0.2\n", 10, 0, true);
    EXPECT_EQ(count(1, 5), 5);
    EXPECT_EQ(count(60, 119), 5);
    EXPECT_EQ(isqtvpos(6) + isqtvpos(120), 0);
    // Sites at places 1 to 6 of the list are taken by chips.
    place("0 0.1 1\n", 5, 6, true);
    EXPECT_EQ(count(7, 11), 5);

    const outcome surplus = place("0.5 0.6 1\n", 13, 1, true);
    EXPECT_EQ(surplus.code(), 110030);
    EXPECT_EQ(surplus.output, "The specified QTN clusters are not feasible - there are too many "
                              "QTN than there \nare possible locations. Please reconsider your "
                              "clusters\n");
    const outcome short1 = place("0 0.1 1\n", 6, 6, true);
    EXPECT_EQ(short1.code(), 110031);
    EXPECT_EQ(short1.output, "The specified QTN clusters are not feasible - there are not enough "
                             "segregating sites within your clusters\nPlease reconsider your "
                             "clusters, or increase the MaCS parameters to generate more "
                             "segregating sites\n");

    // 0.35 x 60 is 21 exactly, and 0.35 x 180 a little below 63.
    setchromosome(s, 180);
    isqtvpos.allocate(180);
    place("0.35 0.4 1\n", 9, 1, true);
    EXPECT_EQ(count(63, 71), 9);
}

TEST_F(markerchoice, clusterskeepsetsfullanddistinct)
{
    openstate s;
    setchromosome(s, 120);
    setmutation(s, 13, 4);
    setmutation(s, 90, 4);
    writefile("QtnSpecifications/Chromosome2.txt", "0.1 0.2 1\n"); // sites 12 to 23
    // All 12 sites are asked for. The mutation site 13 hands its place on to 24; the set is full
    // with 2 mutations and 10 more.
    chooseqtnunrestrictedclusters(s, 2, 12, 1);
    EXPECT_EQ(sitesof(unrestricted), (sites{12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 90}));
    // In the band lie 3, 4, 5, 8, 9, 10, ... QTN slide to the right, beyond the region.
    const outcome slid = runbody([&] { chooseqtnrestrictedclusters(s, 2, 12, 1); });
    EXPECT_EQ(slid.output, "");
    EXPECT_EQ(sitesof(restricted), (sites{13, 14, 15, 18, 19, 20, 23, 24, 25, 28, 29, 90}));

    // A region at the end of the chromosome: those that slide off it are filled up from the list.
    writefile("QtnSpecifications/Chromosome2.txt", "0.9 1 1\n"); // sites 108 to 119
    std::reverse(s.sites.snponarrays.begin(), s.sites.snponarrays.end());
    const std::string warning = "WARNING: Could only identify      9 restricted QTN segregating "
                                "on chromosome    2\nwithin specified clusters. The remaining     "
                                " 1 frequency-restricted QTN\nwill now be chosen at random.\n\n";
    const outcome filled = runbody([&] { chooseqtnrestrictedclusters(s, 2, 12, 21); });
    EXPECT_EQ(filled.code(), 110031); // the list's first 21 places bar sites 100 to 120
    std::swap(s.sites.snponarrays(1), s.sites.snponarrays(120));
    for (const int64 inclqtn : {2, 3}) {
        s.chips.snpchipinclqtn = inclqtn;
        const outcome full = runbody([&] { chooseqtnrestrictedclusters(s, 2, 12, 1); });
        EXPECT_EQ(full.output, warning);
        // In the band from 108 on: 108, 109, 110, 113, 114, 115, 118, 119, and 120 beyond the
        // region. The list begins 1, 119, 118, ..., 107, 106, 105; 105 is the first that fits.
        EXPECT_EQ(sitesof(restricted),
                  (sites{13, 90, 105, 108, 109, 110, 113, 114, 115, 118, 119, 120}));
    }
    writefile("QtnSpecifications/Chromosome2.txt", "0 1 1\n");
    s.qtn.maxqtnfreq = 0.3; // sites 3, 8, 13, ...; 13 is a mutation site
    const outcome few = runbody([&] { chooseqtnrestrictedclusters(s, 2, 24, 1); });
    EXPECT_EQ(few.code(), 110026);
    EXPECT_EQ(few.output, "ERROR: Not enough segregating sites for QTN model 3\n");
}

TEST_F(markerchoice, filluprespectsthechips)
{
    // Only the first half of the sites lies in the band, and chips have walked all of it.
    openstate s;
    setchromosome(s, 120);
    for (int64 k = 1; k <= 120; ++k) s.sites.minorallelefreq(k) = k <= 60 ? 0.4 : 0.1;
    writefile("QtnSpecifications/Chromosome2.txt", "0.6 0.9 1\n");
    const std::string warning = "WARNING: Could only identify      0 restricted QTN segregating "
                                "on chromosome    2\nwithin specified clusters. The remaining     "
                                "12 frequency-restricted QTN\nwill now be chosen at random.\n\n";
    s.chips.snpchipinclqtn = 2;
    const outcome none = runbody([&] { chooseqtnrestrictedclusters(s, 2, 12, 61); });
    EXPECT_EQ(none.code(), 110027);
    EXPECT_EQ(none.output, warning + "ERROR: Not enough QTN segregating on chromosome 2\n");
    s.chips.snpchipinclqtn = 1;
    const outcome full = runbody([&] { chooseqtnrestrictedclusters(s, 2, 12, 61); });
    EXPECT_EQ(full.output, warning);
    EXPECT_EQ(sitesof(restricted), (sites{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}
