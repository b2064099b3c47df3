// stops.h - the ways in which a program of this system ends before its time.
//
// Every stop is thrown from where it is met and turned into an exit status at one place,
// runtostop. A test catches the thrown record instead.
#pragma once

#include "arrays.h"

#include <functional>
#include <string>
#include <string_view>

// What a stop throws. Messages stand on standard output by then.
struct stopped {
    enum class kinds { withcode, plain, ioerror };
    kinds kind = kinds::plain;
    int64 code = 0;     // of a stop with a code
    int status = 1;     // exit status of a plain stop
    std::string reason; // of an I/O error: "file: reason", for standard error
};

// Ends the run with a numeric code: "STOP <code>" on standard error, exit status code modulo
// 256, 1 where that would be 0.
[[noreturn]] void stopwithcode(int64 code);
// Ends the run with no code: exit status 1 after an error, 0 after a job well done.
[[noreturn]] void plainstop(int status = 1);
// Ends the run with one line on standard error that names the file and the reason; status 2.
[[noreturn]] void ioerror(std::string_view path, std::string_view reason);
// The same with the system's text for errno.
[[noreturn]] void ioerrno(std::string_view path, std::string_view doing);

// Prints on standard error what a run says at its end behind this stop, and gives the exit status.
int reportstop(const stopped &stop);

// Runs the program's body, and gives the exit status. Standard output is flushed and checked at
// the end, so that a report cut short by a full disk is an I/O error too.
int runtostop(const std::function<void()> &body);
