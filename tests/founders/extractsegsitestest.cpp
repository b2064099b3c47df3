#include "founders/extractsegsites.h"
#include "founders/stores.h"
#include "haplotypes/founderblocks.h"
#include "haplotypes/genomefiles.h"
#include "testsupport.h"

#include <map>
#include <random>
#include <set>

namespace
{
class extraction : public infolder
{
};

constexpr int64 nindiv = 37, nqtnperchrom = 11;

// A line of integers in columns of one width, and of positions as F20.10.
template <class... T> std::string row(int64 width, T... values)
{
    textline line;
    const auto put = [&](auto value) {
        if constexpr (std::is_same_v<decltype(value), double>)
            putf(line, value, 20, 10);
        else
            puti(line, value, width);
    };
    (put(values), ...);
    return line + "\n";
}

struct simulated {
    std::vector<double> positions;
    std::vector<std::string> haplotypes; // characters 0 and 1
};

// What the formatter leaves of a chromosome: positions of ten decimals, several in a line.
simulated writechromosome(int64 chrom, int64 nsites, int64 nhaplos)
{
    std::mt19937_64 random(chrom);
    simulated result;
    std::set<int64> places;
    while (std::ssize(places) < nsites) places.insert(random() % 10000000000);
    std::string map, lines;
    for (const int64 place : places) {
        result.positions.push_back(static_cast<double>(place) / 1e10);
        const std::string position = row(0, result.positions.back());
        map += random() % 3 ? position.substr(0, 20) : position;
    }
    for (int64 h = 0; h < nhaplos; ++h) {
        std::string &alleles = result.haplotypes.emplace_back();
        while (std::ssize(alleles) < nsites) alleles += random() & 1 ? '1' : '0';
        for (const char allele : alleles) lines += {' ', allele};
        lines += '\n';
    }
    writefile(chromfolder(chrom) + "PhysicalMapInput.txt", map + "\n");
    writefile(chromfolder(chrom) + "SegSites.txt", freeline(nsites, "sites") + "\n");
    writefile(chromfolder(chrom) + "MacsHaplotypes.txt", lines);
    return result;
}

state extractionstate(int64 nchrom, int64 nmut)
{
    runcommand("mkdir -p SimulatedData");
    state s;
    s.founders.nchrom = nchrom;
    s.sites.ndenovomutperchr = nmut;
    s.pop.nindivp = nindiv;
    s.chips.nchip = 2;
    s.chips.tmpchip = 2;
    s.chips.usesnpchiponoff = true;
    s.chips.nsnpperchipperchrom.allocate(2);
    s.chips.nsnpperchipperchrom(1) = 20;
    s.chips.nsnpperchipperchrom(2) = 60;
    s.qtn.nqtn = nqtnperchrom * nchrom;
    s.qtn.nqtngamma = 4;
    s.qtn.ntotqtnrecomb = 5 * nchrom;
    s.random.idum = -20240607;
    return s;
}

// The extraction of one chromosome on plain strings: every slot holds its whole column of
// alleles. Takes the same draws, and gives the texts of all files by name.
struct slowchromosome {
    std::map<std::string, std::string> files;
    std::vector<std::string> included; // haplotypes over the included sites
    std::vector<double> positions;     // of the included sites
    int64 nsegreg = 0, nmutincl = 0;
};

struct slot {
    int64 number = 0; // from 1
    double position = -1;
    bool mutation = false, survives = true, included = false;
    std::string column; // the haplotypes' alleles
};

std::vector<slot> strewslowly(const simulated &founders, int64 nmut, double percentage,
                              randomstream &random)
{
    const int64 nsim = std::ssize(founders.positions), nslots = nsim + nmut;
    std::vector<bool> kept(nsim, true);
    for (int64 k = 0; k < nsim && percentage < 100; ++k) kept[k] = 100 * ran1(random) < percentage;
    array1<int64> order(nslots);
    randomorder(order, nslots, random);
    std::vector<slot> slots(nslots);
    for (int64 i = nsim + 1; i <= nslots; ++i) slots[order(i) - 1].mutation = true;
    int64 number = 0, k = 0;
    for (slot &here : slots) {
        here.number = ++number;
        for (const std::string &haplotype : founders.haplotypes)
            here.column += here.mutation ? '0' : haplotype[k];
        if (here.mutation) continue;
        here.position = founders.positions[k];
        here.survives = kept[k++];
    }
    for (int64 i = 0; i < nslots; ++i) {
        if (!slots[i].mutation) continue;
        int64 right = i;
        while (right < nslots && slots[right].position < 0) ++right;
        const double there = right < nslots ? slots[right].position : 1;
        slots[i].position = i == 0 ? 0 : i + 1 == nslots ? 1 : (slots[i - 1].position + there) / 2;
    }
    return slots;
}

slowchromosome extractslowly(const state &s, const simulated &founders, double percentage,
                             randomstream &random)
{
    std::vector<slot> slots = strewslowly(founders, s.sites.ndenovomutperchr, percentage, random);
    const int64 nsim = std::ssize(founders.positions);
    const bool thinned = percentage < 100;
    slowchromosome result;
    result.nsegreg = std::ssize(slots);
    auto &files = result.files;
    for (int64 i = 1; i <= nsim; ++i)
        files["PhysicalMapInputUncompressed.txt"] += row(10, i, slots[i - 1].position, 0);
    std::vector<slot *> candidates;
    std::string &compressed = files["PhysicalMapInputCompressed.txt"];
    for (slot &here : slots) {
        if (!here.survives) continue;
        candidates.push_back(&here);
        if (thinned)
            compressed +=
                row(10, std::ssize(candidates), here.number, here.position, here.mutation);
    }
    const int64 ncandidates = std::ssize(candidates);
    files["SegSites.txt"] = (thinned ? freeline(ncandidates) : freeline(nsim, "sites")) + "\n";

    array1<int64> choice(ncandidates);
    randomorder(choice, ncandidates, random);
    for (int64 i = 1; i <= ncandidates / 60 * 60; ++i) candidates[choice(i) - 1]->included = true;
    files["SegSitesIncluded.txt"] = freeline(ncandidates / 60 * 60) + "\n";

    std::set<int64> carrying;
    result.included.resize(founders.haplotypes.size());
    for (const slot &site : slots) {
        if (!site.included) continue;
        result.positions.push_back(site.position);
        const int64 i = std::ssize(result.positions);
        int64 carrier = 0;
        if (site.mutation) {
            carrier = 1 + static_cast<int64>(nindiv * ran1(random));
            const int64 gamete = 1 + static_cast<int64>(2 * ran1(random));
            carrying.insert(carrier);
            files["MutDeNovoInfo.txt"] += row(20, site.number, carrier, gamete, i / 60 + 1, i);
            ++result.nmutincl;
        }
        files["PhysicalMapIncluded.txt"] +=
            row(10, i, site.number, site.position, site.mutation, carrier);
        for (std::size_t h = 0; h < site.column.size(); ++h) result.included[h] += site.column[h];
    }
    for (int64 i = 1; i <= nindiv; ++i)
        files["MutIndivIndicator.txt"] += row(10, i, carrying.contains(i));
    for (const std::string &haplotype : result.included) {
        for (const char allele : haplotype) files["MacsHaplotypesIncluded.txt"] += {' ', allele};
        files["MacsHaplotypesIncluded.txt"] += '\n';
    }
    std::string &numbers = files["NbOfQtnMutationsAndSnp.txt"];
    numbers = row(20, nqtnperchrom + result.nmutincl, result.nmutincl, 20, 60);
    if (s.selection.recombselonoff) numbers += row(20, 5, result.nmutincl, 20, 60);
    return result;
}

// The stores read back what was extracted.
void checkstores(state &s, int64 chrom, const slowchromosome &slow)
{
    const int64 nhaplos = std::ssize(slow.included), nsites = std::ssize(slow.positions);
    s.sites.nsegregincl = nsites;
    EXPECT_EQ(s.sites.nsegreginclglobal(chrom), nsites);
    EXPECT_EQ(s.sites.nmutinclglobal(chrom), slow.nmutincl);
    allocatearraysforextractsegsites(s, "PerChrom");
    readsegsitesdataperchrom(s, chrom);
    EXPECT_EQ(s.sites.nhaplos, nhaplos);
    for (int64 j = 1; j <= slow.nmutincl; ++j) {
        const int64 site = s.sites.denovoinfo(chrom, j, 5);
        ASSERT_TRUE(site >= 1 && site <= nsites);
        EXPECT_EQ(s.sites.inclsnpid(site), s.sites.denovoinfo(chrom, j, 1));
        EXPECT_EQ(s.sites.inclmutindicator(site), 1);
        EXPECT_EQ(s.sites.inclmutindicatorindivid(site), s.sites.denovoinfo(chrom, j, 2));
        EXPECT_EQ(s.sites.indivmutindicator(chrom, s.sites.inclmutindicatorindivid(site)), 1);
    }
    array1<double> map(nsites);
    readsegsitesdataperchromforrecomb(chrom, map, nsites);
    haplotypestore packed;
    readhaplotypes(chromfolder(chrom) + "MacsHaplotypesInBlocks.txt", packed, nhaplos, nsites / 60);
    for (int64 site = 1; site <= nsites; ++site) {
        ASSERT_NEAR(map(site), slow.positions[site - 1], 1e-10);
        ASSERT_EQ(map(site), s.sites.inclphysicalmap(site));
        const int64 block = (site - 1) / 60 + 1;
        for (int64 h = 1; h <= nhaplos; ++h)
            ASSERT_EQ(packed(h, block) >> (60 * block - site) & 1,
                      slow.included[h - 1][site - 1] - '0');
    }
    deallocatearraysforextractsegsites(s, "PerChrom");
}
} // namespace

