// recombinationrates.h - recombination rates along the chromosome, from the file of regions.
//
// Units: positions are fractions of the chromosome, 0 to 1; a ratio is relative to the rate that
// was given for the chromosome. Genetic length is the integral of the ratio over positions: 1 for
// the whole chromosome where no region was given.
//
// File of regions: one region a line, start, stop and ratio, separated by blanks or tabs; lines
// without content are passed over. Regions stand in rising order and don't overlap; where none
// lies the ratio is 1. A line of exactly 36 columns may also hold its three numbers in three fields
// of 12 columns with no blank between them, as a fixed layout leaves it when a ratio needs the
// whole of its field (100 and above).
#pragma once

#include "arrays.h"

#include <string>
#include <vector>

namespace macs
{
struct rateregion {
    double start = 0, stop = 1, ratio = 1;
};

// Pieces that cover 0 to 1 without gaps, in order.
struct recombinationrates {
    std::vector<rateregion> pieces{rateregion{}};
    std::size_t current = 0; // piece of the last position asked for

    // The position a genetic length beyond another position; 1 where the chromosome ends before.
    // Positions are asked for in rising order, so that the walk through the pieces goes on.
    double positionbeyond(double position, double geneticlength);
    // Back to the start of the chromosome.
    void rewind() { current = 0; }
};

// The rates that regions make, the gaps filled. The regions are in order.
recombinationrates ratesfromregions(const std::vector<rateregion> &regions);
// Reads and judges a file of regions. Stops: an I/O error that names the file, and the line, when
// it is missing, holds no region, or a region is unreadable, without length, outside 0 to 1, of
// negative ratio, or not behind the one before.
std::vector<rateregion> readregions(const std::string &path);
} // namespace macs
