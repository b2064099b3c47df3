// foundersfromvcf in the place of the coalescent simulator: what comes out is what stands in the file.
#include "wholeruns/runsupport.h"

#include <cmath>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace
{
std::string included(const std::string &run, int chrom)
{
    return run + "/Chromosomes/Chromosome" + std::to_string(chrom) + "/MacsHaplotypesIncluded.txt";
}

// Makes a folder whose macs is foundersfromvcf, and goes there.
void gointo(const std::string &name)
{
    fs::create_directory(name);
    fs::current_path(name);
    linkprograms(binfolder(), ".");
    fs::remove("macs");
    fs::create_symlink(binfolder() + "/foundersfromvcf", "macs");
}

std::string mustprint(const std::string &command)
{
    const commandresult result = runcommand(command);
    EXPECT_EQ(result.status, 0) << command << "\n" << result.err;
    return result.out;
}

// Rows of a file in another file, from 1; 0 for none.
std::vector<std::size_t> rowsin(const std::string &part, const std::string &whole)
{
    std::vector<std::size_t> found;
    const std::vector<std::string> all = readlines(whole);
    for (const std::string &line : readlines(part)) {
        std::size_t k = 0;
        while (k < all.size() && all[k] != line) ++k;
        found.push_back(k < all.size() ? k + 1 : 0);
    }
    return found;
}
} // namespace

class foundersfromvcf : public wholerun
{
  protected:
    // A run in the folder, with an odd number of haplotypes, and its founders as VCF and BCF.
    void makesource()
    {
        mustrun(source(), -401);
        for (const std::string to : {"vcf", "bcf"})
            mustprint("./solvanto-export . --data founders --output Founders --to " + to);
    }
    std::map<std::string, std::string> records[2]; // alleles of the chromosomes by position
    std::string notes;
    static spectext source() { return smallrun().set("NumberOfHaplotypes", "41"); }
};

// All haplotypes: the same included sites and alleles, positions to the base, from either format,
// with an index and without; and the run's files follow from one another.
TEST_F(foundersfromvcf, givesbackexportedfounders)
{
    makesource();
    for (const std::string kind : {"vcf.gz", "bcf", "settings"}) {
        SCOPED_TRACE(kind);
        gointo(kind);
        if (kind == "settings") // gzip in place of bgzip has no index
            mustprint("gzip -dc ../Founders.vcf.gz >mine.vcf; echo 'file mine.vcf' >Founders.txt");
        else
            mustprint("cp -p ../Founders." + kind + "* .");
        mustrun(source(), -402);
        for (const int h : {1, 2}) {
            EXPECT_EQ(readfile(included(".", h)), readfile(included("..", h)));
            const std::string map =
                "/Chromosomes/Chromosome" + std::to_string(h) + "/PhysicalMapIncluded.txt";
            const auto was = numbertable(".." + map), is = numbertable("." + map);
            ASSERT_EQ(is.size(), was.size());
            for (std::size_t k = 0; k < is.size(); ++k)
                EXPECT_NEAR(is[k][2] * 1e7, was[k][2] * 1e7, 2); // half a base, and pushed on
        }
        EXPECT_EQ(runcommand(binfolder() + "/checkrun .").status, 0);
        mustprint("./solvanto-export . --data founders --output again --to bcf");
        const std::string alleles = "bcftools query -f '%CHROM %POS %ID[ %GT]\\n' ";
        EXPECT_TRUE(mustprint(alleles + "again.bcf") == mustprint(alleles + "../Founders.bcf"));
        fs::current_path("..");
    }
}

