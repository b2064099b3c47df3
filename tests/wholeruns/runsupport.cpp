#include "wholeruns/runsupport.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace
{
const std::set<std::string> programs{"solvanto",    "macs",     "Vintrecaskelle", "Quillomere",
                                     "QuillomereP", "Brenvask", "Corvalind"};
}

void wholerun::SetUp()
{
    infolder::SetUp();
    for (const std::string &program : programs)
        fs::create_symlink(binfolder() + "/" + program, program);
}

commandresult wholerun::run(const spectext &spec)
{
    spec.write();
    return runcommand("./solvanto");
}

commandresult wholerun::run(const spectext &spec, int64 seed)
{
    writefile("Seed.txt", std::to_string(seed) + "\n");
    return run(spec);
}

void wholerun::mustrun(const spectext &spec)
{
    const commandresult result = run(spec);
    ASSERT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.find("failure"), std::string::npos) << result.out;
}

void wholerun::mustrun(const spectext &spec, int64 seed)
{
    writefile("Seed.txt", std::to_string(seed) + "\n");
    mustrun(spec);
}

spectext smallrun()
{
    return goodspec()
        .set("NumberOfHaplotypes", "40")
        .set("ChromosomeLengthBasesMaCS", "External,10000000")
        .set("ChromosomeLengthMorgansMaCS", "External,1.0")
        .set("ChromosomeLengthMorgansSolvanto", "External,1.0")
        .set("MutationRateMaCS", "External,2.5e-8")
        .set("EffectivePopulationSizeBaseMaCS", "External,100");
}

filetree readtree()
{
    filetree tree;
    for (const auto &entry : fs::recursive_directory_iterator(".")) {
        const std::string path = entry.path().lexically_normal().string();
        if (entry.is_regular_file() && !programs.contains(entry.path().filename().string()))
            tree[path] = readfile(path);
    }
    return tree;
}

namespace
{
std::string firstdifference(const std::string &was, const std::string &is)
{
    std::size_t at = 0;
    while (at < was.size() && at < is.size() && was[at] == is[at]) ++at;
    const std::size_t linestart = at == 0 ? 0 : was.rfind('\n', at - 1) + 1;
    const auto line = std::count(was.begin(), was.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    return "line " + std::to_string(line + 1) + ", column " + std::to_string(at - linestart + 1) +
           " (" + std::to_string(was.size()) + " and " + std::to_string(is.size()) + " bytes)";
}
} // namespace

void expectsametree(const filetree &was, const filetree &is)
{
    for (const auto &[path, content] : was) {
        const auto other = is.find(path);
        if (other == is.end())
            ADD_FAILURE() << path << " is missing";
        else if (other->second != content)
            ADD_FAILURE() << path << ": " << firstdifference(content, other->second);
    }
    for (const auto &[path, content] : is)
        if (!was.contains(path)) ADD_FAILURE() << path << " is new";
}

std::vector<std::vector<double>> numbertable(const std::string &path, int titlelines)
{
    std::vector<std::vector<double>> table;
    for (const std::string &line : readlines(path)) table.push_back(numbersof(line));
    table.erase(table.begin(), table.begin() + titlelines);
    return table;
}
