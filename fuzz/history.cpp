// Options of a user for the coalescent simulator, which become words of a command. An input is that file.
// What was let through holds no character with a meaning to the shell.
#include "harness.h"

#include "founders/presets.h"
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    putfile("history.txt", {reinterpret_cast<const char *>(data), size});
    runsettings settings = smallsettings();
    settings.founders.pophistorymacs = "history.txt";
    orderly([&] {
        smallstate s(settings);
        std::string parameters;
        initmacscases(s, parameters);
        if (parameters.find_first_of("|&;<>()$`\\\"'*?[]#~%{}!\n") != parameters.npos) std::abort();
    });
    return 0;
}
