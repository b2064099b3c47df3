#include "Quillomere/quillomerespec.h"

#include "evaluationhelpers/settings.h"
#include "words.h"

#include <array>

namespace
{
constexpr std::array<const char *, 16> keys = {"genotypetraining",
                                               "genotypetesting",
                                               "phenotypetraining",
                                               "tbvtesting",
                                               "fixedsnpfile",
                                               "nsnp",
                                               "nanistraining",
                                               "nanistest",
                                               "nround",
                                               "nburn",
                                               "vara",
                                               "vare",
                                               "scalingoption",
                                               "numberofprocessors",
                                               "missinggenocode",
                                               "markersolver"};

void stopifunknown(const setting &line)
{
    for (const char *key : keys)
        if (line.key == key) return;
    complainabout(line, "unknown key");
}

// Settings with one value that makes sense, or a default.
void readoptional(const std::vector<setting> &settings, quillomerespec &spec)
{
    if (const setting *line = findsetting(settings, "nburn")) integervalue(*line, 0);
    if (const setting *line = findsetting(settings, "numberofprocessors"))
        spec.numberofprocessors = integervalue(*line, 1, 1024);
    if (const setting *line = findsetting(settings, "missinggenocode")) {
        spec.missinggenocode = integervalue(*line, -128, 127);
        if (spec.missinggenocode >= 0 && spec.missinggenocode <= 2)
            complainabout(*line, line->value + " is a genotype");
    }
    if (const setting *line = findsetting(settings, "markersolver"))
        if (!isword(line->value, "ridge"))
            complainabout(*line, "\"" + line->value + "\" is not known, only Ridge is");
}
} // namespace

quillomerespec readquillomerespec(const std::string &filename)
{
    infile in(filename);
    const std::vector<setting> settings = readsettings(in);
    for (const setting &line : settings) stopifunknown(line);
    const auto need = [&](const char *key) -> const setting & {
        return needsetting(filename, settings, key);
    };

    quillomerespec spec;
    spec.file = filename;
    spec.genotypetraining = filevalue(need("genotypetraining"));
    spec.genotypetesting = filevalue(need("genotypetesting"));
    spec.phenotypetraining = filevalue(need("phenotypetraining"));
    spec.tbvtesting = filevalue(need("tbvtesting"));
    spec.fixedsnpfile = filevalue(need("fixedsnpfile"));
    spec.nsnp = integervalue(need("nsnp"), 1, INT32_MAX);
    spec.nanistraining = integervalue(need("nanistraining"), 1, INT32_MAX);
    spec.nanistest = integervalue(need("nanistest"), 1, INT32_MAX);
    spec.nround = integervalue(need("nround"), 1);
    spec.vara = realvalue(need("vara"), 0);
    spec.vare = realvalue(need("vare"), 0);
    const setting &scaling = need("scalingoption");
    if (integervalue(scaling, 0) != 2)
        complainabout(scaling, scaling.value + " is not known, only 2 is: genotypes centred and "
                                               "divided by their standard deviation");
    readoptional(settings, spec);
    return spec;
}
