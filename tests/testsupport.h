// testsupport.h - what tests share: an empty folder of their own, files, captured output, stops,
// and running the programs.
#pragma once

#include "stops.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// A test that works in an empty folder, which is the working directory while it runs and is
// removed behind it.
class infolder : public ::testing::Test
{
  protected:
    void SetUp() override;
    void TearDown() override;
    std::string folder;

  private:
    std::string before;
};

void writefile(const std::string &path, const std::string &content);
std::string readfile(const std::string &path);
std::vector<std::string> readlines(const std::string &path);
// Whitespace-separated words of a line, and the same as numbers.
std::vector<std::string> wordsof(const std::string &line);
std::vector<double> numbersof(const std::string &line);

// What a body printed on standard output, and how it stopped.
struct outcome {
    bool stoppedearly = false;
    stopped stop;
    std::string output;
    // The code of a stop with a code; -1 for a plain stop, -2 for an I/O error, 0 for none.
    int64 code() const;
};
outcome runbody(const std::function<void()> &body);

// A command of the shell, its exit status and its two outputs.
struct commandresult {
    int status = 0;
    std::string out, err;
};
commandresult runcommand(const std::string &command);

// Folder of the built programs, and of the sources.
std::string binfolder();
std::string sourcefolder();
