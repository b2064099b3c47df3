// infile.h - a text file being read: records one after the other, and free-form values.
//
// Every open and read is checked: a failure ends the run with an I/O error that names the file, its
// line and the reason (see stops.h).
#pragma once

#include "arrays.h"
#include "bytebuffer.h"
#include "descriptors.h"

#include <string>
#include <string_view>
#include <vector>

// Who wrote a file. Where it wasn't a user, a last line without a line end was cut; and the records
// that the system itself writes aren't continued by the next ones.
enum class author { user, program, system };

// A file being read, record by record. Records end at a line end; a carriage return before it
// is dropped, and a missing last line end is accepted in a user's file.
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
    explicit infile(const std::string &filename, author by = author::user) { open(filename, by); }

    void open(const std::string &filename, author by = author::user);
    // Reads from what is open already, a pipe perhaps. filename: as errors shall call it.
    void take(filedescriptor opened, const std::string &filename, author by = author::user);
    void close() { descriptor.close(); }
    bool isopen() const { return descriptor.isopen(); }
    const std::string &path() const { return name; }
    // To the record behind the first n, which end at an offset.
    void skipto(int64 offset, int64 n);
    // Back to the first record.
    void rewind();

    // Goes to the next record; false at the end of the file.
    bool nextrecord();
    // Goes to the next record, which must exist.
    void record();
    void skiprecords(int64 n);
    // The file must end here: a further record is an I/O error, unless it is blank.
    void stopifmore();
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
    // A finite real.
    double real();
    // A real from 0 to 1: a frequency, a position on the chromosome.
    double fraction();
    // An integer from lowest to highest.
    int64 within(int64 lowest, int64 highest);
    // Any real: for files of the system's own that may hold NaN or infinities, where a trait has no
    // variance.
    double anyreal();
    // An integer that tells whose record it is, and must be the given one. what: "individual", ...
    void identifier(int64 wanted, const char *what);
    std::string_view word();
    // n reals, exactly as n calls of real() or anyreal() give them; quick where they stand in fields
    // F20.10.
    void reals(double *values, int64 n);
    void anyreals(double *values, int64 n);
    // Passes over n values, whatever they are.
    void skipwords(int64 n);
    // n small integers (-128 to 127): alleles and genotypes, in two columns each or free-form.
    void alleles(int8 *values, int64 n);
    // The same of alleles or genotypes from 0 to highest.
    void alleles(int8 *values, int64 n, int8 highest);
    // An I/O error about the current record.
    [[noreturn]] void complain(std::string_view what) const;

  private:
    bool fill();
    std::string_view nextword();
    filedescriptor descriptor;
    std::string name;
    bytebuffer buffer;                 // its bytes move along, pointers into them stay valid
    std::size_t begin = 0, finish = 0; // unread bytes of the buffer, from 0
    bool ended = false;
    author writtenby = author::user;
    bool haslineend = true; // of the current record
    int64 nlines = 0;
    const char *cursorstart = nullptr; // current record
    const char *cursor = nullptr;
    const char *lineend = nullptr;
};
