// runlock.h - one run in a folder.
#pragma once

#include "descriptors.h"

#include <string>

// Locks the file until this process and all that it has started have ended. An I/O error that names
// the folder and the process when another run holds it. Where there is no such file, or the file
// system knows no locks, there is none to take.
filedescriptor lockrun(const std::string &path);