// Two chromosomes in a row, with and without compression, mutations and recombination QTN, and
// with mutations in long runs, at both ends too; against the slow form: all files, all draws, and
// the way back through the stores.
TEST_F(extraction, agreewithplainstrings)
{
    struct setting {
        bool onoff;
        double percentage;
        int64 nmut;
        bool recomb;
        int64 nsites[2];
    };
    for (const setting &c :
         {setting{false, 0, 0, false, {180, 251}}, setting{false, 50, 60, true, {180, 251}},
          setting{true, 100, 3, false, {180, 251}}, setting{true, 63.5, 25, true, {180, 251}},
          setting{false, 0, 108, false, {12, 13}}}) {
        SCOPED_TRACE(freeline(c.onoff, c.percentage, c.nmut));
        runcommand("rm -rf SimulatedData Chromosomes");
        const simulated founders[] = {writechromosome(1, c.nsites[0], 9),
                                      writechromosome(2, c.nsites[1], 9)};
        state s = extractionstate(2, c.nmut);
        s.founders.genomecompressiononoff = c.onoff;
        s.founders.genomecompression = c.percentage;
        s.selection.recombselonoff = c.recomb;
        randomstream random = s.random;
        const outcome result = runbody([&] { extractsegsites(s, packhaplotypes); });
        ASSERT_EQ(result.code(), 0) << result.output;

        s.qtn.ntotqtnrecomb = 99;
        s.selection.addqtntosnpchip = c.recomb ? 1 : 2;
        allocatechromarrays(s);
        readsegsitesdatafromallchrom(s);
        std::string counts =
            "                ChromId          NbOfSegSites      NbOfInclSegSites\n";
        std::string output;
        int64 nmutations = 0;
        for (int64 chrom = 1; chrom <= 2; ++chrom) {
            const slowchromosome slow =
                extractslowly(s, founders[chrom - 1], c.onoff ? c.percentage : 100, random);
            for (const auto &[name, content] : slow.files)
                EXPECT_TRUE(readfile(chromfolder(chrom) + name) == content) << chrom << " " << name;
            checkstores(s, chrom, slow);
            counts += freeline(chrom, slow.nsegreg, std::ssize(slow.positions)) + "\n";
            output += "  Extraction of segregating sites for chromosome " + freeline(chrom) +
                      "\n      Included number of mutations" + freeline(slow.nmutincl) + "\n";
            nmutations += slow.nmutincl;
        }
        EXPECT_EQ(s.random.idum, random.idum); // the same number of draws
        EXPECT_EQ(readfile("SimulatedData/NbOfSegSitesPerChrom.txt"), counts);
        output += "  Total number of QTN with normal effect" + freeline(22 + nmutations) +
                  "\n  Total number of QTN with Gamma effect" + freeline(4 + nmutations) + "\n";
        if (c.recomb) output += "  Total number of recombination QTN 10\n";
        EXPECT_EQ(result.output, output + "     \n");

        EXPECT_EQ(s.qtn.ntotqtn, 22 + nmutations);
        EXPECT_EQ(s.qtn.ntotqtngamma, 4 + nmutations);
        EXPECT_EQ(s.qtn.ntotqtnrecomb, c.recomb ? 10 : 99);
        EXPECT_EQ(s.chips.nsnp, 120);
        EXPECT_EQ(s.chips.nsnpforsel, 120 + (c.recomb ? s.qtn.ntotqtn : 0));
        EXPECT_EQ(s.sites.nindivpinit, nindiv);
        s.pop.nindivp = 20; // a later run may have fewer individuals to come
        allocatechromarrays(s);
        EXPECT_EQ(runbody([&] { readsegsitesdatafromallchrom(s); }).code(), 0);
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
        writechromosome(1, c.nsites, 3);
        state s = extractionstate(1, 0);
        s.selection.recombselonoff = true;
        s.chips.nsnpperchipperchrom(2) = c.nsnp;
        s.qtn.nqtn = c.nqtn;
        s.qtn.ntotqtnrecomb = c.nqtnrecomb;
        const outcome result = runbody([&] { extractsegsites(s, packhaplotypes); });
        EXPECT_EQ(result.code(), c.code);
        EXPECT_TRUE(c.code == 0 || result.output.ends_with(c.message)) << result.output;
    }
}