// More haplotypes than asked for: some of the file, in its order, the same on both chromosomes, by
// the seed; compression, hotspots, chips and QTN as ever.
TEST_F(foundersfromvcf, drawshaplotypesbytheseed)
{
    makesource();
    const auto drawnin = [&](const std::string &name, int64 seed, const std::string &settings) {
        gointo(name);
        mustprint("cp -p ../Founders.bcf* .");
        if (!settings.empty()) writefile("Founders.txt", settings);
        mustrun(source().set("NumberOfHaplotypes", "12"), seed);
        // Against all haplotypes at the sites that are left.
        std::vector<std::size_t> rows[2];
        for (const int h : {1, 2}) {
            const std::string at = "Chromosomes/Chromosome" + std::to_string(h);
            const auto sites = readlines(at + "/output.txt");
            // Alleles of a haplotype at the simulated sites, from the file by bcftools.
            std::vector<std::string> mine(12), theirs(41);
            for (const std::string &line : sites) {
                if (!line.starts_with("SITE:")) continue;
                const std::string alleles = wordsof(line)[4];
                for (std::size_t k = 0; k < 12; ++k) mine[k] += alleles[k];
                const std::string position =
                    std::to_string(std::lround(std::stod(wordsof(line)[2]) * 1e7));
                const auto &record = records[static_cast<std::size_t>(h - 1)].at(position);
                for (std::size_t k = 0; k < 41; ++k) theirs[k] += record[k];
            }
            std::string all, some;
            for (const std::string &row : theirs) all += row + "\n";
            for (const std::string &row : mine) some += row + "\n";
            writefile("all", all);
            writefile("some", some);
            rows[h - 1] = rowsin("some", "all");
        }
        fs::current_path("..");
        EXPECT_EQ(rows[0], rows[1]);
        for (std::size_t k = 1; k < 12; ++k) EXPECT_GT(rows[0][k], rows[0][k - 1]);
        EXPECT_GT(rows[0][0], 0u);
        return rows[0];
    };
    for (const int h : {1, 2})
        for (const std::string &line :
             (writefile("lines", mustprint("bcftools query -r " + std::to_string(h) +
                                           " -f '%POS [%GT]\\n' Founders.bcf")),
              readlines("lines"))) {
            const std::vector<std::string> words = wordsof(line);
            std::string alleles = words[1];
            std::erase(alleles, '|');
            records[static_cast<std::size_t>(h - 1)][words[0]] = alleles;
        }
    const auto one = drawnin("one", -403, "");
    EXPECT_EQ(drawnin("same", -403, ""), one);
    EXPECT_NE(drawnin("other", -404, ""), one);
    const auto first = drawnin("first", -403, "first\n");
    for (std::size_t k = 0; k < 12; ++k) EXPECT_EQ(first[k], k + 1);
    gointo("all");
    mustprint("cp -p ../Founders.bcf* .; mkdir RecombinationSpecifications");
    for (const std::string h : {"1", "2"})
        writefile("RecombinationSpecifications/Chromosome" + h + ".txt", "0 0.5 0.9\n0.5 1 0.1\n");
    mustrun(source().change("NumberOfHaplotypes,12; RecombinationHotspotsOnOff,On; "
                            "GenomeCompressionOnOff,On; GenomeCompression,60"),
            -405);
    EXPECT_EQ(runcommand(binfolder() + "/checkrun .").status, 0);
    fs::current_path("..");
}

// A file with every defect, left out by --skip: what is left, and how many of each are told.
TEST_F(foundersfromvcf, leavesoutdefectsbyskip)
{
    fs::create_directories("Chromosomes/Chromosome3");
    const std::string head = "##fileformat=VCFv4.2\n##contig=<ID=chr3>\n##contig=<ID=x>\n"
                             "##FORMAT=<ID=GT,Number=1,Type=String,Description=\"\">\n"
                             "#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\tFORMAT\ta\tb\tc\n";
    std::string body;
    const auto site = [&](const std::string &contig, int position, const std::string &alternate,
                          const std::string &genotypes) {
        body += contig + "\t" + std::to_string(position) + "\t.\tC\t" + alternate +
                "\t.\t.\t.\tGT\t" + genotypes + "\n";
    };
    site("chr3", 10, "G", "0|1\t1|1\t0");
    site("chr3", 20, "G,T", "0|1\t1|2\t0");
    site("chr3", 30, "G", "0/1\t1|1\t0");
    site("chr3", 40, "G", "0|.\t1|1\t0");
    site("chr3", 50, "G", "0|1\t1\t0");
    site("chr3", 60, "G", "1|1\t1|1\t1");
    site("chr3", 70, ".", "0|0\t0|0\t0");
    site("chr3", 80, "CAT", "1|0\t0|0\t1");
    site("chr3", 80, "T", "1|0\t0|0\t1");
    site("chr3", 1001, "T", "1|0\t0|0\t1");
    site("x", 11, "T", "1|0\t0|0\t1");
    writefile("mine.vcf", head + body);
    writefile("Seed.txt", "-1\n");
    const std::string start = "cd Chromosomes/Chromosome3 && " + binfolder() + "/foundersfromvcf ";
    const auto sites = [&](const std::string &settings, const std::string &arguments) {
        writefile("Founders.txt", settings);
        std::string found;
        const commandresult result = runcommand(start + arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        writefile("printed", result.out);
        notes = result.err;
        for (const std::string &line : readlines("printed"))
            if (line.starts_with("SITE:")) found += wordsof(line)[2] + " " + wordsof(line)[4] + ";";
        return found;
    };
    EXPECT_EQ(sites("# all\nfile mine.vcf\n\n--skip\n", "5 1000 -t 1"), "0.01 01110;0.08 10001;");
    for (const std::string note :
         {"1 sites left out, with more than two alleles", "1 sites left out, unphased",
          "1 sites left out, with missing genotypes", "1 sites left out, with another ploidy",
          "1 sites left out, at the position of the record before",
          "1 sites left out, beyond the chromosome",
          "2 sites left out, at which all haplotypes are alike"})
        EXPECT_NE(notes.find("NOTE: " + note + "\n"), std::string::npos) << note << "\n" << notes;
    writefile("who.txt", "c\na\n");
    EXPECT_EQ(sites("file mine.vcf\nsamples who.txt\n--skip\n", "3 2000 -t 1 -eN 0.1 5"),
              "0.005 010;0.025 010;0.04 101;0.5005 101;");
    EXPECT_EQ(sites("file mine.vcf\ncontig 3 x\n", "5 100 -t 1 -r 1"), "0.11 10001;");
}
