#include "founders/extractsegsites.h"
#include "founders/stores.h"
#include "haplotypes/genomefiles.h"
#include "testsupport.h"

#include <algorithm>
#include <cstdarg>
#include <random>
#include <set>

namespace
{
class extraction : public infolder
{
};

std::string format(const char *layout, ...)
{
    char text[512];
    va_list values;
    va_start(values, layout);
    std::vsnprintf(text, sizeof text, layout, values);
    va_end(values);
    return text;
}

struct simulated {
    std::vector<double> positions;
    std::vector<std::string> haplotypes; // characters 0 and 1
};

// What the formatter leaves of a chromosome: positions of ten decimals, several in a line.
simulated writechromosome(int64 chrom, int64 nsites, int64 nhaplos)
{
    std::mt19937_64 random(static_cast<std::uint64_t>(chrom));
    simulated result;
    std::set<int64> places;
    while (static_cast<int64>(places.size()) < nsites)
        places.insert(static_cast<int64>(random() % 10000000000));
    std::string map;
    for (const int64 place : places) {
        result.positions.push_back(static_cast<double>(place) / 1e10);
        map += format("%.10f%s", result.positions.back(), random() % 3 ? " " : "\n");
    }
    writefile(chromfolder(chrom) + "PhysicalMapInput.txt", map + "\n");
    writefile(chromfolder(chrom) + "SegSites.txt", " " + std::to_string(nsites) + " sites\n");
    std::string lines;
    for (int64 h = 0; h < nhaplos; ++h) {
        std::string alleles;
        for (int64 k = 0; k < nsites; ++k) alleles += random() & 1 ? '1' : '0';
        for (const char allele : alleles) lines += {' ', allele};
        lines += '\n';
        result.haplotypes.push_back(alleles);
    }
    writefile(chromfolder(chrom) + "MacsHaplotypes.txt", lines);
    return result;
}

state extractionstate(int64 nchrom, int64 nmut)
{
    state s;
    s.founders.nchrom = nchrom;
    s.sites.ndenovomutperchr = nmut;
    s.pop.nindivp = 37;
    s.chips.nchip = 2;
    s.chips.tmpchip = 1;
    s.chips.usesnpchiponoff = true;
    s.chips.nsnpperchipperchrom.allocate(2);
    s.chips.nsnpperchipperchrom(1) = 20;
    s.chips.nsnpperchipperchrom(2) = 60;
    s.qtn.nqtn = 11 * nchrom;
    s.qtn.nqtngamma = 4;
    s.qtn.ntotqtnrecomb = 5 * nchrom;
    s.random.idum = -20240607;
    return s;
}

// The extraction of one chromosome on plain strings: every slot holds its whole column of
// alleles. Takes the same draws, and gives the texts of all files by name.
struct slowchromosome {
    std::vector<std::pair<std::string, std::string>> files;
    std::vector<std::string> included; // haplotypes over the included sites
    int64 nsegreg = 0, nmutincl = 0;
};

slowchromosome extractslowly(const state &s, const simulated &founders, double percentage,
                             randomstream &random)
{
    struct slot {
        double position = -1;
        bool mutation = false, survives = true;
        std::string column;
    };
    slowchromosome result;
    const int64 nsim = static_cast<int64>(founders.positions.size());
    const int64 nmut = s.sites.ndenovomutperchr;
    const int64 nslots = nsim + nmut;
    const bool thinned = percentage < 100;
    result.nsegreg = nslots;

    std::vector<bool> kept(static_cast<std::size_t>(nsim), true);
    if (thinned)
        for (std::size_t k = 0; k < kept.size(); ++k) kept[k] = 100 * ran1(random) < percentage;

    std::vector<int64> order(static_cast<std::size_t>(nslots));
    randomorder(order.data(), nslots, random);
    std::vector<slot> slots(static_cast<std::size_t>(nslots));
    for (int64 i = nsim; i < nslots; ++i)
        slots[static_cast<std::size_t>(order[static_cast<std::size_t>(i)] - 1)].mutation = true;
    std::size_t k = 0;
    for (slot &place : slots) {
        if (place.mutation) {
            place.column = std::string(founders.haplotypes.size(), '0');
            continue;
        }
        place.position = founders.positions[k];
        place.survives = kept[k];
        for (const std::string &haplotype : founders.haplotypes) place.column += haplotype[k];
        ++k;
    }
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i].position >= 0) continue;
        if (i == 0) {
            slots[i].position = 0;
        } else if (i + 1 == slots.size()) {
            slots[i].position = 1;
        } else {
            std::size_t right = i + 1;
            while (right < slots.size() && slots[right].position < 0) ++right;
            const double there = right < slots.size() ? slots[right].position : 1;
            slots[i].position = (slots[i - 1].position + there) / 2;
        }
    }

    std::string uncompressed, compressed;
    for (int64 i = 1; i <= nsim; ++i)
        uncompressed += format("%10d%20.10f%10d\n", static_cast<int>(i),
                               slots[static_cast<std::size_t>(i - 1)].position, 0);
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (!slots[i].survives) continue;
        candidates.push_back(i);
        if (thinned)
            compressed += format("%10zu%10zu%20.10f%10d\n", candidates.size(), i + 1,
                                 slots[i].position, slots[i].mutation ? 1 : 0);
    }
    const std::string nsites = thinned ? format(" %zu\n", candidates.size())
                                       : format(" %d sites\n", static_cast<int>(nsim));

    const std::size_t nincluded = candidates.size() / 60 * 60;
    std::vector<int64> choice(candidates.size());
    randomorder(choice.data(), static_cast<int64>(choice.size()), random);
    std::vector<std::size_t> included;
    for (std::size_t i = 0; i < nincluded; ++i)
        included.push_back(candidates[static_cast<std::size_t>(choice[i] - 1)]);
    std::sort(included.begin(), included.end());

    std::string map, mutations, carriers;
    std::set<int64> carrying;
    for (std::size_t i = 0; i < included.size(); ++i) {
        const slot &site = slots[included[i]];
        int64 carrier = 0;
        if (site.mutation) {
            carrier = 1 + static_cast<int64>(37 * ran1(random));
            const int64 gamete = 1 + static_cast<int64>(2 * ran1(random));
            carrying.insert(carrier);
            mutations +=
                format("%20zu%20d%20d%20zu%20zu\n", included[i] + 1, static_cast<int>(carrier),
                       static_cast<int>(gamete), (i + 1) / 60 + 1, i + 1);
            ++result.nmutincl;
        }
        map += format("%10zu%10zu%20.10f%10d%10d\n", i + 1, included[i] + 1, site.position,
                      site.mutation ? 1 : 0, static_cast<int>(carrier));
    }
    for (int64 i = 1; i <= 37; ++i)
        carriers += format("%10d%10d\n", static_cast<int>(i), carrying.count(i) ? 1 : 0);
    std::string texts;
    for (std::size_t h = 0; h < founders.haplotypes.size(); ++h) {
        std::string haplotype;
        for (const std::size_t i : included) haplotype += slots[i].column[h];
        for (const char allele : haplotype) texts += {' ', allele};
        texts += '\n';
        result.included.push_back(haplotype);
    }
    std::string numbers = format("%20d%20d%20d%20d\n", static_cast<int>(11 + result.nmutincl),
                                 static_cast<int>(result.nmutincl), 20, 60);
    if (s.selection.recombselonoff)
        numbers += format("%20d%20d%20d%20d\n", 5, static_cast<int>(result.nmutincl), 20, 60);
    result.files = {{"SegSites.txt", nsites},
                    {"PhysicalMapInputUncompressed.txt", uncompressed},
                    {"PhysicalMapInputCompressed.txt", compressed},
                    {"SegSitesIncluded.txt", format(" %zu\n", nincluded)},
                    {"PhysicalMapIncluded.txt", map},
                    {"MutDeNovoInfo.txt", mutations},
                    {"MutIndivIndicator.txt", carriers},
                    {"MacsHaplotypesIncluded.txt", texts},
                    {"NbOfQtnMutationsAndSnp.txt", numbers}};
    return result;
}

