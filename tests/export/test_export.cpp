// solvanto-export: bcftools and plink2 read its files, and what they read are the run's own.
#include "wholeruns/runsupport.h"

#include <cmath>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace
{
using rows = std::vector<std::vector<std::string>>;

commandresult exporting(const std::string &arguments)
{
    return runcommand(binfolder() + "/solvanto-export . --output out " + arguments);
}

void mustexport(const std::string &arguments)
{
    const commandresult result = exporting(arguments);
    ASSERT_EQ(result.status, 0) << arguments << "\n" << result.out << result.err;
    EXPECT_EQ(result.err, "");
}

rows wordrows(const std::vector<std::string> &lines, std::size_t ntitles = 0)
{
    rows all;
    for (std::size_t i = ntitles; i < lines.size(); ++i) all.push_back(wordsof(lines[i]));
    return all;
}

rows filerows(const std::string &path, std::size_t ntitles = 0)
{
    return wordrows(readlines(path), ntitles);
}

// The words of what a command prints, line by line.
rows printed(const std::string &command)
{
    const commandresult result = runcommand(command);
    EXPECT_EQ(result.status, 0) << command << "\n" << result.err;
    writefile("printed", result.out);
    return filerows("printed");
}

// Alleles of phase files: the two rows of an individual, its number first, by site.
struct phases {
    rows lines;
    // "0|1" of individual i at place k, both from 1.
    std::string genotype(std::size_t i, std::size_t k) const
    {
        return lines[2 * i - 2][k] + "|" + lines[2 * i - 1][k];
    }
    int ncopies(std::size_t k, std::size_t first, std::size_t last) const
    {
        int n = 0;
        for (std::size_t i = first; i <= last; ++i)
            n += (lines[2 * i - 2][k] == "1") + (lines[2 * i - 1][k] == "1");
        return n;
    }
};

const std::string query =
    "bcftools query -f '%CHROM %ID %POS %AC %AN %INFO/MUT %INFO/QTN[ %GT]\\n' ";

// Every record of a query holds the phases of individuals first to last at its place.
void expectphases(const rows &records, const phases &truth, std::size_t nplaces, std::size_t first,
                  std::size_t last)
{
    ASSERT_EQ(records.size(), nplaces);
    int wrong = 0;
    for (std::size_t k = 1; k <= nplaces; ++k) {
        const std::vector<std::string> &record = records[k - 1];
        ASSERT_EQ(record.size(), 7 + last - first + 1);
        wrong += record[3] != std::to_string(truth.ncopies(k, first, last));
        wrong += record[4] != std::to_string(2 * (last - first + 1));
        for (std::size_t i = first; i <= last; ++i)
            wrong += record[7 + i - first] != truth.genotype(i, k);
    }
    EXPECT_EQ(wrong, 0);
}

// The text of the page's rule, apart from the program: rounded, then pushed on, then back from the
// end.
std::vector<long> expectedbases(const std::vector<double> &positions, long length)
{
    std::vector<long> bases;
    for (const double position : positions) {
        const long rounded = std::lround(position * static_cast<double>(length));
        bases.push_back(std::max(rounded, bases.empty() ? 1 : bases.back() + 1));
    }
    for (std::size_t back = 1; back <= bases.size(); ++back)
        bases[bases.size() - back] =
            std::min(bases[bases.size() - back], length - static_cast<long>(back) + 1);
    return bases;
}

// 100 individuals (five generations of 20), 2 chromosomes, de novo mutations, sequence and chips.
spectext exportedrun()
{
    return smallrun().change("NumberOfMutationsPerChr,40; MutationalVarianceProportion,0.3; "
                             "WriteFullSequenceOutOnOff,On; SelectionMethod,GBlup; "
                             "SelectionPhenotypingStrategy,AllPhenotypes");
}
} // namespace

class exports : public wholerun
{
  protected:
    void SetUp() override
    {
        if (runcommand("bcftools --version && plink2 --version").status != 0)
            GTEST_SKIP() << "bcftools and plink2 are wanted (Debian: bcftools, plink2)";
        wholerun::SetUp();
    }
};

