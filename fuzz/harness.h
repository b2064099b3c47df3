// harness.h - what the fuzzers share: files for the reader under test, and its orderly stops.
#pragma once

#include "runoptions.h"
#include "spec/readinparameters.h"
#include "state.h"
#include "stops.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Writes a file below the fuzzer's own folder, which lies in memory and is its working directory.
// Folders on the way are made. A path of an earlier call costs no more than the write.
void putfile(const std::string &path, std::string_view content);

// The parts of an input that stand for several files: what lies between lines "%%%", n of them,
// the last ones empty where there are fewer.
std::vector<std::string_view> partsof(const std::uint8_t *data, std::size_t size, std::size_t n);

// The settings of the small specification of tests/faults.
const runsettings &smallsettings();

struct ownedsettings {
    runsettings owned;
};
// A state made of settings of its own.
struct smallstate : private ownedsettings, state {
    explicit smallstate(const runsettings &given) : ownedsettings{given}, state(owned) {}
};

// Runs what is tested. An orderly stop and no memory are fine; all else that is thrown is not.
template <class tested> void orderly(tested &&body)
{
    try {
        body();
    } catch (const stopped &) {
    } catch (const std::bad_alloc &) {
    }
}
