#include "folders.h"

#include "stops.h"
#include "textlayout.h"

#include <cerrno>
#include <dirent.h>
#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

// The library's iterators end the program by a signal where memory is missing.
using openfolder = std::unique_ptr<DIR, int (*)(DIR *)>;

bool makefolder(const std::string &path, std::string_view routine, commandfailures &failures)
{
    std::error_code error;
    if (fs::create_directory(path, error)) return true;
    printline("failure : Solvanto : " + std::string(routine));
    notefailure(failures, "the folder " + path + " could not be made: " +
                              (error ? error.message() : std::string("there is one")));
    return false;
}

void removefolder(const std::string &path, std::string_view routine)
{
    if (!folderexists(path)) return;
    std::error_code error;
    fs::remove_all(path, error);
    if (!error) return;
    printline("failure : Solvanto : " + std::string(routine));
    ioerror(path, "what an earlier run left could not be removed: " + error.message());
}

void refuselinks(const std::string &path)
{
    const auto refuse = [](const std::string &link) {
        ioerror(link,
                "is a symbolic link, and a run writes into folders of its own: remove the link, "
                "or run where it points to");
    };
    std::error_code error;
    if (fs::is_symlink(path, error)) refuse(path);
    const openfolder folder(opendir(path.c_str()), closedir);
    while (const dirent *entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string inside = path + "/" + entry->d_name;
        if (fs::is_symlink(inside, error)) refuse(inside);
    }
}

bool isemptyfolder(const std::string &path)
{
    const openfolder folder(opendir(path.c_str()), closedir);
    if (!folder) {
        if (errno == ENOENT) return true;
        ioerrno(path, "can't open for reading");
    }
    const auto isentry = [](const dirent &entry) {
        const std::string_view name = entry.d_name;
        return name != "." && name != "..";
    };
    while (const dirent *entry = readdir(folder.get()))
        if (isentry(*entry)) return false;
    return true;
}
