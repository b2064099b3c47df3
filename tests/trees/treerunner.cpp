// treerunner - runs the cases of the stored trees (README.md), for the tests and for scripts/trees.
//   treerunner check CASE            compares the files of its runs with the stored sums, and looks
//                                    whether they follow from one another
//   treerunner tidied CASE           runs it with scripts/tidy --keep all behind each run: the files
//                                    that are left have their sums all the same
//   treerunner renew CASE            stores the sums
//   treerunner compare OLDBIN CASE   compares with the files that another build's programs leave
//   treerunner make CASE FOLDER      runs it in a new folder, to be looked at
// --anymachine as first argument leaves to the processor what setcommonmachine takes from it.
// Status 0: the same, or done; 1: another result; 2: it couldn't be told.

#include "trees/treecase.h"

#include "checkrun/checkrun.h"
#include "testsupport.h"
#include "tidy/leavings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fnmatch.h>
#include <stdexcept>
#include <sys/statvfs.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
// Where the cases run: in memory, if programs may run there and no other place is asked for. A run
// makes some 300 small files, which take a disk twice the time.
fs::path placeforruns()
{
    constexpr const char *memory = "/dev/shm";
    constexpr unsigned long enough = 200 << 20;
    struct statvfs store {
    };
    const bool fits = !std::getenv("TMPDIR") && ::access(memory, W_OK) == 0 &&
                      ::statvfs(memory, &store) == 0 && !(store.f_flag & ST_NOEXEC) &&
                      store.f_bavail * store.f_frsize > enough;
    return fits ? fs::path(memory) : fs::temp_directory_path();
}

// A new folder that is removed again.
struct temporaryfolder {
    temporaryfolder() : path((placeforruns() / "solvantotreeXXXXXX").string())
    {
        if (!mkdtemp(path.data())) throw std::runtime_error("can't make the folder " + path);
    }
    ~temporaryfolder()
    {
        std::error_code error;
        fs::remove_all(path, error);
    }
    temporaryfolder(const temporaryfolder &) = delete;
    temporaryfolder &operator=(const temporaryfolder &) = delete;
    std::string path;
};

// Those of the paths that differ: first those that the run left, as it wrote them, then those that
// it didn't leave.
std::vector<std::string> inwritingorder(const std::vector<std::string> &differing,
                                        const treeofrun &tree)
{
    std::vector<std::string> ordered;
    for (const std::string &path : tree.writingorder)
        if (std::binary_search(differing.begin(), differing.end(), path)) ordered.push_back(path);
    for (const std::string &path : differing)
        if (!tree.files.contains(path)) ordered.push_back(path);
    return ordered;
}

void printothers(const std::vector<std::string> &paths)
{
    constexpr std::size_t most = 20;
    if (paths.size() > 1) std::printf("differing too:\n");
    for (std::size_t i = 1; i < std::min(paths.size(), most); ++i)
        std::printf("  %s\n", paths[i].c_str());
    if (paths.size() > most) std::printf("  and %zu more\n", paths.size() - most);
}

// Whether the files of a run that came to its end follow from one another.
bool followstogether(const std::string &name, std::size_t nruns, const treeofrun &tree)
{
    if (tree.status != 0) return true;
    const checkrun::statements told = checkrunfolder(tree.folder);
    if (told.nviolated == 0) return true;
    std::printf("%s, run %zu: files that don't follow from one another:\n%s", name.c_str(), nruns,
                told.report().c_str());
    return false;
}

// What solvanto --check tells in a folder before a run there: its status, and the files that it
// touches, which should be none.
struct foresight {
    int status = 0;
    std::vector<std::string> touched;
};

foresight foresee(const std::string &place)
{
    const filetree before = readtree(place);
    const int status = runcommand("cd '" + place + "' && ./solvanto --check").status;
    return {status, differingpaths(before, readtree(place))};
}

bool wasforeseen(const std::string &name, std::size_t nruns, const foresight &foreseen, int status)
{
    constexpr int unreached = 110001 % 256; // how far contributions reach shows in the run alone
    const bool alike = foreseen.status == status || status == unreached;
    if (alike && foreseen.touched.empty()) return true;
    std::printf("%s, run %zu ended with status %d, and --check before it with %d", name.c_str(),
                nruns, status, foreseen.status);
    if (!foreseen.touched.empty()) std::printf("; it touched %s", foreseen.touched[0].c_str());
    std::printf("\n");
    return false;
}

bool check(const std::string &name)
{
    const std::vector<filetree> wanted = readsums(name);
    const temporaryfolder folder;
    std::size_t nruns = 0;
    bool same = true;
    foresight foreseen;
    const auto withrun = [&](const treeofrun &tree) {
        const filetree sums = sumsof(tree.files);
        const filetree none, &want = nruns < wanted.size() ? wanted[nruns] : none;
        ++nruns;
        const bool follows =
            wasforeseen(name, nruns, foreseen, tree.status) && followstogether(name, nruns, tree);
        const auto paths = inwritingorder(differingpaths(want, sums), tree);
        same = follows && paths.empty();
        if (paths.empty()) return same;
        const char *how = !want.contains(paths[0])   ? "is new"
                          : !sums.contains(paths[0]) ? "is missing"
                                                     : "differs";
        std::printf("%s, run %zu: the first file that differs from its sum:\n%s %s\n", name.c_str(),
                    nruns, paths[0].c_str(), how);
        printothers(paths);
        std::printf("scripts/trees compare %s shows the place\n", name.c_str());
        return false;
    };
    runtreecase(name, binfolder(), folder.path, withrun,
                [&](const std::string &place) { foreseen = foresee(place); });
    if (same && nruns < wanted.size()) {
        std::printf("%s: sums of %zu runs, %zu were made\n", name.c_str(), wanted.size(), nruns);
        return false;
    }
    return same;
}

