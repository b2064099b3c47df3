// What the cases of the stored trees touch, between them: all that the pages for users list.
#include "spec/keydescriptions.h"
#include "testsupport.h"
#include "trees/treecase.h"
#include "words.h"

#include <map>
#include <regex>
#include <set>

namespace
{
using names = std::set<std::string>;

// Keys of features that have no case yet. Who builds one adds a case, and takes its keys out.
const names keystocome{};

names without(names some, const names &others)
{
    std::erase_if(some, [&](const std::string &name) { return others.contains(name); });
    return some;
}

// What stands behind each key, matrix rows included.
std::map<std::string, std::string> valuesof(const spectext &spec)
{
    std::map<std::string, std::string> values;
    std::string key;
    for (const std::string &line : spec.lines) {
        if (line.find_first_of("-0123456789") == 0) {
            values[key] += line + "\n";
            continue;
        }
        key = tlc(line.substr(0, line.find_first_of(" ,")));
        const std::size_t comma = line.find(',');
        values[key] = comma == std::string::npos ? "" : line.substr(comma + 1);
    }
    return values;
}

// A path without its numbers and without the ending of a compressed file; on the page on output
// files placeholders such as <g> stand for the numbers.
std::string generalpath(const std::string &path)
{
    static const std::regex number("<[a-z]>|[1-9][0-9]*"), compressed("[.]gz$");
    return std::regex_replace(std::regex_replace(path, number, "#"), compressed, "");
}

// The headings of the page: ### `path`.
names documentedfiles()
{
    names files;
    for (const std::string &line : readlines(sourcefolder() + "/docs/output-files.md"))
        if (line.starts_with("### `"))
            files.insert(generalpath(line.substr(5, line.rfind('`') - 5)));
    return files;
}
} // namespace

TEST(storedtrees, everykeyandwordhasacase)
{
    names same, unused;
    for (const keydescription &key : keydescriptions()) {
        same.insert(tlc(key.name));
        for (const std::string &word : wordsof(key.words))
            unused.insert(tlc(key.name) + " " + tlc(word));
    }
    auto good = valuesof(smallrun());
    for (const std::string &name : treecases())
        for (const treerun &run : readtreecase(name))
            for (const auto &[key, values] : valuesof(run.spec)) {
                if (values != good[key]) same.erase(key);
                unused.erase(key + " " + tlc(values.substr(0, values.find(','))));
            }
    EXPECT_EQ(without(same, keystocome), names{}) << "have no case with a value of their own";
    EXPECT_EQ(without(keystocome, same), names{}) << "have one by now: take them from keystocome";
    std::erase_if(unused, [](const std::string &entry) {
        return keystocome.contains(entry.substr(0, entry.find(' ')));
    });
    EXPECT_EQ(unused, names{}) << "are words that no case uses";
}

// No file undocumented, and none documented that no case leaves.
TEST(storedtrees, everydocumentedfilehasasum)
{
    names left;
    for (const std::string &name : treecases()) {
        names folders;
        for (const treerun &run : readtreecase(name)) folders.insert(run.folder + "/");
        for (const filetree &sums : readsums(name))
            for (const auto &[path, sum] : sums) {
                std::string within = path;
                for (const std::string &folder : folders)
                    if (path.starts_with(folder)) within = path.substr(folder.size());
                left.insert(generalpath(within));
            }
    }
    left.erase("report.txt");
    EXPECT_EQ(without(left, documentedfiles()), names{}) << "are on no page";
    EXPECT_EQ(without(documentedfiles(), left), names{}) << "are left by no case";
}
