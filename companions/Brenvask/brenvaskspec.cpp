#include "Brenvask/brenvaskspec.h"

#include "evaluationhelpers/settings.h"
#include "words.h"

#include <array>

namespace
{
// What the value of a key must be. unused: no effect. word: the one that is given.
enum class kinds { file, integer, real, onoff, word, unused, built, notbuilt };
struct knownkey {
    const char *key;
    kinds kind;
    const char *value = "";
};
constexpr std::array<knownkey, 27> knownkeys = {{
    {"genotypefile", kinds::file},
    {"pedigreefile", kinds::word, "none"},
    {"weightfile", kinds::word, "none"},
    {"numberoftraits", kinds::word, "1"},
    {"numberofsnp", kinds::integer},
    {"inversionofg", kinds::unused},
    {"diagonalfudgefactor", kinds::real},
    {"makeg", kinds::built},
    {"makeginverse", kinds::notbuilt},
    {"makea", kinds::notbuilt},
    {"makeainverse", kinds::notbuilt},
    {"makeh", kinds::notbuilt},
    {"makehinverse", kinds::notbuilt},
    {"useallelefreqfromapreviousselcycleonoff", kinds::onoff},
    {"useallelefreqfromthisselcycle", kinds::integer},
    {"vanradengfullmat", kinds::built},
    {"vanradengija", kinds::notbuilt},
    {"inversevanradengfullmat", kinds::notbuilt},
    {"inversevanradengija", kinds::notbuilt},
    {"amatfullmat", kinds::notbuilt},
    {"amatija", kinds::notbuilt},
    {"inverseamatfullmat", kinds::notbuilt},
    {"inverseamatija", kinds::notbuilt},
    {"hmatfullmat", kinds::notbuilt},
    {"hmatija", kinds::notbuilt},
    {"inversehmatfullmat", kinds::notbuilt},
    {"inversehmatija", kinds::notbuilt},
}};
// In single precision whole numbers are exact up to here, and so are the sums of products.
constexpr int64 nsnpmax = 1 << 24;

const knownkey &knownkeyof(const setting &line)
{
    for (const knownkey &known : knownkeys)
        if (line.key == known.key) return known;
    complainabout(line, "unknown key");
}

// Whether the value is the first of two words; another one than these is refused.
bool isfirst(const setting &line, const char *first, const char *second)
{
    if (isword(line.value, tlc(first))) return true;
    if (!isword(line.value, tlc(second)))
        complainabout(line, std::string(first) + " or " + second + " is wanted, not \"" +
                                line.value + "\"");
    return false;
}

void stopifwrong(const setting &line, const knownkey &known)
{
    switch (known.kind) {
    case kinds::file:
        filevalue(line);
        break;
    case kinds::integer:
        integervalue(line, 1, nsnpmax);
        break;
    case kinds::real:
        realvalue(line, 0);
        break;
    case kinds::onoff:
        isfirst(line, "On", "Off");
        break;
    case kinds::word:
        if (!isword(line.value, known.value))
            complainabout(line,
                          "\"" + line.value + "\" can't be used, only \"" + known.value + "\" can");
        break;
    case kinds::unused:
        break;
    case kinds::built:
        if (!isfirst(line, "Yes", "No"))
            complainabout(line, "No leaves nothing to build: the matrix of this program is G");
        break;
    case kinds::notbuilt:
        if (isfirst(line, "Yes", "No"))
            complainabout(line,
                          "this can't be built, only MakeG with VanRadenGFullMat can: say No");
        break;
    }
}
} // namespace

brenvaskspec readbrenvaskspec(const std::string &filename)
{
    infile in(filename);
    const std::vector<setting> settings = readsettings(in);
    for (const setting &line : settings) stopifwrong(line, knownkeyof(line));
    for (const knownkey &known : knownkeys) needsetting(filename, settings, known.key);
    const auto value = [&](const char *key) -> const setting & {
        return needsetting(filename, settings, key);
    };

    brenvaskspec spec;
    spec.file = filename;
    spec.genotypefile = value("genotypefile").value;
    if (isword(spec.genotypefile, "none")) spec.genotypefile.clear();
    spec.numberofsnp = integervalue(value("numberofsnp"), 1);
    spec.diagonalfudgefactor = realvalue(value("diagonalfudgefactor"), 0);
    spec.useearlierfrequencies =
        isfirst(value("useallelefreqfromapreviousselcycleonoff"), "On", "Off");
    spec.frequencycycle = integervalue(value("useallelefreqfromthisselcycle"), 1);
    return spec;
}
