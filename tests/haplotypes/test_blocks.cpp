#include "haplotypes/blocks.h"

#include "randomnumbers.h"
#include "testsupport.h"

namespace
{
constexpr int64 allones = 1152921504606846975;

// Blocks to try: the ends, single positions, and random ones.
std::vector<int64> manyblocks()
{
    std::vector<int64> blocks = {0, allones, 1, 576460752303423488, 720575940379279361};
    for (int p = 0; p < 60; ++p) blocks.push_back(int64(1) << p);
    randomstream random;
    random.idum = -271828;
    for (int i = 0; i < 500; ++i) {
        int64 block = 0;
        for (int p = 0; p < 60; ++p) block = 2 * block + (ran1(random) < 0.5 ? 0 : 1);
        blocks.push_back(block);
    }
    return blocks;
}

// The alleles of a block by the division of the number by its weights, from the top.
std::vector<int64> allelesbydivision(int64 block)
{
    std::vector<int64> alleles(60);
    int64 weight = 576460752303423488; // 2^59
    for (int64 &allele : alleles) {
        allele = block / weight;
        block %= weight;
        weight /= 2;
    }
    return alleles;
}
} // namespace

TEST(blocks, knownnumbers)
{
    // By hand: 2^59; 1; 2^60 - 1; 0; 2^59 + 2^57 + 2^0.
    const std::vector<std::pair<std::vector<int>, int64>> cases = {
        {{1}, 576460752303423488}, {{60}, 1}, {{}, 0}, {{1, 3, 60}, 720575940379279361}};
    for (const auto &[positions, number] : cases) {
        int64 alleles[60] = {};
        int8 small[60] = {};
        for (int p : positions) alleles[p - 1] = small[p - 1] = 1;
        int64 block = -1;
        blockidentificationnumber(60, alleles, block);
        EXPECT_EQ(block, number);
        EXPECT_EQ(packblock(small), number);
    }
    int8 ones[60];
    std::fill(ones, ones + 60, int8(1));
    EXPECT_EQ(packblock(ones), allones);
    EXPECT_EQ(placeofsite(60).block, 1);
    EXPECT_EQ(placeofsite(60).position, 60);
    EXPECT_EQ(placeofsite(61).block, 2);
    EXPECT_EQ(placeofsite(61).position, 1);
    EXPECT_EQ(placeofsite(120).block, 2);
    EXPECT_EQ(placeofsite(120).position, 60);
}

// Every way out of a block against division by the weights, and no byte written beyond the last.
TEST(blocks, allexpansionsagree)
{
    const std::vector<int64> blocks = manyblocks();
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const int64 one = blocks[i], two = blocks[(7 * i + 3) % blocks.size()];
        const std::vector<int64> first = allelesbydivision(one), second = allelesbydivision(two);
        int64 slow[60], slowgeno[60], wide[61], widegeno[61];
        int8 small[61], smallgeno[61];
        char text[121], genotext[121];
        wide[60] = widegeno[60] = small[60] = smallgeno[60] = text[120] = genotext[120] = 77;
        blockpermutation(one, 60, slow);
        indivblockgenotype(60, one, two, slowgeno);
        expandblock(one, wide);
        expandblock(one, small);
        expandgenotypes(one, two, widegeno);
        expandgenotypes(one, two, smallgeno);
        EXPECT_EQ(putblocktext(text, one), text + 120);
        EXPECT_EQ(putgenotypetext(genotext, one, two), genotext + 120);
        for (std::size_t p = 0; p < 60; ++p) {
            const int64 genotype = first[p] + second[p];
            ASSERT_EQ(slow[p], first[p]) << one << " position " << p + 1;
            ASSERT_EQ(wide[p], first[p]);
            ASSERT_EQ(small[p], first[p]);
            ASSERT_EQ(alleleat(one, static_cast<int64>(p) + 1), first[p]);
            ASSERT_EQ(slowgeno[p], genotype);
            ASSERT_EQ(widegeno[p], genotype);
            ASSERT_EQ(smallgeno[p], genotype);
            ASSERT_EQ(std::string(text + 2 * p, 2), " " + std::to_string(first[p]));
            ASSERT_EQ(std::string(genotext + 2 * p, 2), " " + std::to_string(genotype));
        }
        EXPECT_EQ(wide[60] + widegeno[60] + small[60] + smallgeno[60] + text[120] + genotext[120],
                  6 * 77);
        EXPECT_EQ(packblock(small), one);
        int64 again;
        blockidentificationnumber(60, small, again);
        EXPECT_EQ(again, one);
    }
}

// The three changes against changes of unpacked alleles, at every position, in place.
TEST(blocks, changesagreewithunpackedalleles)
{
    const std::vector<int64> blocks = manyblocks();
    for (std::size_t i = 0; i < 120; ++i) {
        const int64 one = blocks[i], two = blocks[i + 60];
        const std::vector<int64> first = allelesbydivision(one), second = allelesbydivision(two);
        for (std::size_t p = 1; p <= 60; ++p) {
            std::vector<int64> expected = second;
            std::copy_n(first.begin(), p, expected.begin());
            int64 block = one;
            recombination(60, block, two, static_cast<int64>(p), block);
            ASSERT_EQ(allelesbydivision(block), expected) << one << " " << two << " at " << p;

            expected = first;
            expected[p - 1] = 1;
            block = one;
            mutation(60, block, static_cast<int64>(p), block);
            ASSERT_EQ(allelesbydivision(block), expected);

            for (int64 posneg = 0; posneg <= 2; ++posneg) {
                std::vector<int64> sire = first, dam = second;
                if (posneg < 2) sire[p - 1] = dam[p - 1] = posneg;
                int64 blocks2[2] = {one, two};
                genomeedition(60, blocks2[0], blocks2[1], static_cast<int64>(p), blocks2[0],
                              blocks2[1], posneg);
                ASSERT_EQ(allelesbydivision(blocks2[0]), sire);
                ASSERT_EQ(allelesbydivision(blocks2[1]), dam);
            }
        }
    }
}
