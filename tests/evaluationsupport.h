// evaluationsupport.h - genotype files and dense matrices, for the tests of the evaluation
// programs.
#pragma once

#include "textlayout.h"

#include <string>
#include <vector>

using genotyperows = std::vector<std::vector<int>>; // individuals x SNPs, 9 missing

inline std::string genotypetext(const genotyperows &rows, int64 firstid)
{
    std::string text;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        puti(text, firstid + static_cast<int64>(i), 20);
        for (const int g : rows[i]) puti(text, g, 2);
        text += '\n';
    }
    return text;
}

using densematrix = std::vector<std::vector<double>>;
