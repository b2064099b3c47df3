#include "pedigree/pedigreewarnings.h"

#include "words.h"

void noteparents(pedigreefindings &findings, const state &s, int64 i, int64 sire, int64 dam,
                 int64 linenumber)
{
    constexpr int64 male = 1, female = 2;
    const pedigreeline &row = s.pedi.ped(i);
    const auto note = [&](int64 id, int64 parent, int64 othergender) {
        if (id != 0 && parent == 0) findings.missing.push_back({id, linenumber});
        if (parent == 0 || s.pedi.globalgender(parent) != othergender) return;
        if (findings.ncontradicted++ == 0) findings.firstcontradicted = linenumber;
    };
    note(sire, row.newsire, female);
    note(dam, row.newdam, male);
}

void warnofpedigree(const runoptions &options, const std::string &path,
                    const pedigreefindings &findings, const pedigreeindex &index)
{
    int64 nlater = 0, nnowhere = 0;
    missingparent later, nowhere;
    for (const missingparent &parent : findings.missing) {
        const bool stands = index.find(parent.id) != 0;
        if ((stands ? nlater : nnowhere)++ == 0) (stands ? later : nowhere) = parent;
    }
    if (nlater > 0)
        warn(options, path, later.linenumber,
             numbertext(nlater) +
                 " parents stand behind their progeny and are taken for unknown, " +
                 "the first is " + numbertext(later.id) + ": parents must stand above");
    if (nnowhere > 0)
        warn(options, path, nowhere.linenumber,
             numbertext(nnowhere) +
                 " parents stand nowhere in the file and are taken for unknown, " +
                 "the first is " + numbertext(nowhere.id) + "; write 0 for an unknown parent");
    if (findings.nrowswithout > 0)
        warn(options, path, 0,
             "it holds " + numbertext(findings.nrowswithout) +
                 " individuals fewer than the generations have: these become founders without "
                 "parents");
    if (findings.ncontradicted > 0)
        warn(options, path, findings.firstcontradicted,
             numbertext(findings.ncontradicted) +
                 " parents have drawn a gender against their role as sire or dam (genders are "
                 "drawn, not read from the pedigree); this is the first line with one");
}
