#include "macs/recombinationrates.h"

#include "files.h"
#include "stops.h"
#include "words.h"

#include <cmath>

namespace macs
{
double recombinationrates::positionbeyond(double position, double geneticlength)
{
    for (; current < pieces.size(); ++current) {
        const rateregion &piece = pieces[current];
        const double available = (piece.stop - position) * piece.ratio;
        if (geneticlength < available) return position + geneticlength / piece.ratio;
        geneticlength -= available;
        position = piece.stop;
    }
    return 1;
}

recombinationrates ratesfromregions(const std::vector<rateregion> &regions)
{
    recombinationrates rates;
    rates.pieces.clear();
    double covered = 0;
    for (const rateregion &region : regions) {
        if (region.start > covered) rates.pieces.push_back({covered, region.start, 1});
        rates.pieces.push_back(region);
        covered = region.stop;
    }
    if (covered < 1) rates.pieces.push_back({covered, 1, 1});
    return rates;
}

namespace
{
constexpr std::size_t fieldwidth = 12;

std::vector<std::string> fieldsof(std::string_view line)
{
    std::vector<std::string> fields;
    for (std::size_t i = 0; i < line.size();) {
        const std::size_t first = line.find_first_not_of(" \t", i);
        if (first == std::string_view::npos) break;
        i = std::min(line.find_first_of(" \t", first), line.size());
        fields.emplace_back(line.substr(first, i - first));
    }
    if (fields.size() >= 1 && fields.size() < 3 && line.size() == 3 * fieldwidth) {
        fields.clear();
        for (std::size_t f = 0; f < 3; ++f)
            fields.emplace_back(trim(line.substr(f * fieldwidth, fieldwidth)));
    }
    return fields;
}

rateregion readregion(const infile &in, const std::vector<std::string> &fields)
{
    double value[3];
    if (fields.size() != 3) in.complain("a region wants three numbers: start, stop and ratio");
    for (std::size_t f = 0; f < 3; ++f)
        if (!readreal(fields[f], value[f]) || !std::isfinite(value[f]))
            in.complain("a region wants three numbers, start, stop and ratio, and \"" + fields[f] +
                        "\" is none");
    return {value[0], value[1], value[2]};
}
} // namespace

// Beyond it a chromosome recombines without end. The hottest hotspots known have some thousands.
constexpr double highestratio = 1e6;

std::vector<rateregion> readregions(const std::string &path)
{
    infile in(path);
    std::vector<rateregion> regions;
    double covered = 0;
    while (in.nextrecord()) {
        const std::vector<std::string> fields = fieldsof(in.line());
        if (fields.empty()) continue;
        const rateregion region = readregion(in, fields);
        if (region.start < 0 || region.stop > 1)
            in.complain("start and stop of a region are fractions of the chromosome, from 0 to 1");
        if (!(region.start < region.stop)) in.complain("a region must stop behind its start");
        if (region.ratio > highestratio)
            in.complain("the ratio of a region is beyond all that is known: at most 1000000");
        if (region.ratio < 0) in.complain("the ratio of a region must not be negative");
        if (region.start < covered)
            in.complain("regions must stand in rising order and must not overlap");
        covered = region.stop;
        regions.push_back(region);
    }
    if (regions.empty()) ioerror(path, "holds no region");
    return regions;
}
} // namespace macs
