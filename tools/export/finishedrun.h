// finishedrun.h - a run folder that is at rest: its settings, individuals and sites.
#pragma once

#include "state.h"

#include <memory>
#include <string>
#include <vector>

// What is known of a run in the working directory, by its own files; the specification, which a
// later run may have been given anew, only tells what no file does.
struct finishedrun {
    filedescriptor lock; // no run begins while it is held
    runsettings settings;
    std::unique_ptr<state> s;          // pedi.ped holds all individuals with values
    std::vector<int64> cumindiv;       // (0 to generations) individuals up to and in a generation
    std::vector<int64> gender;         // of individual i at offset i - 1: 1 male, 2 female
    std::vector<int64> nsites;         // included sites of chromosome h at offset h - 1
    int64 chrlength = 0;               // in bases, the same for all chromosomes
    int64 seed = 0;                    // of the last run
    std::string specificationchecksum; // MD5, hexadecimal
    int64 ngenerations() const { return std::ssize(cumindiv) - 1; }
    int64 nindividuals() const { return cumindiv.back(); }
    int64 nchrom() const { return std::ssize(nsites); }
    int64 generationof(int64 individual) const;
    const pedigreeline &line(int64 individual) const { return s->pedi.ped(individual); }
};

// Looks at the working directory. An I/O error where no run has ended there, one is under way, or
// the last one was cut short: what a run writes at its end must be there, hold all individuals that
// have values, and be younger than what it writes first.
finishedrun openfinishedrun();

// Fills tbv, tdv and tpv of all individuals from the table of values.
void loadvalues(const finishedrun &run);
// A value with the decimals of the run's tables; NA for none.
std::string filedvalue(double value);

// A text file of a run for reading, unpacked on the way where it stands there as .gz alone. False
// where there is neither.
bool istextthere(const std::string &path);
// The path that is read, with its .gz.
std::string textpath(const std::string &path);
class runtext
{
  public:
    explicit runtext(const std::string &path);
    ~runtext();
    runtext(const runtext &) = delete;
    runtext &operator=(const runtext &) = delete;
    infile in;
    // To be called at the end of the file: an I/O error where it couldn't be unpacked.
    void finish();

  private:
    int process = -1; // of the program that unpacks
};
