#include "spec/speciestable.h"

#include "words.h"

namespace
{
// Sizes of the population back in time: time in units of 4 Ne generations, size relative to Ne.
// clang-format off
constexpr char cattlehistory[] =
    "-eN    0.06    2.0 -eN    0.13    3.0 -eN    0.25    5.0 -eN    0.50    7.0 "
    "-eN    0.75    9.0 -eN    1.00   11.0 -eN    1.25   12.5 -eN    1.50   13.0 "
    "-eN    1.75   13.5 -eN    2.00   14.0 -eN    2.25   14.5 -eN    2.50   15.0 "
    "-eN    5.00   20.0 -eN    7.50   25.0 -eN   10.00   30.0 -eN   12.50   35.0 "
    "-eN   15.00   40.0 -eN   17.50   45.0 -eN   20.00   50.0 -eN   22.50   55.0 "
    "-eN   25.00   60.0 -eN   50.00   70.0 -eN  100.00   80.0 -eN  150.00   90.0 "
    "-eN  200.00  100.0 -eN  250.00  120.0 -eN  500.00  200.0 -eN 1000.00  400.0 "
    "-eN 1500.00  600.0 -eN 2000.00  800.0 -eN 2500.00 1000.0";
constexpr char rabbithistory[] =
    "-eN 0.05    1.25 -eN 0.08    1.50 -eN 0.10    1.75 -eN 0.13    2.00 "
    "-eN 0.15    2.25 -eN 0.18    2.50 -eN 0.20    2.75 -eN 0.23    3.00 "
    "-eN 0.25    3.25 -eN 0.50    4.00 -eN 1.00    5.00 -eN 1.50    6.00 "
    "-eN 2.00    7.00 -eN 2.50    8.00 -eN 3.00   90.00 -eN 3.50   10.00 "
    "-eN 4.00   11.00 -eN 4.50   12.00 -eN 5.00 1000.00";
constexpr char maizehistory[] =
    "-eN 0.03   1 -eN 0.05   2 -eN 0.10   4 -eN 0.15   6 "
    "-eN 0.20   8 -eN 0.25  10 -eN 0.30  12 -eN 0.35  14 "
    "-eN 0.40  16 -eN 0.45  18 -eN 0.50  20 -eN 2.00  40 "
    "-eN 3.00  60 -eN 4.00  80 -eN 5.00 100";
constexpr char maizelandracehistory[] =
    "-eN  0.03    1 -eN  0.05    2 -eN  0.10    4 -eN  0.15    6 "
    "-eN  0.20    8 -eN  0.25   10 -eN  0.30   12 -eN  0.35   14 "
    "-eN  0.40   16 -eN  0.45   18 -eN  0.50   20 -eN  2.00   40 "
    "-eN  3.00   60 -eN  4.00   80 -eN  5.00  100 -eN  6.00  120 "
    "-eN  7.00  140 -eN  8.00  160 -eN  9.00  180 -eN 10.00  200 "
    "-eN 12.50  400 -eN 15.00  600 -eN 17.50  800 -eN 20.00 1000 "
    "-eN 22.50 1200 -eN 25.00 1400 -eN 27.50 1600 -eN 30.00 2000";
constexpr char wheathistory[] =
    "-eN   0.03   1 -eN   0.05   2 -eN   0.10   4 -eN   0.15   6 "
    "-eN   0.20   8 -eN   0.25  10 -eN   0.30  12 -eN   0.35  14 "
    "-eN   0.40  16 -eN   0.45  18 -eN   0.50  20 -eN   1.00  40 "
    "-eN   2.00  60 -eN   3.00  80 -eN   4.00 100 -eN   5.00 120 "
    "-eN  10.00 140 -eN  20.00 160 -eN  30.00 180 -eN  40.00 200 "
    "-eN  50.00 240 -eN 100.00 320 -eN 200.00 400 -eN 300.00 480 "
    "-eN 400.00 560 -eN 500.00 640";
// clang-format on

constexpr speciesrow species[] = {
    {"internaltest", 100, 100000000, 1.0f, 2.5f, "", nullptr},
    {"internalcattle", 100, 100000000, 1.0f, 2.5f, cattlehistory, nullptr},
    {"internalpig", 100, 14, 1.71f, 1.6f, "",
     "TODO: need to find Ne values in the past for pig!!!"},
    {"internalchicken", 70, 300000000, 0.84f, 2.5f, "",
     "TODO: need to find Ne values in the past for chicken!!!"},
    {"internalrabbit", 100, 159000000, 1.36f, 1.74f, rabbithistory, nullptr},
    {"internalmaize", 100, 200000000, 2.0f, 2.5f, maizehistory, nullptr},
    {"internalmaizelandrace", 100, 200000000, 2.0f, 2.5f, maizelandracehistory, nullptr},
    {"internalwheat", 50, 800000000, 1.43f, 1.6f, wheathistory, nullptr},
};
} // namespace

const speciesrow *findspecies(std::string_view pophistorymacs)
{
    const std::string name = parsestringwindows(pophistorymacs);
    for (const speciesrow &row : species)
        if (name == row.name) return &row;
    return nullptr;
}
