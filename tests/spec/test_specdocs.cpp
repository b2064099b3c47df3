#include "spec/readinparameters.h"
#include "spec/specreader.h"
#include "specsupport.h"
#include "testsupport.h"
#include "words.h"

#include <algorithm>

// The page for users lists the keys of the program with their stop codes, box by box, and its
// example is accepted and holds every key.
class specdocs : public infolder
{
};

TEST_F(specdocs, tellthekeysoftheprogram)
{
    std::vector<std::string> listed, wanted, keysinexample, names;
    for (const std::string &line : readlines(sourcefolder() + "/docs/spec-file.md")) {
        if (!line.starts_with("| `")) continue;
        const std::string key = line.substr(3, line.find('`', 3) - 3);
        const std::size_t cell = line.rfind('|', line.size() - 2);
        listed.push_back(tlc(key) + " " + wordsof(line.substr(cell + 1)).at(0));
    }
    for (const std::string &line : documentedspec().lines) {
        const std::string name = tlc(line.substr(0, line.find(',')));
        if (findkey(name)) keysinexample.push_back(name);
    }
    for (const speckey &key : allspeckeys()) {
        wanted.push_back(key.name + (" " + numbertext(key.code)));
        names.emplace_back(key.name);
    }
    std::sort(keysinexample.begin(), keysinexample.end());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(listed, wanted);
    EXPECT_EQ(keysinexample, names);

    documentedspec().write();
    runsettings s;
    const outcome result = runbody([&] { s = readinparameters(); });
    EXPECT_EQ(result.code(), 0) << result.output;
    EXPECT_EQ(result.output.find("ERROR"), std::string::npos) << result.output;
}
