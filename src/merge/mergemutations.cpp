#include "merge/mergemutations.h"

#include "founders/stores.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace
{
// A folder's mutations on a chromosome, and how many individuals it holds.
struct foldermutations {
    std::string path;
    int64 nindividuals = 0;
    std::vector<denovomutation> rows;
};

// Numbers in the merged population by folder and number there.
using mergednumbers = std::multimap<std::pair<std::string, int64>, int64>;

// Where a mutation arose or will arise in the merged population, by the rows of all folders.
std::vector<denovomutation> mergedcarriers(const denovomutation &mutation,
                                           const std::vector<foldermutations> &folders,
                                           const mergednumbers &numbers, int64 nmerged)
{
    std::vector<denovomutation> carriers;
    bool arisen = false;
    int64 individualsfromnow = 0; // 0: none told yet
    for (const foldermutations &folder : folders)
        for (denovomutation row : folder.rows) {
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
    std::sort(
        carriers.begin(), carriers.end(),
        [](const denovomutation &a, const denovomutation &b) { return a.carrier < b.carrier; });
    if (carriers.empty()) {
        carriers.push_back(mutation);
        carriers.front().carrier = arisen ? 0 : nmerged + individualsfromnow;
    }
    return carriers;
}

// Up to the last carrier, which can be still to come.
int64 numberofrows(const std::vector<denovomutation> &rows, int64 nmerged)
{
    int64 last = nmerged;
    for (const denovomutation &row : rows) last = std::max(last, row.carrier);
    return last;
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
        for (foldermutations &folder : folders) folder.rows = readmutations(h, folder.path);
        std::vector<denovomutation> rows, further;
        for (int64 j = 1; j <= nmut; ++j) {
            const std::vector<denovomutation> carriers = mergedcarriers(
                folders.front().rows[static_cast<std::size_t>(j - 1)], folders, numbers, nmerged);
            rows.push_back(carriers.front());
            further.insert(further.end(), carriers.begin() + 1, carriers.end());
        }
        rows.insert(rows.end(), further.begin(), further.end());
        writemutations(h, rows);
        writecarriers(h, numberofrows(rows, nmerged), rows);
    }
}