bool istidied(const std::string &path)
{
    static const std::vector<leaving> table = leavingstable();
    return std::ranges::any_of(table, [&](const leaving &row) {
        return row.kind != leavingkind::packed && row.kind != leavingkind::dropped &&
               fnmatch(("*" + row.pattern).c_str(), ("/" + path).c_str(), 0) == 0;
    });
}

bool tidied(const std::string &name)
{
    const std::vector<filetree> wanted = readsums(name);
    const temporaryfolder folder;
    std::size_t nruns = 0, ngone = 0, nother = 0;
    runtreecase(name, binfolder(), folder.path, [&](const treeofrun &tree) {
        const filetree sums = sumsof(tree.files), &want = wanted.at(nruns++);
        for (const std::string &path : differingpaths(want, sums)) {
            const bool gone = !sums.contains(path) && istidied(path);
            ++(gone ? ngone : nother);
            if (!gone) std::printf("%s, run %zu: %s\n", name.c_str(), nruns, path.c_str());
        }
        if (tree.status != 0) return true;
        const commandresult tidy = runcommand(sourcefolder() + "/scripts/tidy '" + tree.folder +
                                              "' --keep all --bin '" + binfolder() + "'");
        if (tidy.status == 0) return true;
        std::printf("%s, run %zu: %s\n", name.c_str(), nruns, tidy.err.c_str());
        ++nother;
        return false;
    });
    std::printf("%s: the runs went on without %zu files\n", name.c_str(), ngone);
    return nother == 0;
}

bool renew(const std::string &name)
{
    const std::vector<filetree> before = readsums(name);
    std::vector<filetree> sums;
    const temporaryfolder folder;
    runtreecase(name, binfolder(), folder.path, [&](const treeofrun &tree) {
        sums.push_back(sumsof(tree.files));
        followstogether(name, sums.size(), tree);
        const std::string &report = tree.files.at("report.txt");
        if (!report.starts_with("status 0\n"))
            std::printf("%s, run %zu ended with %s\n", name.c_str(), sums.size(),
                        report.substr(0, report.find('\n')).c_str());
        return true;
    });
    if (sums == before) return true;
    writesums(name, sums);
    std::printf("%s: %s\n", name.c_str(), before.empty() ? "sums are new" : "sums are renewed");
    return true;
}

bool compare(const std::string &oldbin, const std::string &name)
{
    std::vector<filetree> old;
    {
        const temporaryfolder folder;
        runtreecase(name, oldbin, folder.path, [&](const treeofrun &tree) {
            old.push_back(tree.files);
            return true;
        });
    }
    const temporaryfolder folder;
    std::size_t nruns = 0;
    bool same = true;
    runtreecase(name, binfolder(), folder.path, [&](const treeofrun &tree) {
        const filetree &was = old.at(nruns++);
        const auto paths = inwritingorder(differingpaths(was, tree.files), tree);
        same = paths.empty();
        if (same) return true;
        std::printf("%s, run %zu: the first file that differs:\n%s\n", name.c_str(), nruns,
                    firstdifference(paths[0], was, tree.files).c_str());
        printothers(paths);
        return false;
    });
    if (same) std::printf("%s: all files are the same\n", name.c_str());
    return same;
}

bool make(const std::string &name, const std::string &folder)
{
    fs::create_directories(folder);
    if (!fs::is_empty(folder)) throw std::runtime_error("the folder " + folder + " is not empty");
    const std::string path = fs::canonical(folder);
    runtreecase(name, binfolder(), path, [](const treeofrun &) { return true; });
    return true;
}

bool command(std::vector<std::string> words)
{
    if (!words.empty() && words[0] == "--anymachine")
        words.erase(words.begin());
    else
        setcommonmachine();
    const std::size_t n = words.size();
    if (n == 2 && words[0] == "check") return check(words[1]);
    if (n == 2 && words[0] == "tidied") return tidied(words[1]);
    if (n == 2 && words[0] == "renew") return renew(words[1]);
    if (n == 3 && words[0] == "compare") return compare(words[1], words[2]);
    if (n == 3 && words[0] == "make") return make(words[1], words[2]);
    throw std::invalid_argument(
        "check CASE, tidied CASE, renew CASE, compare OLDBIN CASE or make CASE FOLDER");
}
} // namespace

int main(int argc, char **argv)
{
    try {
        return command({argv + 1, argv + argc}) ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "ERROR: %s\n", error.what());
        return 2;
    }
}
