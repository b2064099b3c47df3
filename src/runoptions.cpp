#include "runoptions.h"

#include <cstdio>
#include <string>

void warn(const runoptions &options, std::string_view file, int64 line, std::string_view text)
{
    if (options.quiet) return;
    std::string message = "WARNING: ";
    if (!file.empty()) message += file;
    if (!file.empty() && line > 0) message += ':' + std::to_string(line);
    if (!file.empty()) message += ": ";
    // Lines on standard output that belong to it stand before it where both go to one file.
    std::fflush(stdout);
    std::fprintf(stderr, "%s%.*s\n", message.c_str(), static_cast<int>(text.size()), text.data());
}