// The sequence of all individuals by three ways: packed genomes, text, packed text.
TEST_F(exports, sequenceisthatofthetext)
{
    mustrun(exportedrun(), -301);
    const phases truth{filerows("SimulatedData/FullSequencePhase.txt", 1)};
    const std::size_t nsites = truth.lines[0].size() - 1;
    mustexport("--to vcf --data sequence --samples all --threads 2");
    const rows records = printed(query + "out.vcf.gz");
    expectphases(records, truth, nsites, 1, 100);
    EXPECT_EQ(printed("bcftools query -l out.vcf.gz").back()[0], "I100");
    const std::string header = runcommand("bcftools view -h out.vcf.gz").out;
    EXPECT_TRUE(header.starts_with("##fileformat=VCFv4.3\n"));
    EXPECT_NE(header.find("##contig=<ID=2,length=10000000>"), std::string::npos);
    EXPECT_NE(header.find("##solvantoSeed=-301\n"), std::string::npos);
    EXPECT_NE(header.find("MD5=" + runcommand("md5sum SolvantoSpec.txt").out.substr(0, 32)),
              std::string::npos);

    // Positions by the rule, mutations and QTN by the stores, region by the index.
    std::map<std::string, std::string> qtn;
    for (const std::string set : {"Unrestricted", "Restricted"})
        for (const auto &row : filerows("SimulatedData/" + set + "QtnInformation.txt", 1)) {
            std::string &sets = qtn[row[1] + "_" + row[2]];
            sets += (sets.empty() ? "" : ",") + set;
        }
    std::size_t k = 0, nmutations = 0;
    for (const std::string h : {"1", "2"}) {
        const rows map = filerows("Chromosomes/Chromosome" + h + "/PhysicalMapIncluded.txt");
        std::vector<double> positions;
        for (const auto &row : map) positions.push_back(std::stod(row[2]));
        const std::vector<long> bases = expectedbases(positions, 10000000);
        EXPECT_EQ(printed("bcftools view -H -r " + h + " out.vcf.gz").size(), map.size());
        for (std::size_t site = 0; site < map.size(); ++site, ++k) {
            ASSERT_EQ(records[k][1], h + "_" + map[site][0]);
            EXPECT_EQ(records[k][2], std::to_string(bases[site]));
            EXPECT_EQ(records[k][5], map[site][3] == "1" ? "1" : ".");
            EXPECT_EQ(records[k][6], qtn.contains(records[k][1]) ? qtn[records[k][1]] : ".");
            nmutations += map[site][3] == "1";
        }
    }
    EXPECT_GT(nmutations, 0u);

    const std::string body = runcommand("bcftools view -H out.vcf.gz").out;
    mustexport("--to bcf --data sequence --samples all");
    EXPECT_EQ(runcommand("bcftools view -H out.bcf").out, body);
    EXPECT_EQ(printed("bcftools view -H -r 1,2 out.bcf").size(), nsites);
    mustexport("--to bcf --data sequence --samples all --uncompressed --force");
    EXPECT_EQ(runcommand("bcftools view -H out.bcf").out, body);
    EXPECT_EQ(runcommand("rm -r Chromosomes out.bcf*").status, 0);
    for (const std::string pack : {"true", "bgzip SimulatedData/FullSequence*"}) {
        ASSERT_EQ(runcommand(pack).status, 0);
        mustexport("--to vcf --uncompressed --data sequence --samples all --force");
        EXPECT_EQ(runcommand("bcftools view -H out.vcf").out, body) << pack;
    }
    for (const auto &file : fs::directory_iterator("."))
        EXPECT_EQ(file.path().string().find("scratch"), std::string::npos) << file.path();
}

