#include "founders/presets.h"

#include "files.h"
#include "sortstat.h"
#include "spec/speciestable.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <string_view>

namespace
{
void settlevalues(foundersettings &f, const speciesrow &preset)
{
    if (f.internaleffecpopsize) f.effecpopsize = preset.effecpopsize;
    if (f.internalchrlenbasesmacs) f.chrlengthbasesmacs = preset.chrlengthbases;
    if (f.internalmorgansmacs) f.morgansmacs = static_cast<double>(preset.morgans);
    if (f.internalmutationratemacs)
        f.mutationratemacs = static_cast<double>(preset.ratefactor *
                                                 (1.0f / static_cast<float>(f.chrlengthbasesmacs)));
}

std::string readuserfile(const std::string &filename)
{
    printline("WARNING: User specified file with -eN options for MaCs are being read in.");
    printline("Please ensure that the following specfile parameters are set to External:");
    printline("MutationRateMaCS, ChromosomeLengthBasesMaCS, EffectivePopulationSizeBaseMaCs");
    printline("ChromosomeLengthMorgansMaCS, ChromosomeLengthMorgansSolvanto");
    printline(" ");
    infile in(filename);
    in.record();
    const std::string text(trimright(in.line()));
    for (const char c : text) {
        const bool plain =
            (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (!plain && std::string_view(" \t._-/+=@:,").find(c) == std::string_view::npos)
            in.complain("options for the coalescent simulator can't hold the character \"" +
                        std::string(1, c) + "\"");
    }
    return text;
}
} // namespace

void calculatemacsparams(std::string &macsparams, int64 chrlengthbasesmacs, int64 effecpopsize,
                         double mutationratemacs, double morgansmacs,
                         const std::string &additionalmacsparams)
{
    const double fourne = static_cast<double>(4 * effecpopsize);
    const double recombrate = singlequotient(morgansmacs, static_cast<double>(chrlengthbasesmacs));
    macsparams.clear();
    puti(macsparams, chrlengthbasesmacs, 0);
    macsparams += " -t ";
    pute(macsparams, fourne * mutationratemacs, 10, 2);
    macsparams += " -r ";
    pute(macsparams, fourne * recombrate, 10, 2);
    macsparams += " ";
    macsparams += trimright(additionalmacsparams);
}

void initmacscases(const state &s, std::string &macsparams)
{
    foundersettings f = s.founders;
    std::string additionalmacsparams;
    if (const speciesrow *preset = findspecies(f.pophistorymacs)) {
        settlevalues(f, *preset);
        if (preset->unusable) {
            printline(preset->unusable);
            plainstop();
        }
        additionalmacsparams = preset->additionalmacsparams;
    } else {
        additionalmacsparams = readuserfile(cuttext(f.pophistorymacs, settingwidth));
    }
    calculatemacsparams(macsparams, f.chrlengthbasesmacs, f.effecpopsize, f.mutationratemacs,
                        f.morgansmacs, additionalmacsparams);
}

int64 chromosomelength(const state &s)
{
    foundersettings f = s.founders;
    if (const speciesrow *preset = findspecies(f.pophistorymacs)) settlevalues(f, *preset);
    return f.chrlengthbasesmacs;
}
