// descriptors.h - open files as the system numbers them: what the classes of files.h stand on.
//
// A failure ends the run with an I/O error that names the file and the reason.
#pragma once

#include <string>

constexpr std::size_t buffersize = 1 << 20;

// Opens a file, made if flags say so; for reading or for writing by them. Gives its descriptor.
int openchecked(const std::string &path, int flags);
// Bytes read, 0 at the end of the file.
std::size_t readchecked(int descriptor, const std::string &path, char *bytes, std::size_t n);