// The chip of the last generation from genomes and from text, and every choice of sites and samples.
TEST_F(exports, chipsandchoices)
{
    mustrun(exportedrun().change("NumberOfSnpChips,2; nSnpPerChipPerChromosme,20,60; "
                                 "IdOfChipUsedForSelection,2"),
            -302);
    const phases chip2{filerows("SimulatedData/AllIndividualsSnpChips/Chip2Phase.txt")};
    const phases chip1{filerows("SimulatedData/AllIndividualsSnpChips/Chip1Phase.txt")};
    const std::string from = "--to vcf --uncompressed --force ";
    for (const std::string change : {"true", "rm -r Chromosomes", "gzip SimulatedData/AllInd*/*"}) {
        ASSERT_EQ(runcommand(change).status, 0);
        mustexport(from);
        expectphases(printed(query + "out.vcf"), chip2, 120, 81, 100);
        mustexport(from + "--data chip1 --generations 2-4");
        expectphases(printed(query + "out.vcf"), chip1, 40, 21, 80);
    }

    // QTN from the sequence's text; those of the chip and of both sets.
    mustexport(from + "--qtn with");
    const std::size_t nwith = printed(query + "out.vcf").size();
    mustexport(from + "--qtn without");
    const std::size_t nwithout = printed(query + "out.vcf").size();
    mustexport(from + "--qtn only");
    const rows onlyqtn = printed(query + "out.vcf");
    EXPECT_EQ(nwith, nwithout + onlyqtn.size());
    for (const auto &record : onlyqtn) EXPECT_NE(record[6], ".");
    const phases sequence{filerows("SimulatedData/FullSequencePhase.txt", 1)};
    const std::size_t nonfirst =
        std::stoul(filerows("SimulatedData/NbOfSegSitesPerChrom.txt", 1)[0][2]);
    for (const auto &record : onlyqtn) {
        const std::size_t site = std::stoul(record[1].substr(2));
        const std::size_t k = site + (record[0] == "2" ? nonfirst : 0);
        EXPECT_EQ(record[7], sequence.genotype(81, k)) << record[1];
    }

    const auto samples = [&](const std::string &arguments) {
        mustexport(from + arguments);
        std::string names;
        for (const auto &name : printed("bcftools query -l out.vcf")) names += name[0] + " ";
        return names;
    };
    writefile("list.txt", "3\n\n 99 of no matter\n45\n");
    EXPECT_EQ(samples("--individuals list.txt"), "I3 I45 I99 ");
    EXPECT_EQ(samples("--individuals list.txt --generations 1-3"), "I3 I45 ");
    EXPECT_EQ(samples("--individuals list.txt --samples last"), "I99 ");
    for (const auto &[which, file] : std::map<std::string, std::string>{
             {"training", "SelectionPhenTrain"}, {"candidates", "SelectionTbvTest"}}) {
        std::string listed;
        for (const auto &row : filerows("Selection/SelectionFolder2/" + file + ".txt"))
            listed += "I" + row[0] + " ";
        EXPECT_EQ(samples("--samples " + which), listed);
    }
    mustexport(from + "--chromosomes 2 --samples all");
    for (const auto &record : printed(query + "out.vcf")) ASSERT_EQ(record[0], "2");
}

