#include "spec/keydescriptions.h"
#include "spec/readinparameters.h"
#include "spec/speciestable.h"
#include "spec/specreader.h"
#include "specsupport.h"
#include "testsupport.h"
#include "words.h"

#include <algorithm>
#include <cstdio>
#include <regex>
#include <sstream>

// The page on the specification file is true.
class specdocs : public infolder
{
  protected:
    const std::vector<std::string> page = readlines(sourcefolder() + "/docs/spec-file.md");
};

namespace
{
// Size of a preset's population so many generations back: options -eN give times in units of 4 Ne
// generations, and sizes relative to Ne.
double sizebefore(const speciesrow &preset, double generations)
{
    const auto ne = static_cast<double>(preset.effecpopsize);
    std::istringstream options(preset.additionalmacsparams);
    double size = ne, time, relative;
    for (std::string option; options >> option >> time >> relative && time * 4 * ne <= generations;)
        size = relative * ne;
    return size;
}

std::string presetline(const std::string &name)
{
    const speciesrow &preset = *findspecies(name);
    const auto bases = static_cast<double>(preset.chrlengthbases);
    char line[200];
    std::snprintf(line, sizeof line,
                  "| `%s` | %.0f | %.0f | %.0f | %.0f | %.0f | %.0f | %.3g | %.3g | %.3g |",
                  name.c_str(), sizebefore(preset, 0), sizebefore(preset, 100),
                  sizebefore(preset, 1000), sizebefore(preset, 10000), sizebefore(preset, 100000),
                  bases, static_cast<double>(preset.morgans),
                  static_cast<double>(preset.ratefactor) / bases,
                  static_cast<double>(preset.morgans) / bases);
    return line;
}
} // namespace

// Its tables are those of the keys as the program describes them, and its example is accepted and
// holds every key.
TEST_F(specdocs, tellthekeysoftheprogram)
{
    const std::string check =
        "SOLVANTO_BIN=" + binfolder() + " " + sourcefolder() + "/scripts/keytables --check";
    EXPECT_EQ(std::system(check.c_str()), 0);

    std::vector<std::string> keysinexample, names;
    for (const std::string &line : documentedspec().lines) {
        const std::string name = tlc(line.substr(0, line.find(',')));
        if (findkey(name)) keysinexample.push_back(name);
    }
    for (const speckey &key : allspeckeys()) names.emplace_back(key.name);
    std::sort(keysinexample.begin(), keysinexample.end());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(keysinexample, names);

    documentedspec().write();
    runsettings s;
    const outcome result = runbody([&] { s = readinparameters(); });
    EXPECT_EQ(result.code(), 0) << result.output;
    EXPECT_EQ(result.output.find("ERROR"), std::string::npos) << result.output;
}

// The presets that the program has, and what they stand for; no key of the page is misspelt, and
// there are twenty for a first study.
TEST_F(specdocs, tellpresetsandnames)
{
    std::vector<std::string> presets, wanted, firststudy;
    const std::regex preset("Internal[A-Z][A-Za-z]*"), code("`([A-Za-z0-9]{12,})`");
    const std::string bounds = describekey("PopulationHistoryMaCS")->bounds;
    for (std::sregex_iterator i(bounds.begin(), bounds.end(), preset), end; i != end; ++i)
        wanted.push_back(presetline(i->str()));
    std::string words, section;
    for (const keydescription &key : keydescriptions()) words += std::string(key.words) + " ";
    for (const std::string &line : page) {
        if (line.starts_with("## ")) section = line;
        if (line.starts_with("| `Internal")) presets.push_back(line);
        for (std::sregex_iterator i(line.begin(), line.end(), code), end; i != end; ++i) {
            const std::string name = (*i)[1];
            EXPECT_TRUE(describekey(name) || findspecies(name) ||
                        words.find(name) != std::string::npos)
                << name;
            if (section == "## Twenty keys for a first study") firststudy.push_back(name);
        }
    }
    EXPECT_EQ(presets, wanted);
    EXPECT_EQ(firststudy.size(), 20U);
}
