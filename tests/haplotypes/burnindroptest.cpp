// The burn-in stage as a whole, from the stores on file to the genotype files.
#include "haplotypes/burnindrop.h"

#include "haplotypes/droplines.h"
#include "haplotypes/genomefiles.h"
#include "pedigree/pedigree.h"
#include "slowdrop.h"
#include "testsupport.h"

#include <filesystem>
#include <map>

// Two chromosomes of 120 and 180 sites, three generations of 6, a chip of 20 sites, 10 QTN.
class burnindrop : public infolder
{
  protected:
    static constexpr int64 ngen = 3, nindiv = 6, nhaplos = 12, nchrom = 2;
    state s;

    void SetUp() override
    {
        infolder::SetUp();
        settings();
        writepedigree();
        for (int64 chrom = 1; chrom <= nchrom; ++chrom) writestores(chrom, chrom + 1);
    }

    void settings()
    {
        s.random.idum = -777;
        s.pedi.pedigreestatus = "internal";
        s.founders.nchrom = nchrom;
        s.founders.morgans = 1.2;
        s.pop.ngen = ngen;
        s.pop.ngensel = 0;
        s.pop.nindivp = ngen * nindiv;
        s.pop.nindivinthisgen.allocate({0, ngen}, nindiv);
        s.pop.nindivinthisgen(0) = 0;
        s.pop.cumindivnbtogen.allocate({0, ngen});
        for (int64 g = 1; g <= ngen; ++g) s.pop.cumindivnbtogen(g) = g * nindiv;
        s.run.specstartgen = 1;
        s.run.specendgen = ngen;
        s.chips.usesnpchiponoff = true;
        s.chips.nchip = 1;
        s.chips.maxsnpfreq = s.qtn.maxqtnfreq = 0.5;
        s.chips.chipsarenested = "yes";
        s.chips.snpchipinclqtn = 3;
    }

    void writepedigree()
    {
        std::filesystem::create_directories("SimulatedData");
        s.pedi.ped.allocate(s.pop.nindivp);
        std::string genders = "          Generation               Indiv               Gender\n";
        for (int64 i = 1; i <= s.pop.nindivp; ++i) {
            const int64 gen = (i - 1) / nindiv + 1, older = (gen - 2) * nindiv;
            initline(s.pedi.ped(i), i, i, gen == 1 ? 0 : older + 1 + i % 3,
                     gen == 1 ? 0 : older + 4 + i % 2, gen, "here");
            genders += freeline(gen, i, i % 2 + 1) + "\n";
        }
        writeoutpedigree(s);
        s.pedi.ped.release();
        writefile(gendertable, genders);
        writefile(generationtable, "title\n 1 6 3 3\n 2 6 3 3\n 3 6 3 3\n");
    }

    void writestores(int64 chrom, int64 nblock)
    {
        const std::string place = chromfolder(chrom);
        writefile(place + "SegSitesIncluded.txt", freeline(60 * nblock) + "\n");
        writefile(place + "NbOfQtnMutationsAndSnp.txt", freeline(10, 0, 20) + "\n");
        writefile(place + "MutDeNovoInfo.txt", "");
        writefile(place + "MutIndivIndicator.txt", "");
        textline map, haplotypelines;
        for (int64 l = 1; l <= 60 * nblock; ++l)
            map += freeline(l, l, static_cast<double>(l) / 200, 0, 0) + "\n";
        writefile(place + "PhysicalMapIncluded.txt", map);
        haplotypestore h;
        h.allocate(nhaplos, nblock);
        for (int64 i = 1; i <= nhaplos; ++i) {
            const std::vector<int64> blocks = packed(randomalleles(60 * nblock, -31 * chrom - i));
            std::copy(blocks.begin(), blocks.end(), h.haplotype(i));
            haplotypelines += " 0 1\n";
        }
        writefile(place + "MacsHaplotypes.txt", haplotypelines);
        writehaplotypes(place + "MacsHaplotypesInBlocks.txt", h);
    }

    // Every file of the run with its content.
    static std::map<std::string, std::string> tree()
    {
        std::map<std::string, std::string> files;
        for (const auto &entry : std::filesystem::recursive_directory_iterator("."))
            if (entry.is_regular_file())
                files[entry.path().string()] = readfile(entry.path().string());
        return files;
    }
};

