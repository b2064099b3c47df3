#include "evaluationhelpers/progress.h"

#include "textlayout.h"

#include <cstdio>
#include <exception>

step::step(std::string text)
    : what(std::move(text)), start(std::chrono::steady_clock::now()),
      nexceptions(std::uncaught_exceptions())
{
}

step::~step() noexcept(false)
{
    if (std::uncaught_exceptions() > nexceptions) return;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    textline line = what + ": ";
    putf(line, seconds.count(), 0, 2);
    note(line + " s");
}

void note(const std::string &text)
{
    printline(text);
    std::fflush(stdout);
}

std::string shortnumber(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}
