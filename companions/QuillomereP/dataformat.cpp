#include "QuillomereP/dataformat.h"

#include "evaluationhelpers/settings.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <array>

namespace
{
// What the value of a key must be. anyword: no effect. word: the one that is given.
enum class kinds { column, integer, real, yesno, word, anyword };
struct knownkey {
    const char *key;
    kinds kind;
    const char *value = "";
    bool needed = false;
};
constexpr std::array<knownkey, 24> knownkeys = {{
    {"animal", kinds::column, "!p", true},
    {"sire", kinds::column, "!p", true},
    {"dam", kinds::column, "!p", true},
    {"id", kinds::column, "!i", true},
    {"phen", kinds::column, "!r", true},
    {"missingvalue", kinds::real, "", true},
    {"niterations", kinds::integer, "", true},
    {"nburnin", kinds::integer},
    {"outputiterationnumber", kinds::integer},
    {"nblupiterations", kinds::integer},
    {"fixedeffects", kinds::word, "mean"},
    {"fixedregression", kinds::word, "none"},
    {"yvariable", kinds::word, "phen"},
    {"snpsolver", kinds::anyword},
    {"numbersnp", kinds::word, "0"},
    {"totalgeneticvariance", kinds::real},
    {"startvaluesnpvariance", kinds::real},
    {"startvaluepolygenicvariance", kinds::real, "", true},
    {"startvalueresidualvariance", kinds::real, "", true},
    {"startvaluegeneticgroupvariance", kinds::word, "0.0"},
    {"polygenicfixed", kinds::yesno},
    {"residualfixed", kinds::yesno},
    {"geneticgroupvariancefixed", kinds::yesno},
    {"posteriormeanonly", kinds::yesno},
}};

const knownkey &knownkeyof(const setting &line)
{
    for (const knownkey &known : knownkeys)
        if (line.key == known.key) return known;
    complainabout(line, "unknown key");
}

void stopifwrong(const setting &line, const knownkey &known)
{
    switch (known.kind) {
    case kinds::integer:
        integervalue(line, 0);
        break;
    case kinds::real:
        realvalue(line, -1e300);
        break;
    case kinds::yesno:
        if (!isword(line.value, "yes") && !isword(line.value, "no"))
            complainabout(line, "Yes or No is wanted, not \"" + line.value + "\"");
        break;
    case kinds::column: // "!P,0,F": the type stands before the first comma
        if (tlc(std::string_view(line.value).substr(0, line.value.find(','))) != known.value)
            complainabout(line, "a column of type " + std::string(known.value) +
                                    " is wanted, not \"" + line.value + "\"");
        break;
    case kinds::word:
        if (!isword(line.value, known.value))
            complainabout(line, "\"" + line.value + "\" can't be evaluated, only \"" + known.value +
                                    "\" can");
        break;
    case kinds::anyword:
        break;
    }
}

// The columns are declared in the order in which they stand in the file.
void stopifnotinorder(const std::vector<setting> &settings)
{
    int64 line = 0;
    for (std::size_t c = 0; c < 5; ++c) {
        const setting &column = *findsetting(settings, knownkeys[c].key);
        if (column.line < line)
            complainabout(column, "the columns must be Animal, Sire, Dam, Id and Phen");
        line = column.line;
    }
}

void readheading(infile &in, dataformat &format)
{
    in.record(); // title
    in.record();
    if (tlc(in.line()) != "blup")
        in.complain("Blup is wanted, not \"" + std::string(trim(in.line())) + "\"");
    in.record();
    format.pedigreefile = trim(in.line().substr(0, in.line().find(',')));
    if (format.pedigreefile.empty()) in.complain("the name of the pedigree file is wanted");
    if (!pathexists(format.pedigreefile))
        in.complain("the pedigree-phenotype file " + format.pedigreefile + " does not exist");
}
} // namespace

dataformat readdataformat(const std::string &filename)
{
    dataformat format;
    format.file = filename;
    infile in(filename);
    readheading(in, format);
    const std::vector<setting> settings = readsettings(in);
    for (const setting &line : settings) stopifwrong(line, knownkeyof(line));
    for (const knownkey &known : knownkeys)
        if (known.needed && !findsetting(settings, known.key))
            ioerror(filename, "the key " + std::string(known.key) + " is missing");
    stopifnotinorder(settings);
    format.missingvalue = realvalue(*findsetting(settings, "missingvalue"), -1e300);
    format.nround = integervalue(*findsetting(settings, "niterations"), 1);
    format.vara = realvalue(*findsetting(settings, "startvaluepolygenicvariance"), 0);
    format.vare = realvalue(*findsetting(settings, "startvalueresidualvariance"), 0);
    return format;
}
