// runlock.h - one run in a folder.
#pragma once

#include "descriptors.h"
#include "runoptions.h"

#include <string>

// Locks the file until this process and all that it has started have ended. An I/O error that names
// the folder and the process when another run holds it. Where there is no such file there is none to
// take; where the system gives none, as on a network disk without locks, a warning says so.
filedescriptor lockrun(const runoptions &options, const std::string &path);
// The same for who only reads what runs have left: any number of them, but no run beside them.
filedescriptor lockreading(const runoptions &options, const std::string &path);
