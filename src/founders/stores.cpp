#include "founders/stores.h"

#include "words.h"

void makechromarrays(state &s, arrayscope &arrays)
{
    const int64 nchrom = s.founders.nchrom;
    arrays.make(s.sites.nsegreginclglobal, nchrom);
    arrays.make(s.sites.nmutinclglobal, nchrom);
    arrays.make(s.sites.denovoinfo, nchrom);
    arrays.make(s.sites.indivmutindicator, nchrom, s.pop.nindivp);
    arrays.make(s.loci.nqtnonthischrom, nchrom);
    arrays.make(s.loci.nqtnrecombonthischrom, nchrom);
    arrays.make(s.loci.nsnponthischipchrom, s.chips.nchip, nchrom);
}

void makeincludedsites(state &s, arrayscope &arrays)
{
    const int64 nsites = s.sites.nsegregincl;
    arrays.make(s.sites.inclsnpid, nsites);
    arrays.make(s.sites.inclphysicalmap, nsites);
    arrays.make(s.sites.inclmutindicator, nsites);
    arrays.make(s.sites.inclmutindicatorindivid, nsites);
}

// --------------------------------------------------------------------- writing

namespace
{
void writesitesincluded(const state &s, int64 chrom)
{
    outfile out(sitesincludedfile(chrom));
    out.writeline(freeline(s.sites.nsegregincl));
    out.close();
}

void writeincludedmap(const state &s, int64 chrom)
{
    const segregatingsites &sites = s.sites;
    outfile out(includedmapfile(chrom));
    textline line;
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        puti(line, i, 10);
        puti(line, sites.inclsnpid(i), 10);
        putf(line, sites.inclphysicalmap(i), 20, 10);
        puti(line, sites.inclmutindicator(i), 10);
        puti(line, sites.inclmutindicatorindivid(i), 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void writemutations(int64 chrom, const std::vector<denovomutation> &rows)
{
    outfile out(mutationsfile(chrom));
    textline line;
    for (const denovomutation &row : rows) {
        for (const int64 field : {row.slot, row.carrier, row.gamete, row.block, row.site})
            puti(line, field, 20);
        out.writeline(line);
    }
    out.close();
}

void writecarriers(int64 chrom, int64 nindiv, const std::vector<denovomutation> &rows)
{
    std::vector<bool> carries(static_cast<std::size_t>(nindiv + 1));
    for (const denovomutation &row : rows) carries[static_cast<std::size_t>(row.carrier)] = true;
    outfile out(carriersfile(chrom));
    textline line;
    for (int64 i = 1; i <= nindiv; ++i) {
        puti(line, i, 10);
        puti(line, carries[static_cast<std::size_t>(i)], 10);
        out.writeline(line);
    }
    out.close();
}

void writesitestores(const state &s, int64 chrom)
{
    writesitesincluded(s, chrom);
    writeincludedmap(s, chrom);
    writemutations(chrom, s.sites.denovoinfo(chrom));
    writecarriers(chrom, s.sites.nindivpinit, s.sites.denovoinfo(chrom));
}

void writesitenumbers(const state &s, int64 chrom)
{
    outfile out(sitenumbersfile(chrom));
    const auto row = [&](int64 nqtnofset) {
        textline line;
        puti(line, nqtnofset, 20);
        puti(line, s.sites.nmutinclglobal(chrom), 20);
        for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
            puti(line, s.loci.nsnponthischipchrom(chip, chrom), 20);
        out.writeline(line);
    };
    row(s.loci.nqtnonthischrom(chrom));
    if (s.selection.recombselonoff) row(s.loci.nqtnrecombonthischrom(chrom));
    out.close();
}

// --------------------------------------------------------------------- reading

namespace
{
void readsitesincluded(state &s, int64 chrom, const std::string &folder)
{
    infile in(sitesincludedfile(chrom, folder), author::system);
    in.record();
    s.sites.nsegreginclglobal(chrom) = in.integer();
    if (s.sites.nsegreginclglobal(chrom) < 0 ||
        s.sites.nsegreginclglobal(chrom) % lociperblock != 0)
        in.complain("the number of sites isn't that of whole blocks of " +
                    numbertext(lociperblock));
    in.stopifmore();
}

void readsitecounts(state &s, int64 chrom, const std::string &folder)
{
    infile in(sitenumbersfile(chrom, folder), author::system);
    const int64 nsites = s.sites.nsegreginclglobal(chrom);
    const auto row = [&](array1<int64> &nqtnofset) {
        in.record();
        nqtnofset(chrom) = in.within(0, nsites);
        s.sites.nmutinclglobal(chrom) = in.within(0, nsites);
        for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
            s.loci.nsnponthischipchrom(chip, chrom) = in.within(0, nsites);
    };
    row(s.loci.nqtnonthischrom);
    if (s.selection.recombselonoff) row(s.loci.nqtnrecombonthischrom);
    if (s.sites.nmutinclglobal(chrom) > s.founders.ndenovomutperchr)
        in.complain("holds " + numbertext(s.sites.nmutinclglobal(chrom)) +
                    " included mutations where the specification has " +
                    numbertext(s.founders.ndenovomutperchr) + " mutations per chromosome");
    in.stopifmore();
}

denovomutation mutationofrecord(infile &in)
{
    denovomutation row;
    for (int64 *field : {&row.slot, &row.carrier, &row.gamete, &row.block, &row.site})
        *field = in.integer();
    if (row.gamete != 1 && row.gamete != 2) in.complain("a gamete is 1 or 2");
    return row;
}

void readdenovoinfo(state &s, int64 chrom, const std::string &folder)
{
    s.sites.denovoinfo(chrom).clear(); // a merge reads the stores of one folder after the other
    if (s.sites.nmutinclglobal(chrom) <= 0) return;
    infile in(mutationsfile(chrom, folder), author::system);
    int64 before = 0;
    for (int64 j = 1; j <= s.sites.nmutinclglobal(chrom); ++j) {
        in.record();
        const denovomutation row = mutationofrecord(in);
        if (row.slot <= before) in.complain("the mutations' slots must ascend");
        before = row.slot;
        s.sites.denovoinfo(chrom).push_back(row);
    }
}

void readindivmutindicator(state &s, int64 chrom, const std::string &folder)
{
    infile in(carriersfile(chrom, folder), author::system);
    int64 nrows = 0;
    while (in.nextrecord()) {
        if (in.line().find_first_not_of(" \t") == std::string_view::npos) continue;
        in.identifier(++nrows, "individual");
        const int64 carries = in.within(0, 1);
        if (nrows > s.pop.nindivp) continue; // this run ends with fewer individuals
        s.sites.indivmutindicator(chrom, nrows) = static_cast<int8>(carries);
    }
    s.sites.nindivpinit = nrows;
}
} // namespace

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

void readsegsitesdatafromallchrom(state &s, const std::string &runfolder)
{
    for (int64 chrom = 1; chrom <= s.founders.nchrom; ++chrom) {
        readsitesincluded(s, chrom, runfolder);
        readsitecounts(s, chrom, runfolder);
        readdenovoinfo(s, chrom, runfolder);
        readindivmutindicator(s, chrom, runfolder);
    }
    computetotals(s);
}

std::vector<denovomutation> readmutations(int64 chrom, const std::string &runfolder)
{
    std::vector<denovomutation> rows;
    infile in(mutationsfile(chrom, runfolder), author::system);
    while (in.nextrecord()) rows.push_back(mutationofrecord(in));
    return rows;
}

void readsegsitesdataperchrom(state &s, int64 chrom)
{
    infile in(includedmapfile(chrom), author::system);
    for (int64 i = 1; i <= s.sites.nsegregincl; ++i) {
        in.record();
        in.identifier(i, "site");
        s.sites.inclsnpid(i) = in.integer();
        s.sites.inclphysicalmap(i) = in.fraction();
        s.sites.inclmutindicator(i) = in.within(0, 1);
        s.sites.inclmutindicatorindivid(i) = in.integer();
    }
    in.stopifmore();
}

array1<double> readincludedmap(int64 chrom, int64 nsegregincl)
{
    array1<double> map(nsegregincl);
    infile in(includedmapfile(chrom), author::system);
    int64 site = 0;
    for (double &position : map) {
        in.record();
        in.identifier(++site, "site");
        in.skipwords(1); // its slot
        position = in.fraction();
    }
    in.stopifmore();
    return map;
}
