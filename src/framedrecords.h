// framedrecords.h - binary files of framed records: writing and reading them.
//
// A failure ends the run with an I/O error that names the file and the reason (see stops.h).
#pragma once

#include "bytebuffer.h"
#include "descriptors.h"
#include "outfile.h"

#include <string>
#include <vector>

// Framed binary records: the length in bytes as a 32-bit little-endian integer before and after
// the data. A record above the limit goes on in sub-records: a negative leading length says that
// the record goes on in another frame, a negative trailing length that it continues an earlier.
constexpr int64 framelimit = 2147483639;

// Writes one record of a known total length piece by piece.
class framewriter
{
  public:
    // limit is the longest frame; only tests give another one than framelimit.
    framewriter(outfile &file, int64 nbytes, int64 limit = framelimit);
    void put(const void *bytes, int64 n);
    // The next n bytes of the record, made by make(char *to) in the file's buffer, without a copy
    // where they lie in one frame.
    template <class maker> void putmade(int64 n, maker make)
    {
        if (n <= inframe) {
            make(out.reserve(static_cast<std::size_t>(n)));
            out.commit(static_cast<std::size_t>(n));
            inframe -= n;
            remaining -= n;
        } else {
            std::vector<char> bytes(static_cast<std::size_t>(n));
            make(bytes.data());
            put(bytes.data(), n);
        }
    }
    // All bytes must have been put by now.
    void finish();

  private:
    void beginframe();
    void endframe();
    outfile &out;
    int64 remaining; // of the record
    int64 inframe = 0;
    int64 framelength = 0;
    int64 longest;
    bool first = true;
};

// A file of framed records being read. The caller knows each record's length: another one in the
// file is an I/O error.
class framereader
{
  public:
    framereader() = default;
    explicit framereader(const std::string &filename) { open(filename); }
    // bytesatatime: of the buffer, for those who have many files open.
    void open(const std::string &filename, std::size_t bytesatatime = buffersize);
    void close() { descriptor.close(); }
    bool isopen() const { return descriptor.isopen(); }
    const std::string &path() const { return name; }
    // Bytes of the one record that the file consists of, by the marks of its frames. An I/O error
    // if the file is cut or holds more.
    int64 recordlength() const;
    // Begins a record of n bytes, then gives them piece by piece, and ends it.
    void begin(int64 nbytes);
    void get(void *bytes, int64 n);
    // Passes over n bytes of the record; those beyond the buffer are not read.
    void skip(int64 n);
    // The next n bytes, shown to use(const char *from) where they lie: in the buffer, without a
    // copy, if they lie there together.
    template <class user> void show(int64 n, user use)
    {
        if (n <= inframe && n <= static_cast<int64>(filled - at)) {
            use(static_cast<const char *>(buffer.data() + at));
            at += static_cast<std::size_t>(n);
            inframe -= n;
            remaining -= n;
        } else {
            std::vector<char> bytes(static_cast<std::size_t>(n));
            get(bytes.data(), n);
            use(static_cast<const char *>(bytes.data()));
        }
    }
    void finish();
    // The file must end here: more bytes are an I/O error.
    void stopifmore();
    // A whole record at once.
    void record(void *bytes, int64 nbytes)
    {
        begin(nbytes);
        get(bytes, nbytes);
        finish();
    }

  private:
    void readbytes(char *bytes, std::size_t n);
    void skipbytes(std::size_t n);
    void nextframe();
    std::int32_t marker();
    void endframe();
    filedescriptor descriptor;
    std::string name;
    bytebuffer buffer;
    std::size_t at = 0, filled = 0;
    int64 remaining = 0; // of the record
    int64 inframe = 0;   // left in the frame
    int64 framelength = 0;
    bool more = false; // the record goes on in another frame
    bool first = true;
};
