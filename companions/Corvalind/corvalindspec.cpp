#include "Corvalind/corvalindspec.h"

#include "evaluationhelpers/settings.h"
#include "stops.h"
#include "words.h"

#include <array>

namespace
{
constexpr std::array<const char *, 11> keys = {"relationshipmatrixfile",
                                               "breedingvaluefile",
                                               "performmatingsconsideringthegender",
                                               "genderfile",
                                               "numberofmales",
                                               "numberoffemales",
                                               "numberofindividuals",
                                               "numberofmatings",
                                               "percentagedifferenceinbreeding",
                                               "sizeofpopulationofxvectors",
                                               "maximumnumberofgenerations"};

void stopifunknown(const setting &line)
{
    for (const char *key : keys)
        if (line.key == key) return;
    complainabout(line, "unknown key");
}

bool yesorno(const setting &line)
{
    if (isword(line.value, "yes")) return true;
    if (!line.value.empty() && !isword(line.value, "no"))
        complainabout(line, "Yes or No is wanted, not \"" + line.value + "\"");
    return false;
}

void stopifgiven(const std::vector<setting> &settings, const char *key, const char *sexes)
{
    if (const setting *line = findsetting(settings, key))
        complainabout(*line, std::string("has no place where PerformMatingsConsideringTheGender "
                                         "is ") +
                                 sexes);
}
} // namespace

corvalindspec readcorvalindspec(const std::string &filename)
{
    infile in(filename);
    const std::vector<setting> settings = readsettings(in);
    for (const setting &line : settings) stopifunknown(line);
    const auto need = [&](const char *key) -> const setting & {
        return needsetting(filename, settings, key);
    };

    corvalindspec spec;
    spec.file = filename;
    spec.relationshipfile = filevalue(need("relationshipmatrixfile"));
    spec.breedingvaluefile = filevalue(need("breedingvaluefile"));
    spec.sexesmatter = yesorno(need("performmatingsconsideringthegender"));
    if (spec.sexesmatter) {
        spec.genderfile = filevalue(need("genderfile"));
        spec.nmales = integervalue(need("numberofmales"), 1, INT32_MAX);
        spec.nfemales = integervalue(need("numberoffemales"), 1, INT32_MAX);
        spec.nindiv = spec.nmales + spec.nfemales;
        stopifgiven(settings, "numberofindividuals", "Yes");
    } else {
        spec.nindiv = integervalue(need("numberofindividuals"), 1, INT32_MAX);
        for (const char *key : {"genderfile", "numberofmales", "numberoffemales"})
            stopifgiven(settings, key, "No");
    }
    spec.nmatings = integervalue(need("numberofmatings"), 1, INT32_MAX);
    spec.difference = realvalue(need("percentagedifferenceinbreeding"), 0);
    spec.nplans = integervalue(need("sizeofpopulationofxvectors"), 0);
    spec.ngenerations = integervalue(need("maximumnumberofgenerations"), 0);
    return spec;
}
