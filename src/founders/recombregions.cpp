#include "founders/recombregions.h"

#include "files.h"
#include "words.h"

std::vector<recombregion> readrecombregions(int64 chrom)
{
    infile in("./RecombinationSpecifications/Chromosome" + numbertext(chrom) + ".txt");
    std::vector<recombregion> regions(static_cast<std::size_t>(countlines(in)));
    for (recombregion &region : regions) {
        in.record();
        region.start = in.real();
        region.stop = in.real();
        region.proportion = in.real();
    }
    return regions;
}

bool regionsinorder(const std::vector<recombregion> &regions)
{
    for (std::size_t m = 1; m < regions.size(); ++m) {
        if (!(regions[m].start > regions[m - 1].start && regions[m].stop > regions[m - 1].stop))
            return false;
    }
    return true;
}

bool rescaleproportions(std::vector<recombregion> &regions)
{
    double sum = 0;
    for (const recombregion &region : regions) sum += region.proportion;
    if (sum == 1) return false;
    for (recombregion &region : regions) region.proportion /= sum;
    return true;
}