// The stores read back what was extracted.
void checkstores(state &s, int64 chrom, const slowchromosome &slow)
{
    const int64 nhaplos = static_cast<int64>(slow.included.size());
    s.sites.nsegregincl = static_cast<int64>(slow.included[0].size());
    EXPECT_EQ(s.sites.nsegreginclglobal(chrom), s.sites.nsegregincl);
    EXPECT_EQ(s.sites.nmutinclglobal(chrom), slow.nmutincl);
    allocatearraysforextractsegsites(s, "PerChrom");
    readsegsitesdataperchrom(s, chrom);
    EXPECT_EQ(s.sites.nhaplos, nhaplos);
    for (int64 j = 1; j <= slow.nmutincl; ++j) {
        const int64 site = s.sites.denovoinfo(chrom, j, 5);
        EXPECT_EQ(s.sites.inclsnpid(site), s.sites.denovoinfo(chrom, j, 1));
        EXPECT_EQ(s.sites.inclmutindicatorindivid(site), s.sites.denovoinfo(chrom, j, 2));
        EXPECT_EQ(s.sites.indivmutindicator(chrom, s.sites.inclmutindicatorindivid(site)), 1);
    }
    haplotypestore packed;
    readhaplotypes(chromfolder(chrom) + "MacsHaplotypesInBlocks.txt", packed, nhaplos,
                   s.sites.nsegregincl / 60);
    for (int64 h = 1; h <= nhaplos; ++h)
        for (int64 site = 1; site <= s.sites.nsegregincl; ++site) {
            const int64 block = (site - 1) / 60 + 1;
            const int64 allele = packed(h, block) >> (60 * block - site) & 1;
            ASSERT_EQ(
                allele,
                slow.included[static_cast<std::size_t>(h - 1)][static_cast<std::size_t>(site - 1)] -
                    '0');
        }
    deallocatearraysforextractsegsites(s, "PerChrom");
}
} // namespace

