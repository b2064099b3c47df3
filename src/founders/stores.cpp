#include "founders/stores.h"

#include "words.h"

#include <numeric>

void allocatechromarrays(state &s)
{
    const int64 nchrom = s.founders.nchrom;
    s.sites.nsegreginclglobal.allocate(nchrom);
    s.sites.nmutinclglobal.allocate(nchrom);
    s.sites.denovoinfo.allocate(nchrom, s.founders.ndenovomutperchr, 5);
    s.sites.indivmutindicator.allocate(nchrom, s.pop.nindivp);
    s.loci.nqtnonthischrom.allocate(nchrom);
    s.loci.nqtnrecombonthischrom.allocate(nchrom);
    s.loci.nsnponthischipchrom.allocate(s.chips.nchip, nchrom);
}

void makechromarrays(state &s, arrayscope &arrays)
{
    allocatechromarrays(s);
    arrays.hold(s.sites.nsegreginclglobal);
    arrays.hold(s.sites.nmutinclglobal);
    arrays.hold(s.sites.denovoinfo);
    arrays.hold(s.sites.indivmutindicator);
    arrays.hold(s.loci.nqtnonthischrom);
    arrays.hold(s.loci.nqtnrecombonthischrom);
    arrays.hold(s.loci.nsnponthischipchrom);
}

void releasechromarrays(state &s)
{
    s.sites.nsegreginclglobal.release();
    s.sites.nmutinclglobal.release();
    s.sites.denovoinfo.release();
    s.sites.indivmutindicator.release();
    s.loci.nqtnonthischrom.release();
    s.loci.nqtnrecombonthischrom.release();
    s.loci.nsnponthischipchrom.release();
}

namespace
{
void readsitesincluded(state &s, int64 chrom, const std::string &folder)
{
    infile in(folder + "SegSitesIncluded.txt");
    in.record();
    s.sites.nsegreginclglobal(chrom) = in.integer();
}

void readqtnmutationsandsnp(state &s, int64 chrom, const std::string &folder)
{
    infile in(folder + "NbOfQtnMutationsAndSnp.txt");
    const auto row = [&](array1<int64> &nqtnofset) {
        in.record();
        nqtnofset(chrom) = in.integer();
        s.sites.nmutinclglobal(chrom) = in.integer();
        for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
            s.loci.nsnponthischipchrom(chip, chrom) = in.integer();
    };
    row(s.loci.nqtnonthischrom);
    if (s.selection.recombselonoff) row(s.loci.nqtnrecombonthischrom);
    if (s.sites.nmutinclglobal(chrom) > s.founders.ndenovomutperchr)
        in.complain("holds " + numbertext(s.sites.nmutinclglobal(chrom)) +
                    " included mutations where the specification has " +
                    numbertext(s.founders.ndenovomutperchr) + " mutations per chromosome");
}

void readdenovoinfo(state &s, int64 chrom, const std::string &folder)
{
    if (s.sites.nmutinclglobal(chrom) <= 0) return;
    infile in(folder + "MutDeNovoInfo.txt");
    for (int64 j = 1; j <= s.sites.nmutinclglobal(chrom); ++j) {
        in.record();
        for (int64 field = 1; field <= 5; ++field)
            s.sites.denovoinfo(chrom, j, field) = in.integer();
    }
}

void readindivmutindicator(state &s, int64 chrom, const std::string &folder)
{
    infile in(folder + "MutIndivIndicator.txt");
    int64 nrows = 0;
    while (in.nextrecord()) {
        if (in.line().find_first_not_of(" \t") == std::string_view::npos) continue;
        if (++nrows > s.pop.nindivp) continue; // this run ends with fewer individuals
        in.integer();                          // the individual's number is the row's
        s.sites.indivmutindicator(chrom, nrows) = static_cast<int8>(in.integer());
    }
    s.sites.nindivpinit = nrows;
}

int64 sumof(const array1<int64> &values)
{
    return std::accumulate(values.begin(), values.end(), int64{0});
}

void computetotals(state &s)
{
    s.loci.ntotqtn = sumof(s.loci.nqtnonthischrom);
    s.loci.ntotqtngamma = sumof(s.sites.nmutinclglobal) + s.qtn.nqtngamma;
    if (s.selection.recombselonoff) s.loci.ntotqtnrecomb = sumof(s.loci.nqtnrecombonthischrom);
    s.loci.nsnp = 0;
    const bool haschip = s.chips.tmpchip >= 1 && s.chips.tmpchip <= s.chips.nchip;
    for (int64 chrom = 1; haschip && chrom <= s.founders.nchrom; ++chrom)
        s.loci.nsnp += s.loci.nsnponthischipchrom(s.chips.tmpchip, chrom);
    s.loci.nsnpforsel = s.loci.nsnp;
    if (s.chips.usesnpchiponoff && s.selection.addqtntosnpchip == 1)
        s.loci.nsnpforsel += s.loci.ntotqtn;
}
} // namespace

void readsegsitesdatafromallchrom(state &s, const std::string &runfolder)
{
    for (int64 chrom = 1; chrom <= s.founders.nchrom; ++chrom) {
        const std::string folder = chromfolder(chrom, runfolder);
        readsitesincluded(s, chrom, folder);
        readqtnmutationsandsnp(s, chrom, folder);
        readdenovoinfo(s, chrom, folder);
        readindivmutindicator(s, chrom, folder);
    }
    computetotals(s);
}

void readsegsitesdataperchrom(state &s, int64 chrom)
{
    infile in(chromfolder(chrom) + "PhysicalMapIncluded.txt");
    for (int64 i = 1; i <= s.sites.nsegregincl; ++i) {
        in.record();
        in.integer(); // the row number
        s.sites.inclsnpid(i) = in.integer();
        s.sites.inclphysicalmap(i) = in.real();
        s.sites.inclmutindicator(i) = in.integer();
        s.sites.inclmutindicatorindivid(i) = in.integer();
    }
    s.sites.nhaplos = countlines(chromfolder(chrom) + "MacsHaplotypes.txt");
}

void readsegsitesdataperchromforrecomb(int64 chrom, array1<double> &map, int64 nsegregincl)
{
    infile in(chromfolder(chrom) + "PhysicalMapIncluded.txt");
    for (int64 i = 1; i <= nsegregincl; ++i) {
        in.record();
        in.integer();
        in.integer();
        map(i) = in.real();
    }
}
