// files.h - all reading and writing of files: text records, free-form values, framed binary
// records, and files that are extended generation by generation.
//
// Every open, read, write and close is checked: a failure ends the run with an I/O error that
// names the file and the reason (see stops.h).
#pragma once

#include "arrays.h"
#include "textlayout.h"

#include <string>
#include <string_view>
#include <vector>

// A file being written through one large buffer. Closed by close(), which reports what the
// system could not write; a file destroyed unclosed (on the way out of a stop) is flushed
// without a report.
class outfile
{
  public:
    outfile() = default;
    // Creates the file, or replaces its content.
    explicit outfile(const std::string &filename) { open(filename); }
    outfile(const outfile &) = delete;
    outfile &operator=(const outfile &) = delete;
    outfile(outfile &&other) noexcept;
    outfile &operator=(outfile &&other) noexcept;
    ~outfile();

    void open(const std::string &filename);
    // The standard output, for programs that write much of it. What went there by other ways has
    // to be flushed before.
    void openstandardoutput();
    // Opens for writing on behind the first nlines records, found by their line ends; creates the
    // file if there is none and nothing is to be kept. What stood behind is dropped. A file with
    // fewer records, or none, is an I/O error, which tells of a compressed form where there is one.
    // Earlier records are passed over by scanning for line ends, never parsed.
    void openandkeep(const std::string &filename, int64 nlines);
    // The same where every record has the same known length (line end included): one seek. The
    // line end before the place is checked. headerlength: bytes of a title before the records.
    void openandkeepfixed(const std::string &filename, int64 nlines, int64 recordlength,
                          int64 headerlength = 0);

    bool isopen() const { return descriptor >= 0; }
    const std::string &path() const { return name; }
    void write(std::string_view bytes);
    // Writes the line and a line end, and empties the line, keeping its memory.
    void writeline(textline &line);
    void writeline(textline &&line);
    void writeline(const char *text);
    // Room for n bytes in the buffer, to be filled in place and then committed.
    char *reserve(std::size_t n)
    {
        if (used + n > buffer.size()) makeroom(n);
        return buffer.data() + used;
    }
    void commit(std::size_t n) { used += n; }
    void flush();
    void close();

  private:
    void makeroom(std::size_t n);
    void writethrough(const char *bytes, std::size_t n);
    int descriptor = -1;
    std::string name;
    std::vector<char> buffer;
    std::size_t used = 0;
    std::size_t misalignment = 0; // of the file's end, behind what was written
};

// A file being read, record by record. Records end at a line end; a carriage return before it
// is dropped, and a missing last line end is accepted.
//
// A free-form read is record() followed by calls of integer(), real() and word(): values are
// separated by blanks, tabs or commas, a record with too few values is continued by the next,
// and what is left of a record is dropped by the next record(). A value that can't be read, or a
// file that ends too early, is an I/O error that names file and line.
class infile
{
  public:
    infile() = default;
    // The file must exist.
    explicit infile(const std::string &filename) { open(filename); }
    infile(const infile &) = delete;
    infile &operator=(const infile &) = delete;
    infile(infile &&other) noexcept;
    infile &operator=(infile &&other) noexcept;
    ~infile() { close(); }

    void open(const std::string &filename);
    void close();
    bool isopen() const { return descriptor >= 0; }
    const std::string &path() const { return name; }
    // Back to the first record.
    void rewind();

    // Goes to the next record; false at the end of the file.
    bool nextrecord();
    // Goes to the next record, which must exist.
    void record();
    void skiprecords(int64 n);
    // The text of the current record, valid until the next one is gone to.
    std::string_view line() const
    {
        return {cursorstart, static_cast<std::size_t>(lineend - cursorstart)};
    }
    // What is left of the current record behind the values read so far.
    std::string_view rest() const { return {cursor, static_cast<std::size_t>(lineend - cursor)}; }
    // Number of the current record, from 1.
    int64 linenumber() const { return nlines; }
    // Whether the current record has its line end; only the last of a file can lack it.
    bool endswithlineend() const { return haslineend; }

    int64 integer();
    double real();
    std::string_view word();
    // n reals, exactly as n calls of real() give them; quick where they stand in fields F20.10.
    void reals(double *values, int64 n);
    // Passes over n values, whatever they are.
    void skipwords(int64 n);
    // n small integers (-128 to 127): alleles and genotypes, in two columns each or free-form.
    void alleles(int8 *values, int64 n);
    // An I/O error about the current record.
    [[noreturn]] void complain(std::string_view what) const;

  private:
    bool fill();
    std::string_view nextword();
    int descriptor = -1;
    std::string name;
    std::vector<char> buffer;
    std::size_t begin = 0, finish = 0; // unread bytes of the buffer, from 0
    bool ended = false;
    bool haslineend = true; // of the current record
    int64 nlines = 0;
    const char *cursorstart = nullptr; // current record
    const char *cursor = nullptr;
    const char *lineend = nullptr;
};

// A file whose lines are read in any order, by their numbers from 1. Line ends are found once each,
// as far as they are needed; that takes 8 bytes of memory for each line.
class recordfile
{
  public:
    recordfile() = default;
    recordfile(const recordfile &) = delete;
    recordfile &operator=(const recordfile &) = delete;
    ~recordfile() { close(); }

    // The file must exist.
    void open(const std::string &filename);
    void close();
    bool isopen() const { return descriptor >= 0; }
    const std::string &path() const { return name; }
    // The text of line n without its line end, valid until the next call. An I/O error if the file
    // holds fewer lines.
    std::string_view line(int64 n);

  private:
    void load(int64 offset);
    void findlineends();
    int descriptor = -1;
    std::string name;
    std::vector<int64> starts; // offset of line n at place n - 1; of the end behind the last line
    int64 scanned = 0;         // up to here line ends have been looked for
    bool ended = false;        // they all have been found
    std::vector<char> buffer;
    int64 bufferstart = 0, filled = 0; // offset in the file of the buffer's bytes, their number
};

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
    framereader(const framereader &) = delete;
    framereader &operator=(const framereader &) = delete;
    framereader(framereader &&other) noexcept;
    framereader &operator=(framereader &&other) noexcept;
    ~framereader() { close(); }
    void open(const std::string &filename);
    void close();
    bool isopen() const { return descriptor >= 0; }
    const std::string &path() const { return name; }
    // Begins a record of n bytes, then gives them piece by piece, and ends it.
    void begin(int64 nbytes);
    void get(void *bytes, int64 n);
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
    // A whole record at once.
    void record(void *bytes, int64 nbytes)
    {
        begin(nbytes);
        get(bytes, nbytes);
        finish();
    }

  private:
    void readbytes(char *bytes, std::size_t n);
    std::int32_t marker();
    void endframe();
    int descriptor = -1;
    std::string name;
    std::vector<char> buffer;
    std::size_t at = 0, filled = 0;
    int64 remaining = 0; // of the record
    int64 inframe = 0;   // left in the frame
    int64 framelength = 0;
    bool more = false; // the record goes on in another frame
    bool first = true;
};

// A whole record of a file at once.
void writeframed(outfile &out, const void *bytes, int64 nbytes);

// Whether two files, which must exist, hold the same bytes.
bool samecontent(const std::string &filename1, const std::string &filename2);

// Bytes of the one record that a file consists of, by the marks of its frames. An I/O error if the
// file is cut or holds more.
int64 lengthofrecord(const std::string &filename);