// Two chromosomes in a row, with and without compression, mutations and recombination QTN,
// against the slow form: all files, all draws, and the way back through the stores.
TEST_F(extraction, agreewithplainstrings)
{
    struct setting {
        bool onoff;
        double percentage;
        int64 nmut;
        bool recomb;
    };
    for (const setting &c :
         {setting{false, 0, 0, false}, setting{false, 50, 60, true}, setting{true, 100, 3, false},
          setting{true, 63.5, 0, false}, setting{true, 63.5, 25, true}}) {
        SCOPED_TRACE(format("%d %f %d", c.onoff, c.percentage, static_cast<int>(c.nmut)));
        runcommand("rm -rf SimulatedData Chromosomes; mkdir SimulatedData");
        const simulated founders[] = {writechromosome(1, 180, 9), writechromosome(2, 251, 9)};
        state s = extractionstate(2, c.nmut);
        s.founders.genomecompressiononoff = c.onoff;
        s.founders.genomecompression = c.percentage;
        s.selection.recombselonoff = c.recomb;
        randomstream random = s.random;
        const outcome result = runbody([&] { extractsegsites(s); });
        ASSERT_EQ(result.code(), 0) << result.output;

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
            counts += format(" %d %d %zu\n", static_cast<int>(chrom),
                             static_cast<int>(slow.nsegreg), slow.included[0].size());
            output += format("  Extraction of segregating sites for chromosome  %d\n"
                             "      Included number of mutations %d\n",
                             static_cast<int>(chrom), static_cast<int>(slow.nmutincl));
            nmutations += slow.nmutincl;
        }
        EXPECT_EQ(s.random.idum, random.idum); // the same number of draws
        EXPECT_EQ(readfile("SimulatedData/NbOfSegSitesPerChrom.txt"), counts);
        output += format("  Total number of QTN with normal effect %d\n"
                         "  Total number of QTN with Gamma effect %d\n",
                         static_cast<int>(22 + nmutations), static_cast<int>(4 + nmutations));
        if (c.recomb) output += "  Total number of recombination QTN 10\n";
        EXPECT_EQ(result.output, output + "     \n");
    }
}

