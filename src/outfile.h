// outfile.h - a file being written: text lines and bytes, and files that are extended generation
// by generation.
//
// Every open, write and close is checked: a failure ends the run with an I/O error that names the
// file and the reason (see stops.h).
#pragma once

#include "arrays.h"
#include "bytebuffer.h"
#include "descriptors.h"
#include "filemarks.h"
#include "textlayout.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class writebehind;

// What the last records that are kept begin with: numbers, 0 for whatever stands there; in how many.
struct keptrecords {
    std::array<int64, 3> numbers{};
    int64 nrecords = 1;
};

// A file being written through one large buffer, or where there are several processors and the file
// is long, through two: a thread writes one while the other is filled. Then a failure to write is
// told a buffer later, by the close at the latest. Closed by close(), which reports what the system
// could not write; a file destroyed unclosed (on the way out of a stop) is flushed without a report.
class outfile
{
  public:
    outfile();
    // Creates the file, or replaces its content.
    explicit outfile(const std::string &filename);
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
    // Earlier records are passed over by scanning for line ends, never parsed; but the last of them
    // must be those that are expected there, which a missing or doubled one before them shifts.
    // marks: where the search for the place is spared, and where the close keeps what it then is.
    void openandkeep(const std::string &filename, int64 nlines, keptrecords last = {},
                     filemarks *marks = nullptr);
    // The same where every record has the same known length (line end included): one seek. The
    // line end before the place is checked. headerlength: bytes of a title before the records.
    void openandkeepfixed(const std::string &filename, int64 nlines, int64 recordlength,
                          int64 headerlength = 0, keptrecords last = {});

    // Opens to write over what stands from an offset on; what is behind the new bytes stays.
    void openover(const std::string &filename, int64 offset);

    bool isopen() const { return descriptor.isopen(); }
    // Offset of the next byte.
    int64 position() const { return start + nwritten + static_cast<int64>(used); }
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
    void beginfile(const std::string &filename);
    void goonfrom(off_t offset);
    void makeroom(std::size_t n);
    void writefull(std::size_t n);
    void beginbehind();
    void writethrough(const char *bytes, std::size_t n);
    void failed(int error);
    void countwritten(const char *bytes, std::size_t n);
    filedescriptor descriptor;
    std::string name;
    bytebuffer buffer;
    std::unique_ptr<writebehind> behind;
    int64 nfull = 0; // full buffers that were written
    std::size_t used = 0;
    int64 start = 0, nwritten = 0; // offset of the first byte written, and how many were
    filemarks *marks = nullptr;    // gets the file's end
    int64 nrecords = 0;            // lines up to it
};

// What openandkeep and openandkeepfixed ask of a file whose lines are to be kept, without opening
// it for writing.
void checkkept(const std::string &filename, int64 nlines, keptrecords last = {});
void checkkeptfixed(const std::string &filename, int64 nlines, int64 recordlength,
                    int64 headerlength = 0);
