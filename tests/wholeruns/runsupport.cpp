#include "wholeruns/runsupport.h"

void wholerun::SetUp()
{
    infolder::SetUp();
    linkprograms(binfolder(), ".");
}

commandresult wholerun::run(const spectext &spec)
{
    spec.write();
    return runcommand("./solvanto --quiet");
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

filetree readtree()
{
    return readtree(".");
}

void expectsametree(const filetree &was, const filetree &is)
{
    for (const std::string &path : differingpaths(was, is))
        ADD_FAILURE() << firstdifference(path, was, is);
}

std::vector<std::vector<double>> numbertable(const std::string &path, int titlelines)
{
    std::vector<std::vector<double>> table;
    for (const std::string &line : readlines(path)) table.push_back(numbersof(line));
    table.erase(table.begin(), table.begin() + titlelines);
    return table;
}
