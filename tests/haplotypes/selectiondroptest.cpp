#include "haplotypes/selectiondrop.h"

#include "haplotypes/droplines.h"
#include "haplotypes/genomefiles.h"
#include "selection/population.h"
#include "slowdrop.h"
#include "testsupport.h"

#include <array>
#include <filesystem>
#include <map>

namespace
{
constexpr int64 nblock = 3;

// Generations 1 to 3 of 4 individuals with random genomes on one chromosome; generation 4, with 5,
// is to be dropped. Each individual has its own length in Morgans.
class SelectionDrop : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 3, {4, 4, 4, 5});
        s.haplo.nblock = nblock;
        s.sites.indivmutindicator.allocate(1, 17);
        s.haplo.recombcount.allocate(17, 2);
        s.haplo.globalrecomblocationmax.allocate(1, 1);
        s.haplo.recombfactperblock.allocate(nblock);
        s.haplo.recombrateperblock.allocate(nblock);
        s.values.recombperindperchr.allocate(17);
        settest(s, 3, {0, 0, 0, 0});
        std::filesystem::create_directories(chromfolder(1));
        std::filesystem::create_directories("SimulatedData");
        std::string tracking, counts;
        for (int64 g = 1; g <= 3; ++g) {
            genomestore genomes;
            genomes.allocate(4, nblock);
            for (int64 i = firstindivofgen(s, g); i <= lastindivofgen(s, g); ++i) {
                s.values.recombperindperchr(i) = 0.2 * static_cast<double>(i);
                for (int64 m = 1; m <= 2; ++m) {
                    strands[i].push_back(randomalleles(60 * nblock, -2 * i - m));
                    const std::vector<int64> blocks = packed(strands[i].back());
                    std::copy(blocks.begin(), blocks.end(),
                              genomes.gamete(i - firstindivofgen(s, g) + 1, m));
                    tracking += "kept\n";
                }
                counts += "kept\n";
            }
            writegenome(genomefile(1, g), genomes);
        }
        writefile(chromfolder(1) + "RecombinationTracking.txt", tracking + "replaced\n");
        writefile("SimulatedData/RecombinationCount.txt", counts + "replaced\n");
    }
    void setparents(const std::vector<std::array<int64, 2>> &parents)
    {
        for (int64 k = 0; k < 5; ++k) {
            s.pedi.ped(13 + k).newsire = parents[static_cast<std::size_t>(k)][0];
            s.pedi.ped(13 + k).newdam = parents[static_cast<std::size_t>(k)][1];
        }
    }
    // Drops generation 4 and holds it against the drop on strings.
    void dropbothways()
    {
        randomstream random = s.random;
        s.haplo.tmpgenome.allocate(5, nblock);
        genedropselection(s, 1, 4, 13, 17, 12);
        genomestore made;
        readgenome(genomefile(1, 4), made, 5, nblock);
        const auto tracking = readlines(chromfolder(1) + "RecombinationTracking.txt");
        const auto counts = readlines("SimulatedData/RecombinationCount.txt");
        ASSERT_EQ(tracking.size(), 24U + 10U);
        ASSERT_EQ(counts.size(), 12U + 5U);
        EXPECT_EQ(tracking[23], "kept");
        const bool dh = isdoubledhaploid(s, 4);
        for (int64 i = 13; i <= 17; ++i) {
            slowgamete gamete;
            int64 firstpos = 0;
            std::string count = " " + std::to_string(i);
            for (int64 m = 1; m <= 2; ++m) {
                const int64 parent = m == 1 ? s.pedi.ped(i).newsire : s.pedi.ped(i).newdam;
                const array1<double> rates(nblock, 0.2 * static_cast<double>(parent) *
                                                       static_cast<double>(1.0f / 3.0f));
                if (m == 1 || !dh) {
                    firstpos = ran1(random) < 0.5 ? 1 : 2;
                    gamete = makeslowgamete(random, strands[parent], firstpos, rates);
                }
                EXPECT_EQ(unpacked(made.gamete(i - 12, m), nblock), gamete.alleles)
                    << "individual " << i << " gamete " << m;
                std::vector<double> line = {static_cast<double>(i), static_cast<double>(firstpos),
                                            static_cast<double>(gamete.crossings.size())};
                line.insert(line.end(), gamete.crossings.begin(), gamete.crossings.end());
                EXPECT_EQ(numbersof(tracking[static_cast<std::size_t>(2 * i + m - 3)]), line);
                count += " " + std::to_string(gamete.crossings.size());
            }
            EXPECT_EQ(counts[static_cast<std::size_t>(i - 1)], count);
        }
        EXPECT_EQ(ran1(s.random), ran1(random));
    }
    state s;
    std::map<int64, std::vector<std::string>> strands;
};
} // namespace

TEST_F(SelectionDrop, ParentsOfTheGenerationBeforeWithTheirOwnRates)
{
    setparents({{9, 10}, {9, 12}, {11, 11}, {12, 9}, {11, 10}});
    dropbothways();
}

TEST_F(SelectionDrop, DoubledHaploidsComeFromTheSireAlone)
{
    s.pop.ngendh = 1;
    s.pop.createdhinthisgen.allocate(4);
    s.pop.createdhinthisgen(4) = 1;
    setparents({{9, 9}, {9, 12}, {11, 11}, {12, 9}, {11, 10}});
    dropbothways();
}

// Only the files of the parents' generations are read, and each parent once.
TEST_F(SelectionDrop, ImportedGenerationHasParentsOfAnyEarlierOne)
{
    s.run.importextpedforthisgen = 4;
    std::filesystem::remove(genomefile(1, 2));
    setparents({{1, 12}, {3, 3}, {4, 9}, {1, 4}, {12, 1}});
    dropbothways();
}