// Nothing but a few simulated sites among many mutations: runs of mutation slots, also at both
// ends. Positions rise, from 0 or the first site to 1.
TEST_F(extraction, placerunsofmutations)
{
    for (int64 nsites = 1; nsites <= 4; ++nsites) {
        writechromosome(1, nsites, 2);
        runcommand("mkdir -p SimulatedData");
        state s = extractionstate(1, 120 - nsites);
        s.qtn.nqtn = 0;
        s.chips.usesnpchiponoff = false;
        // Each mutation is a QTN: with all included sites at hand, there is room for all.
        ASSERT_EQ(runbody([&] { extractsegsites(s); }).code(), 0);
        double last = -1;
        for (const std::string &row : readlines(chromfolder(1) + "PhysicalMapIncluded.txt")) {
            const double position = numbersof(row)[2];
            EXPECT_GE(position, last);
            EXPECT_LE(position, 1.0);
            last = position;
        }
        EXPECT_EQ(s.haplo.nblock, 2);
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
          setting{125, 120, 120, 121, 110009, qtnmessage}, setting{59, 0, 1, 0, 110008, qtnmessage},
          setting{125, 120, 120, 120, 0, ""}}) {
        runcommand("mkdir -p SimulatedData");
        writechromosome(1, c.nsites, 3);
        state s = extractionstate(1, 0);
        s.selection.recombselonoff = true;
        s.chips.nsnpperchipperchrom(1) = 0;
        s.chips.nsnpperchipperchrom(2) = c.nsnp;
        s.qtn.nqtn = c.nqtn;
        s.qtn.ntotqtnrecomb = c.nqtnrecomb;
        const outcome result = runbody([&] { extractsegsites(s); });
        EXPECT_EQ(result.code(), c.code);
        EXPECT_TRUE(c.code == 0 || result.output.ends_with(c.message)) << result.output;
    }
}

TEST_F(extraction, refusebrokeninput)
{
    runcommand("mkdir -p SimulatedData");
    const auto failure = [](const std::string &file, const std::string &content) {
        writechromosome(1, 60, 3);
        if (content == "none")
            runcommand("rm " + chromfolder(1) + file);
        else
            writefile(chromfolder(1) + file, content);
        state s = extractionstate(1, 0);
        const outcome result = runbody([&] { extractsegsites(s); });
        EXPECT_EQ(result.code(), -2) << file << content;
        return result.stop.reason;
    };
    const std::string missing = failure("SegSites.txt", "none");
    EXPECT_NE(missing.find("Chromosome1/SegSites.txt"), std::string::npos);
    EXPECT_NE(missing.find("debug.txt"), std::string::npos);
    failure("SegSites.txt", "-1\n");
    failure("SegSites.txt", "many\n");
    failure("PhysicalMapInput.txt", "0.1 0.2\n");
    failure("MacsHaplotypes.txt", " 0 1\n");
    failure("MacsHaplotypes.txt", "\n");
    EXPECT_NE(failure(
                  "MacsHaplotypes.txt", std::string(59 * 2, ' ') + "2" +
                                            [] {
                                                std::string ones;
                                                for (int i = 0; i < 59; ++i) ones += " 1";
                                                return ones;
                                            }())
                  .find("neither 0 nor 1"),
              std::string::npos);
}
