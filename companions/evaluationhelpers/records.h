// records.h - reading files line by line where each line holds one record, no more and no less.
#pragma once

#include "files.h"

#include <string>

// To be called when the values of a record are read: an I/O error that names firstline, the line
// on which the record began, if reading ran on into another line or left something behind.
void stopifnotwholeline(const infile &in, int64 firstline, const std::string &wanted);
// An I/O error if another line follows that isn't blank: n records are announced.
void stopifmorelines(infile &in, int64 n);