// plink2's frequencies, genotypes, parents, sexes and phenotypes; and the phases of .pgen.
TEST_F(exports, plinkreadsthemasrunswrotethem)
{
    mustrun(exportedrun(), -303);
    const phases chip{filerows("SimulatedData/AllIndividualsSnpChips/Chip1Phase.txt")};
    mustexport("--to plink --samples all --phenotype trait1");
    mustexport("--to vcf --samples all");
    mustexport("--to pgen --samples all --phenotype tbv1");
    const rows frequencies =
        (runcommand("plink2 --bfile out --freq counts --nonfounders --out read"),
         filerows("read.acount", 1));
    ASSERT_EQ(frequencies.size(), 40u);
    for (std::size_t k = 1; k <= 40; ++k) {
        EXPECT_EQ(frequencies[k - 1][2], "A");
        EXPECT_EQ(frequencies[k - 1][4], std::to_string(chip.ncopies(k, 1, 100)));
    }
    // Unphased genotypes of .bed; the phases of .pgen.
    const std::string genotypes = "bcftools query -f '%ID %POS[ %GT]\\n' ";
    ASSERT_EQ(runcommand("plink2 --bfile out --export vcf --out bed").status, 0);
    ASSERT_EQ(runcommand("plink2 --pfile out --export vcf --out pgen").status, 0);
    EXPECT_EQ(runcommand(genotypes + "pgen.vcf").out, runcommand(genotypes + "out.vcf.gz").out);
    std::string unphased = runcommand(genotypes + "out.vcf.gz").out;
    for (const auto &[is, becomes] : std::vector<std::pair<std::string, std::string>>{
             {"1|0", "0/1"}, {"0|1", "0/1"}, {"0|0", "0/0"}, {"1|1", "1/1"}})
        for (std::size_t at = 0; (at = unphased.find(is, at)) != std::string::npos;)
            unphased.replace(at, 3, becomes);
    EXPECT_EQ(runcommand(genotypes + "bed.vcf").out, unphased);

    // Columns of the table of values: 4 keys, tbv of model 1 first, tpv of it behind 8 others.
    const rows pedigree = filerows("SimulatedData/Pedigree.txt", 1);
    const rows gender = filerows("SimulatedData/Gender.txt", 1);
    const rows values = filerows("SimulatedData/PedigreeTbvTdvTpv.txt", 1);
    std::map<std::string, int> roles; // 1 sire, 2 dam, 3 both
    for (const auto &row : pedigree) {
        roles[row[3]] |= 1;
        roles[row[4]] |= 2;
    }
    const auto name = [](const std::string &id) { return id == "0" ? id : "I" + id; };
    const rows family = filerows("out.fam"), samples = filerows("out.psam", 1);
    ASSERT_EQ(family.size(), 100u);
    for (std::size_t i = 0; i < 100; ++i) {
        const std::string id = pedigree[i][2];
        const std::string sex = !roles.contains(id) ? gender[i][2]
                                : roles[id] == 3    ? "0"
                                                    : std::to_string(roles[id]);
        EXPECT_EQ(family[i], (std::vector<std::string>{"0", name(id), name(pedigree[i][3]),
                                                       name(pedigree[i][4]), sex, values[i][12]}));
        EXPECT_EQ(samples[i][1], family[i][2]);
        EXPECT_EQ(samples[i][4], values[i][4]);
    }

    // Centimorgans by the blocks' even shares of one Morgan: site s lies (s - 1) / nsites along.
    const double nsites =
        static_cast<double>(readlines("Chromosomes/Chromosome1/PhysicalMapIncluded.txt").size());
    for (const auto &line : filerows("out.bim")) {
        if (line[0] != "1") continue;
        EXPECT_NEAR(std::stod(line[2]), 100 * (std::stod(line[1].substr(2)) - 1) / nsites, 1e-7);
        EXPECT_EQ(line[4] + line[5], "TA");
    }
    EXPECT_EQ(printed("grep -v '^##' out.pvar").size(), 41u);
}

// With regions the map follows them: the first half of the blocks holds nine tenths.
TEST_F(exports, mapsfollowregions)
{
    runcommand("mkdir RecombinationSpecifications");
    for (const std::string h : {"1", "2"})
        writefile("RecombinationSpecifications/Chromosome" + h + ".txt", "0 0.5 0.9\n0.5 1 0.1\n");
    mustrun(smallrun().set("RecombinationHotspotsOnOff", "On"), -304);
    mustexport("--to plink --data sequence");
    const rows achieved = filerows("RecombinationSpecifications/Chromosome1Achieved.txt", 1);
    const double border = std::stod(achieved[0][6]) * 60; // last site of the first region
    const rows sites = filerows("out.bim");
    for (const auto &line : sites) {
        if (line[0] != "1") continue;
        const double ahead = std::stod(line[1].substr(2)) - 1;
        const double n = static_cast<double>(sites.size()) / 2;
        const double wanted =
            ahead < border ? 90 * ahead / border : 90 + 10 * (ahead - border) / (n - border);
        EXPECT_NEAR(std::stod(line[2]), wanted, 1e-6) << line[1];
    }
}

// More sites than fit without pushing: 30,000 bases for some hundreds of sites that crowd.
TEST_F(exports, crowdedsitesrise)
{
    mustrun(smallrun().change("ChromosomeLengthBasesMaCS,External,1000; "
                              "MutationRateMaCS,External,2.5e-4"),
            -305);
    mustexport("--to vcf --uncompressed --data sequence");
    std::vector<double> positions;
    for (const auto &row : filerows("Chromosomes/Chromosome1/PhysicalMapIncluded.txt"))
        positions.push_back(std::stod(row[2]));
    const std::vector<long> bases = expectedbases(positions, 1000);
    const rows records = printed(query + "out.vcf");
    long npushed = 0;
    for (std::size_t k = 0; k < bases.size(); ++k) {
        EXPECT_EQ(records[k][2], std::to_string(bases[k]));
        npushed += bases[k] != std::max(1L, std::lround(positions[k] * 1000));
        EXPECT_GT(bases[k], k > 0 ? bases[k - 1] : 0);
    }
    EXPECT_GT(npushed, 10);
    EXPECT_LE(bases.back(), 1000);
}

