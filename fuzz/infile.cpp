// Records and free-form values. An input is a byte that says how the lines are read, then the file.
#include "harness.h"

#include "files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) return 0;
    putfile("file.txt", {reinterpret_cast<const char *>(data) + 1, size - 1});
    orderly([&] {
        infile in("file.txt");
        double reals[3];
        int8 alleles[40];
        while (in.nextrecord()) {
            switch (data[0] % 6) {
            case 0:
                in.integer();
                break;
            case 1:
                in.real();
                break;
            case 2:
                in.word();
                break;
            case 3:
                in.reals(reals, 3);
                break;
            case 4:
                in.alleles(alleles, 40);
                break;
            default:
                in.skipwords(3);
            }
        }
        in.rewind();
        in.record();
    });
    orderly([&] {
        recordfile in;
        in.open("file.txt");
        for (int64 n = 1 + data[0] / 6; n > 0; --n) in.line(n);
    });
    return 0;
}
