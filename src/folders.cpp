#include "folders.h"

#include "stops.h"
#include "textlayout.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

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

bool readfolder(const std::string &path, std::vector<std::string> &names)
{
    names.clear();
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(path.c_str()), closedir);
    if (!folder) return false;
    errno = 0;
    while (const dirent *const entry = readdir(folder.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
        errno = 0;
    }
    const int error = errno;
    std::sort(names.begin(), names.end());
    errno = error;
    return error == 0;
}

void refuselinks(const std::string &path)
{
    std::vector<std::string> names;
    readfolder(path, names);
    for (std::string &name : names) name.insert(0, path + "/");
    names.insert(names.begin(), path);
    for (const std::string &link : names) {
        std::error_code error;
        if (fs::is_symlink(link, error))
            ioerror(link,
                    "is a symbolic link, and a run writes into folders of its own: remove the "
                    "link, or run where it points to");
    }
}

bool isemptyfolder(const std::string &path)
{
    std::vector<std::string> names;
    if (!readfolder(path, names) && errno != ENOENT) ioerrno(path, "can't open for reading");
    return names.empty();
}
