// descriptors.h - open files as the system numbers them: what the classes of files.h stand on.
//
// A failure ends the run with an I/O error that names the file and the reason.
#pragma once

#include <string>
#include <utility>

// Of a file being read or written. Fuzzers take a small one, whose end short inputs reach.
#ifdef SOLVANTO_SMALLBUFFERS
constexpr std::size_t buffersize = 1 << 9;
#else
constexpr std::size_t buffersize = 1 << 20;
#endif

// The number of an open file, which is closed with it unless it is taken out; -1 for none.
class filedescriptor
{
  public:
    filedescriptor() = default;
    explicit filedescriptor(int opened) : number(opened) {}
    filedescriptor(filedescriptor &&other) noexcept : number(other.release()) {}
    filedescriptor &operator=(filedescriptor other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }
    ~filedescriptor() { close(); }

    operator int() const { return number; }
    bool isopen() const { return number >= 0; }
    void close();
    int release() { return std::exchange(number, -1); }

  private:
    int number = -1;
};

// Opens a file, made if flags say so; for reading or for writing by them.
filedescriptor openchecked(const std::string &path, int flags);
// Bytes read, 0 at the end of the file.
std::size_t readchecked(int descriptor, const std::string &path, char *bytes, std::size_t n);
// Writes all bytes, in as many pieces as the system takes them. 0, or the number of the error.
int writebytes(int descriptor, const char *bytes, std::size_t n);
