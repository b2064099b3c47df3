// writebehind.h - a thread that writes a full buffer of a file while the next one is filled.
#pragma once

#include "bytebuffer.h"

#include <condition_variable>
#include <mutex>
#include <thread>

// There are two buffers, the caller's and the one that is written. A call that finds the other one
// still on its way waits. What couldn't be written shows in the next call, as an error number;
// 0 means that all before is written. An open file may have one; the file must outlive it.
class writebehind
{
  public:
    // std::system_error where no thread can be had.
    explicit writebehind(int descriptor);
    writebehind(const writebehind &) = delete;
    writebehind &operator=(const writebehind &) = delete;
    ~writebehind(); // waits

    // Takes the buffer to write its first n bytes, and gives back the other one, as large, which
    // begins with the ntail bytes behind them.
    int exchange(bytebuffer &buffer, std::size_t n, std::size_t ntail);
    int wait();

  private:
    void work();
    const int file;
    std::mutex guard; // of what stands below
    std::condition_variable changed;
    bytebuffer other;
    std::size_t nbytes = 0; // to be written
    bool ended = false;
    int error = 0;
    std::thread worker;
};
