// runsupport.h - whole runs of the program in a test's folder, and the trees that they leave.
#pragma once

#include "filetree.h"
#include "specsupport.h"
#include "testsupport.h"

// A test that runs the program in its empty folder.
class wholerun : public infolder
{
  protected:
    void SetUp() override;
    // Writes the specification, and the seed where one is given, and runs the program.
    commandresult run(const spectext &spec);
    commandresult run(const spectext &spec, int64 seed);
    // The same for a run that must come to its end.
    void mustrun(const spectext &spec);
    void mustrun(const spectext &spec, int64 seed);
};

// The files of the working folder.
filetree readtree();
// Fails with the first difference of every file that differs.
void expectsametree(const filetree &was, const filetree &is);

// A table of numbers: the words of a file's lines behind its title lines.
std::vector<std::vector<double>> numbertable(const std::string &path, int titlelines = 0);
