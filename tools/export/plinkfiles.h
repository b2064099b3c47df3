// plinkfiles.h - the files of plink: .bed, .bim, .fam, and by plink2 itself .pgen, .pvar, .psam.
//
// .bed counts allele T (coded 1), which stands first in .bim; A, the reference, second. A parent
// has the sex of its role in the pedigree; who has both roles is of unknown sex; all others have
// the gender that the run gave them.
#pragma once

#include "variantfiles.h"

#include <string>
#include <vector>

// individuals: of the samples. Both give the number of sites.
int64 writeplink(const exportjob &job, const std::vector<int64> &individuals, newfiles &files);
// A plain stop with status 2 where plink2 isn't there or fails, which shows its message.
int64 writepgen(const exportjob &job, const std::vector<int64> &individuals, newfiles &files);
