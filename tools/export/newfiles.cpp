#include "newfiles.h"

#include "shell.h"
#include "stops.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace
{
std::string unfinished(const std::string &path)
{
    return path + ".unfinished";
}
} // namespace

std::string newfiles::add(const std::string &path)
{
    if (folderexists(path)) ioerror(path, "is a folder");
    if (!force && pathexists(path)) ioerror(path, "is there already: --force replaces it");
    paths.push_back(path);
    return unfinished(path);
}

void newfiles::putinplace()
{
    // An old index must never stand beside a new file.
    for (const std::string &path : paths) ::unlink(path.c_str());
    for (const std::string &path : paths)
        if (std::rename(unfinished(path).c_str(), path.c_str()) != 0)
            ioerrno(path, "can't be put in place");
    paths.clear();
}

newfiles::~newfiles()
{
    for (const std::string &path : paths) ::unlink(unfinished(path).c_str());
}

scratchfolder::scratchfolder(const std::string &prefix) : path(prefix + ".scratchXXXXXX")
{
    if (!::mkdtemp(path.data())) ioerrno(path, "can't make the folder");
}

scratchfolder::~scratchfolder()
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
}
