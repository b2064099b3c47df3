#include "founders/stores.h"
#include "testsupport.h"

namespace
{
class stores : public infolder
{
};

// Two chromosomes, two chips, up to 3 mutations a chromosome, 5 individuals.
state smallstate()
{
    state s;
    s.founders.nchrom = 2;
    s.sites.ndenovomutperchr = 3;
    s.pop.nindivp = 5;
    s.chips.nchip = 2;
    s.chips.tmpchip = 2;
    s.chips.usesnpchiponoff = true;
    s.qtn.nqtngamma = 7;
    s.qtn.ntotqtnrecomb = 99;
    allocatechromarrays(s);
    return s;
}

void writestores()
{
    writefile(chromfolder(1) + "SegSitesIncluded.txt", " 120\n");
    writefile(chromfolder(1) + "NbOfQtnMutationsAndSnp.txt",
              "  12   2   30  40\n   6   2   30   40\n");
    writefile(chromfolder(1) + "MutDeNovoInfo.txt", "17 3 1 1 16\n 90 5 2 2 88\n");
    writefile(chromfolder(1) + "MutIndivIndicator.txt", "1 0\n2 0\n3 1\n4 0\n5 1\n");
    writefile(chromfolder(2) + "SegSitesIncluded.txt", " 60\n");
    writefile(chromfolder(2) + "NbOfQtnMutationsAndSnp.txt",
              "  10   0   31  41\n   5   0   31   41\n");
    writefile(chromfolder(2) + "MutIndivIndicator.txt", "");
}
} // namespace

TEST_F(stores, readallchromosomesandtotals)
{
    writestores();
    state s = smallstate();
    readsegsitesdatafromallchrom(s);
    EXPECT_EQ(s.sites.nsegreginclglobal(1), 120);
    EXPECT_EQ(s.sites.nsegreginclglobal(2), 60);
    EXPECT_EQ(s.chips.nsnponthischipchrom(1, 2), 31);
    EXPECT_EQ(s.chips.nsnponthischipchrom(2, 1), 40);
    EXPECT_EQ(s.sites.denovoinfo(1, 2, 2), 5);
    EXPECT_EQ(s.sites.indivmutindicator(1, 3), 1);
    EXPECT_EQ(s.sites.indivmutindicator(2, 3), 0); // no rows: no carriers
    EXPECT_EQ(s.sites.nindivpinit, 0);             // of the last chromosome
    EXPECT_EQ(s.qtn.ntotqtn, 22);
    EXPECT_EQ(s.qtn.ntotqtngamma, 9);
    EXPECT_EQ(s.qtn.ntotqtnrecomb, 99); // kept: no recombination trait
    EXPECT_EQ(s.chips.nsnp, 81);
    EXPECT_EQ(s.chips.nsnpforsel, 81);

    s.selection.recombselonoff = true;
    s.selection.addqtntosnpchip = 1;
    readsegsitesdatafromallchrom(s);
    EXPECT_EQ(s.qtn.ntotqtnrecomb, 11);
    EXPECT_EQ(s.chips.nsnpforsel, 81 + 22);
    s.chips.usesnpchiponoff = false;
    readsegsitesdatafromallchrom(s);
    EXPECT_EQ(s.chips.nsnpforsel, 81);

    s.pop.nindivp = 3; // a later run may have fewer individuals to come
    allocatechromarrays(s);
    readsegsitesdatafromallchrom(s);
    EXPECT_EQ(s.sites.indivmutindicator(1, 3), 1);
}

TEST_F(stores, refusewhathasnoplace)
{
    const auto failure = [](const std::string &file, const std::string &content) {
        writestores();
        writefile(chromfolder(1) + file, content);
        state s = smallstate();
        const outcome result = runbody([&] { readsegsitesdatafromallchrom(s); });
        EXPECT_EQ(result.code(), -2) << file;
        EXPECT_NE(result.stop.reason.find(file), std::string::npos);
        return result.stop.reason;
    };
    EXPECT_NE(failure("NbOfQtnMutationsAndSnp.txt", "12 4 30 40\n").find("4 included mutations"),
              std::string::npos);
    failure("MutDeNovoInfo.txt", "17 3 1 1 16\n");
    failure("SegSitesIncluded.txt", "");
}
