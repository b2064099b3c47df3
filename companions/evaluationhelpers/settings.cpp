#include "evaluationhelpers/settings.h"

#include "stops.h"
#include "words.h"

#include <cmath>

std::vector<setting> readsettings(infile &in)
{
    std::vector<setting> settings;
    while (in.nextrecord()) {
        const std::string_view text = in.line();
        if (trim(text).empty() || trim(text).front() == '#') continue;
        const std::size_t comma = text.find(',');
        if (comma == std::string_view::npos) in.complain("a key, a comma and a value are wanted");
        setting line;
        line.file = in.path();
        line.line = in.linenumber();
        line.name = trim(text.substr(0, comma));
        line.key = tlc(line.name);
        line.value = trim(text.substr(comma + 1));
        if (const setting *earlier = findsetting(settings, line.key))
            in.complain("key \"" + line.name + "\" stands on line " + numbertext(earlier->line) +
                        " already");
        settings.push_back(line);
    }
    return settings;
}

const setting *findsetting(const std::vector<setting> &settings, const std::string &key)
{
    for (const setting &line : settings)
        if (line.key == key) return &line;
    return nullptr;
}

const setting &needsetting(const std::string &filename, const std::vector<setting> &settings,
                           const std::string &key)
{
    const setting *line = findsetting(settings, key);
    if (!line) ioerror(filename, "the key " + key + " is missing");
    return *line;
}

void complainabout(const setting &line, const std::string &what)
{
    ioerror(line.file, "line " + numbertext(line.line) + ": " + line.name + ": " + what);
}

int64 integervalue(const setting &line, int64 lowest, int64 highest)
{
    int64 value = 0;
    if (!readinteger(line.value, value))
        complainabout(line, "an integer is wanted, not \"" + line.value + "\"");
    if (value < lowest) complainabout(line, line.value + " is below " + numbertext(lowest));
    if (value > highest) complainabout(line, line.value + " is above " + numbertext(highest));
    return value;
}

double realvalue(const setting &line, double lowest)
{
    double value = 0;
    if (!readreal(line.value, value) || !std::isfinite(value))
        complainabout(line, "a number is wanted, not \"" + line.value + "\"");
    if (value < lowest) {
        textline limit;
        putfree(limit, lowest);
        complainabout(line, line.value + " is below" + limit);
    }
    return value;
}

std::string filevalue(const setting &line)
{
    if (line.value.empty()) complainabout(line, "the name of a file is wanted");
    return line.value;
}
