// progress.h - what the evaluation programs report on standard output: one line per step with
// the time it took, and notes in between.
#pragma once

#include <chrono>
#include <string>

// Reports "<what>: <seconds> s" when the step ends, that is, when the record leaves its scope in
// the ordinary way. A step that is left by a stop reports nothing: the error speaks for itself.
class step
{
  public:
    explicit step(std::string text);
    step(const step &) = delete;
    step &operator=(const step &) = delete;
    ~step() noexcept(false); // its line takes memory

  private:
    std::string what;
    std::chrono::steady_clock::time_point start;
    int nexceptions;
};

// A line of standard output, passed on at once, so that a log can be followed.
void note(const std::string &text);
// A number for a note: four significant digits.
std::string shortnumber(double value);
