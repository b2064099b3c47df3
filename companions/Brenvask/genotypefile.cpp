#include "Brenvask/genotypefile.h"

#include "evaluationhelpers/progress.h"
#include "evaluationhelpers/records.h"
#include "stops.h"
#include "words.h"

#include <filesystem>

namespace
{
constexpr int64 missingcode = 9;

// The file of the working directory with chip genotypes of that kind; empty if there is none.
std::string chipfile(const brenvaskspec &spec, const std::string &kind)
{
    std::string found;
    for (const auto &entry : std::filesystem::directory_iterator(".")) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with("TmpChip") || !name.ends_with("Genotype" + kind + ".txt")) continue;
        if (!found.empty())
            ioerror(spec.file, "GenotypeFile: None, and both " + std::min(found, name) + " and " +
                                   std::max(found, name) + " stand in the folder: name one");
        found = name;
    }
    return found;
}
} // namespace

std::string choosegenotypefile(const brenvaskspec &spec)
{
    if (!spec.genotypefile.empty()) return spec.genotypefile;
    for (const char *kind : {"LastGeneration", "Test"}) {
        const std::string name = chipfile(spec, kind);
        if (name.empty()) continue;
        note("No genotype file and no pedigree are named: taking " + name + " from the folder");
        return name;
    }
    ioerror(spec.file,
            "GenotypeFile: None, and no TmpChip<k>GenotypeTest.txt stands in the folder");
}

genotypefile readgenotypefile(const std::string &filename, int64 nsnp)
{
    const int64 n = countlines(filename);
    if (n == 0) ioerror(filename, "holds no genotypes");
    genotypefile genotypes;
    genotypes.name = filename;
    genotypes.indiv.allocate(n);
    makegenotypestore(genotypes.store, n, nsnp);
    infile in(filename);
    array1<int8> row(nsnp);
    for (int64 i = 1; i <= n; ++i) {
        genotypes.indiv(i) = readgenotypes(in, missingcode, row);
        packindividual(genotypes.store, i, row.data());
    }
    computefrequencies(genotypes.store);
    return genotypes;
}