TEST_F(extraction, refusebrokeninput)
{
    const auto refused = [] {
        state s = extractionstate(1, 0);
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
        writechromosome(1, 60, 3);
        writefile(chromfolder(1) + file, content);
        EXPECT_NE(refused().find("Chromosome1/" + file), std::string::npos) << content;
    }
    writechromosome(1, 60, 3);
    std::string alleles = readfile(chromfolder(1) + "MacsHaplotypes.txt");
    alleles[119] = '2';
    writefile(chromfolder(1) + "MacsHaplotypes.txt", alleles);
    EXPECT_NE(refused().find("neither 0 nor 1"), std::string::npos);
    runcommand("rm " + chromfolder(1) + "SegSites.txt"); // the simulator failed
    EXPECT_NE(refused().find("debug.txt"), std::string::npos);
}

TEST_F(extraction, refusebrokenstores)
{
    writechromosome(1, 57, 3);
    state s = extractionstate(1, 3);
    runbody([&] { extractsegsites(s, packhaplotypes); });
    const std::pair<std::string, std::string> broken[] = {
        {"MutDeNovoInfo.txt", "17 3 1 1 16\n"}, // two of three mutations are missing
        {"SegSitesIncluded.txt", ""},
        {"NbOfQtnMutationsAndSnp.txt", "14 4 20 60\n"}};
    for (const auto &[file, content] : broken) {
        const std::string path = chromfolder(1) + file, whole = readfile(path);
        writefile(path, content);
        allocatechromarrays(s);
        const outcome result = runbody([&] { readsegsitesdatafromallchrom(s); });
        EXPECT_EQ(result.code(), -2) << file;
        EXPECT_NE(result.stop.reason.find(file), std::string::npos);
        writefile(path, whole);
    }
}
