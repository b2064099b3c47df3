// Framed binary records. An input is two bytes that make the length wanted, then the file.
#include "harness.h"

#include "files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2) return 0;
    const int64 wanted = data[0] + 256 * data[1];
    putfile("file.bin", {reinterpret_cast<const char *>(data) + 2, size - 2});
    orderly([&] { framereader("file.bin").recordlength(); });
    orderly([&] {
        framereader in("file.bin");
        std::vector<char> bytes(static_cast<std::size_t>(wanted) + 1);
        for (;;) {
            in.begin(wanted);
            in.get(bytes.data(), wanted / 2);
            in.show(wanted - wanted / 2, [](const char *) {});
            in.finish();
        }
    });
    return 0;
}
