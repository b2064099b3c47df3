#include "founders/extractsegsites.h"
#include "founders/mutationslots.h"
#include "founders/stores.h"
#include "haplotypes/founderblocks.h"
#include "testsupport.h"

namespace
{
class extraction : public infolder
{
};

// What the formatter leaves of a chromosome.
void writechromosome(int64 nsites, int64 nhaplos)
{
    textline map, lines;
    for (int64 k = 1; k <= nsites; ++k)
        putf(map, static_cast<double>(k) / static_cast<double>(nsites + 1), 20, 10);
    for (int64 h = 1; h <= nhaplos; ++h) {
        for (int64 k = 1; k <= nsites; ++k) puti(lines, (h + k) % 2, 2);
        lines += '\n';
    }
    writefile(chromfolder(1) + "PhysicalMapInput.txt", map + "\n");
    writefile(chromfolder(1) + "SegSites.txt", freeline(nsites, "sites") + "\n");
    writefile(chromfolder(1) + "MacsHaplotypes.txt", lines);
}

state extractionstate(int64 nmut)
{
    runcommand("mkdir -p SimulatedData");
    state s;
    s.founders.nchrom = 1;
    s.founders.ndenovomutperchr = nmut;
    s.pop.nindivp = 37;
    s.chips.nchip = 2;
    s.chips.tmpchip = 2;
    s.chips.usesnpchiponoff = true;
    s.chips.nsnpperchipperchrom.allocate(2);
    s.chips.nsnpperchipperchrom(1) = 20;
    s.chips.nsnpperchipperchrom(2) = 60;
    s.qtn.nqtn = 11;
    s.qtn.nqtngamma = 4;
    s.random.idum = -20240607;
    return s;
}

} // namespace

// A mutation lies halfway between its left neighbour and the next simulated site, at the ends of
// the map on the outermost slots.
TEST_F(extraction, placemutationsbetweenneighbours)
{
    writechromosome(3, 1);
    for (int64 seed = 1; seed <= 40; ++seed) {
        state s = extractionstate(5);
        s.random.idum = -seed;
        s.sites.nsegregtmp = 3;
        s.sites.nmut = 5;
        s.sites.nsegreg = 8;
        arrayscope arrays;
        insertmutations(s, 1, arrays);
        const array1<double> &map = s.sites.allphysicalmap;
        const auto simulated = [&](int64 slot) { return s.sites.mutindicator(slot) == 0; };
        int64 nsimulated = 0;
        for (int64 slot = 1; slot <= 8; ++slot) {
            int64 right = slot + 1;
            while (right <= 8 && !simulated(right)) ++right;
            const double there = right <= 8 ? map(right) : 1;
            if (simulated(slot))
                EXPECT_EQ(map(slot), 0.25 * static_cast<double>(++nsimulated));
            else
                EXPECT_EQ(map(slot), slot == 1 ? 0 : slot == 8 ? 1 : (map(slot - 1) + there) / 2);
        }
        EXPECT_EQ(nsimulated, 3);
    }
}

TEST_F(extraction, stopwithtoofewsites)
{
    struct setting {
        int64 nsites, nsnp, nqtn, nqtnrecomb, code;
        const char *message;
    };
    const char *const qtnmessage = "ERROR: There are not enough QTN segregating\n";
    for (const setting &c :
         {setting{125, 121, 10, 10, 110007,
                  "ERROR: There are not enough SNP segregating for chip 2\n"
                  "       Required number of segregating SNPs: 121\n"
                  "       Found number of segregating SNPs:    120\n"},
          setting{125, 120, 121, 10, 110008, qtnmessage},
          setting{125, 120, 120, 121, 110009, qtnmessage}, setting{59, 20, 1, 0, 110007, ""},
          setting{125, 120, 120, 120, 0, ""}}) {
        writechromosome(c.nsites, 3);
        state s = extractionstate(0);
        s.selection.recombselonoff = true;
        s.chips.nsnpperchipperchrom(2) = c.nsnp;
        s.qtn.nqtn = c.nqtn;
        s.qtn.nqtnrecombperchrom = c.nqtnrecomb;
        const outcome result = runbody([&] { extractsegsites(s, packhaplotypes); });
        EXPECT_EQ(result.code(), c.code);
        EXPECT_TRUE(c.code == 0 || result.output.ends_with(c.message)) << result.output;
    }
}

TEST_F(extraction, refusebrokeninput)
{
    const auto refused = [] {
        state s = extractionstate(0);
        const outcome result = runbody([&] { extractsegsites(s, packhaplotypes); });
        EXPECT_EQ(result.code(), -2);
        return result.stop.reason;
    };
    const std::pair<std::string, std::string> broken[] = {{"SegSites.txt", "-1\n"},
                                                          {"SegSites.txt", "many\n"},
                                                          {"PhysicalMapInput.txt", "0.1 0.2\n"},
                                                          {"MacsHaplotypes.txt", " 0 1\n"},
                                                          {"MacsHaplotypes.txt", "\n"}};
    for (const auto &[file, content] : broken) {
        writechromosome(60, 3);
        writefile(chromfolder(1) + file, content);
        EXPECT_NE(refused().find("Chromosome1/" + file), std::string::npos) << content;
    }
    writechromosome(60, 3);
    std::string alleles = readfile(chromfolder(1) + "MacsHaplotypes.txt");
    alleles[119] = '2';
    writefile(chromfolder(1) + "MacsHaplotypes.txt", alleles);
    EXPECT_NE(refused().find("neither 0 nor 1"), std::string::npos);
    runcommand("rm " + chromfolder(1) + "SegSites.txt"); // the simulator failed
    EXPECT_NE(refused().find("debug.txt"), std::string::npos);
}

TEST_F(extraction, refusebrokenstores)
{
    writechromosome(57, 3);
    state s = extractionstate(3);
    runbody([&] { extractsegsites(s, packhaplotypes); });
    const std::pair<std::string, std::string> broken[] = {
        {"MutDeNovoInfo.txt", "17 3 1 1 16\n"}, // two of three mutations are missing
        {"SegSitesIncluded.txt", ""},
        {"NbOfQtnMutationsAndSnp.txt", "14 4 20 60\n"}};
    for (const auto &[file, content] : broken) {
        const std::string path = chromfolder(1) + file, whole = readfile(path);
        writefile(path, content);
        arrayscope arrays;
        makechromarrays(s, arrays);
        const outcome result = runbody([&] { readsegsitesdatafromallchrom(s); });
        EXPECT_EQ(result.code(), -2) << file;
        EXPECT_NE(result.stop.reason.find(file), std::string::npos);
        writefile(path, whole);
    }
}
