// The command line of macs. An input is its words, one a line.
#include "harness.h"

#include "macs/options.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::vector<std::string> words(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n')
            words.emplace_back();
        else if (data[i] != 0)
            words.back() += static_cast<char>(data[i]);
    }
    orderly([&] { macs::sizehistory(macs::readoptions(words).sizechanges); });
    return 0;
}
