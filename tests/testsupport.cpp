#include "testsupport.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

void infolder::SetUp()
{
    before = fs::current_path().string();
    std::string pattern = (fs::temp_directory_path() / "solvantotestXXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    fs::current_path(folder);
}

void infolder::TearDown()
{
    fs::current_path(before);
    std::error_code error;
    fs::remove_all(folder, error);
}

void writefile(const std::string &path, const std::string &content)
{
    const fs::path parent = fs::path(path).parent_path();
    if (!parent.empty()) fs::create_directories(parent);
    std::ofstream(path, std::ios::binary) << content;
}

std::string readfile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

std::vector<std::string> readlines(const std::string &path)
{
    std::istringstream in(readfile(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::vector<std::string> wordsof(const std::string &line)
{
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}

std::vector<double> numbersof(const std::string &line)
{
    std::vector<double> numbers;
    for (const std::string &word : wordsof(line))
        numbers.push_back(std::strtod(word.c_str(), nullptr));
    return numbers;
}

int64 outcome::code() const
{
    if (!stoppedearly) return 0;
    if (stop.kind == stopped::kinds::withcode) return stop.code;
    return stop.kind == stopped::kinds::plain ? -1 : -2;
}

outcome runbody(const std::function<void()> &body)
{
    outcome result;
    testing::internal::CaptureStdout();
    try {
        body();
    } catch (const stopped &stop) {
        result.stoppedearly = true;
        result.stop = stop;
    }
    result.output = testing::internal::GetCapturedStdout();
    return result;
}

commandresult runcommand(const std::string &command)
{
    std::string pattern = (fs::temp_directory_path() / "solvantorunXXXXXX").string();
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    const fs::path streams = pattern;
    const std::string out = (streams / "out").string(), err = (streams / "err").string();
    const int status =
        std::system(("( " + command + " ) >" + out + " 2>" + err + " </dev/null").c_str());
    commandresult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = readfile(out);
    result.err = readfile(err);
    fs::remove_all(streams);
    return result;
}

std::string binfolder()
{
    return SOLVANTO_BINFOLDER;
}
std::string sourcefolder()
{
    return SOLVANTO_SOURCEFOLDER;
}