// Tables hold the words of the run's files, dominance and several traits included.
TEST_F(exports, tablesholdthewordsoffiles)
{
    mustrun(smallrun().change("IncludeDominanceEffectsOnOff,On; "
                              "DominanceDegreeMeanAndVariance,0.4,0.1; NumberOfTraits,1"),
            -306);
    mustexport("--to tables --samples all");
    const rows values = filerows("SimulatedData/PedigreeTbvTdvTpv.txt", 1);
    const rows individuals = filerows("out.individuals.tsv");
    ASSERT_EQ(individuals.size(), 101u);
    EXPECT_EQ(individuals[0][6], "tdv1.NormalUnrestr");
    for (std::size_t i = 0; i < 100; ++i) {
        EXPECT_EQ(individuals[i + 1][1], values[i][0]); // generation
        for (std::size_t p = 0; p < 4; ++p)
            for (std::size_t kind = 0; kind < 3; ++kind)
                EXPECT_EQ(std::stod(individuals[i + 1][5 + 3 * p + kind]),
                          std::stod(values[i][4 + 4 * kind + p]));
    }
    const rows qtn = filerows("out.qtn.tsv", 1);
    const rows effects = filerows("SimulatedData/UnrestrictedQtnDominEffects.txt", 1);
    const rows additive = filerows("SimulatedData/RestrictedQtnAdditEffects.txt", 1);
    ASSERT_EQ(qtn.size(), 2 * effects.size());
    // Two additive columns of the set, then two effects and two degrees of dominance, two alphas.
    for (std::size_t q = 0; q < effects.size(); ++q) {
        for (std::size_t c = 0; c < 4; ++c) EXPECT_EQ(qtn[q][13 + c], effects[q][3 + c]);
        EXPECT_EQ(qtn[effects.size() + q][19], additive[q][3]);
        EXPECT_EQ(qtn[q][19], "NA");
    }
    const rows generations = filerows("out.generations.tsv", 1);
    const rows variances =
        filerows("SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt", 1);
    ASSERT_EQ(generations.size(), 20u);
    for (std::size_t k = 0; k < 20; ++k)
        for (std::size_t c = 0; c < 4; ++c) EXPECT_EQ(generations[k][5 + c], variances[k][2 + c]);
    EXPECT_EQ(filerows("out.sites.tsv").size(), 41u);
}

// Founders, also an odd number of haplotypes; and merged folders, whose numbers are their own.
TEST_F(exports, foundersandmergedfolders)
{
    mustrun(smallrun().set("NumberOfHaplotypes", "41"), -307);
    mustexport("--to bcf --data founders");
    const rows haplotypes = filerows("Chromosomes/Chromosome2/MacsHaplotypesIncluded.txt");
    const rows records = printed("bcftools query -r 2 -f '%AN[ %GT]\\n' out.bcf");
    ASSERT_EQ(records.size(), haplotypes[0].size());
    for (std::size_t k = 0; k < records.size(); ++k) {
        ASSERT_EQ(records[k].size(), 22u);
        EXPECT_EQ(records[k][0], "41");
        for (std::size_t f = 0; f < 20; ++f)
            ASSERT_EQ(records[k][f + 1], haplotypes[2 * f][k] + "|" + haplotypes[2 * f + 1][k]);
        EXPECT_EQ(records[k][21], haplotypes[40][k]);
    }

    const std::string maketree = binfolder() + "/treerunner make merges merged";
    ASSERT_EQ(runcommand(maketree).status, 0);
    for (const std::string where : {"ids", "directories"}) {
        const std::string at = "merged/" + where;
        ASSERT_EQ(runcommand(binfolder() + "/solvanto-export " + at +
                             " --to vcf --uncompressed --output merged --samples all --force")
                      .status,
                  0);
        const phases chip{filerows(at + "/SimulatedData/AllIndividualsSnpChips/Chip1Phase.txt")};
        expectphases(printed(query + "merged.vcf"), chip, 40, 1, chip.lines.size() / 2);
    }
}
