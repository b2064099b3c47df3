#include "merge/mergemutations.h"

#include "words.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace
{
// A row of MutDeNovoInfo.txt.
struct mutationrow {
    int64 slot = 0, carrier = 0, gamete = 0, block = 0, site = 0;
};

// A folder's mutations on a chromosome, and how many individuals it holds.
struct foldermutations {
    std::string path;
    int64 nindividuals = 0;
    std::vector<mutationrow> rows;
};

std::string mutationstore(int64 chrom, const std::string &folder)
{
    return chromfolder(chrom, folder) + "MutDeNovoInfo.txt";
}

std::vector<mutationrow> readmutations(const std::string &path)
{
    std::vector<mutationrow> rows;
    infile in(path);
    while (in.nextrecord()) {
        mutationrow row;
        for (int64 *field : {&row.slot, &row.carrier, &row.gamete, &row.block, &row.site})
            *field = in.integer();
        rows.push_back(row);
    }
    return rows;
}

// Numbers in the merged population by folder and number there.
using mergednumbers = std::multimap<std::pair<std::string, int64>, int64>;

// Where a mutation arose or will arise in the merged population, by the rows of all folders.
std::vector<mutationrow> mergedcarriers(const mutationrow &mutation,
                                        const std::vector<foldermutations> &folders,
                                        const mergednumbers &numbers, int64 nmerged)
{
    std::vector<mutationrow> carriers;
    bool arisen = false;
    int64 individualsfromnow = 0; // 0: none told yet
    for (const foldermutations &folder : folders)
        for (mutationrow row : folder.rows) {
            if (row.site != mutation.site) continue;
            if (row.carrier > folder.nindividuals) {
                const int64 n = row.carrier - folder.nindividuals;
                if (individualsfromnow == 0 || n < individualsfromnow) individualsfromnow = n;
                continue;
            }
            arisen = true;
            const auto [first, last] = numbers.equal_range({folder.path, row.carrier});
            for (auto number = first; number != last; ++number) {
                row.carrier = number->second;
                carriers.push_back(row);
            }
        }
    std::sort(carriers.begin(), carriers.end(),
              [](const mutationrow &a, const mutationrow &b) { return a.carrier < b.carrier; });
    if (carriers.empty()) {
        carriers.push_back(mutation);
        carriers.front().carrier = arisen ? 0 : nmerged + individualsfromnow;
    }
    return carriers;
}

void writemutations(int64 chrom, const std::vector<mutationrow> &rows)
{
    outfile out(mutationstore(chrom, "."));
    textline line;
    for (const mutationrow &row : rows) {
        for (const int64 field : {row.slot, row.carrier, row.gamete, row.block, row.site})
            puti(line, field, 20);
        out.writeline(line);
    }
    out.close();
}

void writeindicators(int64 chrom, const std::vector<mutationrow> &rows, int64 nmerged)
{
    std::set<int64> carriers;
    for (const mutationrow &row : rows) carriers.insert(row.carrier);
    const int64 nindividuals = std::max(nmerged, *carriers.rbegin());
    outfile out(chromfolder(chrom) + "MutIndivIndicator.txt");
    textline line;
    for (int64 i = 1; i <= nindividuals; ++i) {
        puti(line, i, 10);
        puti(line, carriers.contains(i), 10);
        out.writeline(line);
    }
    out.close();
}

// The burn-in folder and the sources, each once.
std::vector<foldermutations> foldersof(const mergeplan &plan)
{
    std::vector<foldermutations> folders;
    std::set<std::string> paths;
    const auto add = [&](const std::string &path, int64 nindividuals) {
        if (paths.insert(path).second) folders.push_back({path, nindividuals, {}});
    };
    add(plan.burninfolder, readsourcefolder(plan.burninfolder).nindividuals());
    for (const sourcefolder &source : plan.sources) add(source.path, source.nindividuals());
    return folders;
}
} // namespace

void mergemutations(const state &s, const mergeplan &plan)
{
    const int64 nmerged = static_cast<int64>(plan.things.size());
    mergednumbers numbers;
    for (const thing &t : plan.things) numbers.insert({{plan.sourceof(t).path, t.id}, t.newid});
    std::vector<foldermutations> folders = foldersof(plan);
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        const int64 nmut = s.sites.nmutinclglobal(h);
        if (nmut == 0) continue;
        for (foldermutations &folder : folders)
            folder.rows = readmutations(mutationstore(h, folder.path));
        std::vector<mutationrow> rows, further;
        for (int64 j = 1; j <= nmut; ++j) {
            const std::vector<mutationrow> carriers = mergedcarriers(
                folders.front().rows[static_cast<std::size_t>(j - 1)], folders, numbers, nmerged);
            rows.push_back(carriers.front());
            further.insert(further.end(), carriers.begin() + 1, carriers.end());
        }
        rows.insert(rows.end(), further.begin(), further.end());
        writemutations(h, rows);
        writeindicators(h, rows, nmerged);
    }
}