// The alleles of the chip's phase file are those of the genomes, each individual's counts those of
// its tracking lines on both chromosomes, and the highest sites those of the tracking files.
TEST_F(burnindrop, filesofarunagree)
{
    const outcome end = runbody([&] { drophaploburninandmakearrays(s); });
    ASSERT_FALSE(end.stoppedearly) << end.stop.reason;
    EXPECT_EQ(end.output, "  Haplotypes dropped in burnin generations for chromosome   1\n"
                          "  Haplotypes dropped in burnin generations for chromosome   2\n \n");
    EXPECT_FALSE(s.pedi.ped.allocated() || s.haplo.tmpgenome.allocated() ||
                 s.haplo.oldtmpgenome.allocated() || s.haplo.haplotypes.allocated());

    std::map<int64, std::vector<int64>> counts;
    std::string highestlines;
    for (int64 chrom = 1; chrom <= nchrom; ++chrom) {
        const auto tracking = readlines(chromfolder(chrom) + "RecombinationTracking.txt");
        ASSERT_EQ(tracking.size(), 36u);
        double highest = 1;
        for (const std::string &line : tracking) {
            const auto values = numbersof(line);
            counts[static_cast<int64>(values[0])].push_back(static_cast<int64>(values[2]));
            if (values[2] > 0) highest = std::max(highest, values.back());
        }
        highestlines += freeline(chrom, static_cast<int64>(highest)) + "\n";

        const auto chip = readlines(chromfolder(chrom) + "Chip1SnpInformation.txt");
        ASSERT_EQ(chip.size(), 20u);
        for (int64 gen = 1; gen <= ngen; ++gen) {
            genomestore g;
            readgenome(genomefile(chrom, gen), g, nindiv, chrom + 1);
            const auto phase = readlines(chromfolder(chrom) + "Chip1PhaseGeneration" +
                                         std::to_string(gen) + ".txt");
            ASSERT_EQ(phase.size(), 12u);
            for (int64 k = 1; k <= nindiv; ++k) {
                for (int64 m = 1; m <= 2; ++m) {
                    const std::string alleles = unpacked(g.gamete(k, m), chrom + 1);
                    textline expected;
                    puti(expected, (gen - 1) * nindiv + k, 20);
                    for (const std::string &marker : chip)
                        expected += std::string(" ") +
                                    alleles[static_cast<std::size_t>(numbersof(marker)[1]) - 1];
                    EXPECT_EQ(phase[static_cast<std::size_t>(2 * k + m - 3)], expected);
                }
            }
        }
    }
    EXPECT_EQ(readfile("SimulatedData/GlobalRecombLocationMax.txt"), highestlines);
    const auto countlines = readlines(recombinationcounts);
    ASSERT_EQ(countlines.size(), 18u);
    for (int64 i = 1; i <= 18; ++i) { // per chromosome: sire's side, dam's side
        const auto &c = counts[i];
        EXPECT_EQ(countlines[static_cast<std::size_t>(i - 1)],
                  freeline(i, c[0] + c[2], c[1] + c[3]));
    }
}

// A run of generations 2 to 3 on what a run of 1 to 3 left: the same parents from file, so with
// other draws generation 1 and all that was chosen there stand as they were, the later ones not.
TEST_F(burnindrop, continuationkeepswhatliesbefore)
{
    ASSERT_FALSE(runbody([&] { drophaploburninandmakearrays(s); }).stoppedearly);
    const auto whole = tree();
    const std::string counts = readfile(recombinationcounts);
    s.random.idum = -99;
    s.run.genflexibilityonoff = true;
    s.run.specstartgen = 2;
    const outcome end = runbody([&] { drophaploburninandmakearrays(s); });
    ASSERT_FALSE(end.stoppedearly) << end.stop.reason;
    const auto after = tree();
    ASSERT_EQ(after.size(), whole.size());
    int changed = 0;
    for (const auto &[path, content] : whole) {
        const std::string now = after.at(path);
        const bool later = path.find("Generation2") != std::string::npos ||
                           path.find("Generation3") != std::string::npos;
        if (later) {
            changed += now != content;
        } else if (path.find("Recomb") == std::string::npos) {
            EXPECT_EQ(now, content) << path;
        }
    }
    EXPECT_GT(changed, 20);
    // Up to the line of individual 7, the first of generation 2.
    const auto generation1 = [](const std::string &content, const std::string &seven) {
        return content.substr(0, content.find("\n" + seven));
    };
    const std::string seven(19, ' ');
    for (int64 chrom = 1; chrom <= nchrom; ++chrom) {
        const std::string path = chromfolder(chrom) + "RecombinationTracking.txt";
        EXPECT_EQ(generation1(after.at(path), seven + "7"),
                  generation1(whole.at(path), seven + "7"));
        EXPECT_NE(after.at(path), whole.at(path));
        EXPECT_EQ(readlines(path).size(), 36u);
    }
    // Counts are of this run's chromosomes and generations: those of generation 1 stay.
    EXPECT_EQ(generation1(readfile(recombinationcounts), " 7"), generation1(counts, " 7"));
}
