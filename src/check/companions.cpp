#include "check/companions.h"

#include "cyclefolder.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace
{
// What the cycles of this run do.
struct cyclework {
    bool prediction = false, contributions = false, coancestry = false;
};

cyclework workofcycles(const state &s)
{
    cyclework work;
    for (int64 gen = std::max(s.run.specstartgen, s.pop.ngen + 1); gen <= s.run.specendgen; ++gen) {
        const bool imported = s.run.selflexibilityonoff && s.run.importextpedforthisgen == gen;
        if (s.selection.selontbvyes1no0 == 0 && !aresolutionsinforce(s, gen - s.pop.ngen))
            work.prediction = true;
        if (imported && s.run.importstage == 1) break; // ends behind the values of the candidates
        if (s.selection.optcontribselonoff && !imported) work.contributions = true;
        if (s.selection.computeavercoancestryyes1no0 == 1) work.coancestry = true;
    }
    return work;
}

std::string reasonagainst(const std::string &program)
{
    std::error_code error;
    const auto status = std::filesystem::status(program, error);
    if (!std::filesystem::exists(status)) return "is missing";
    if (!std::filesystem::is_regular_file(status)) return "is not a file";
    if (access(program.c_str(), X_OK) != 0) return "is not executable";
    if (access(program.c_str(), R_OK) != 0) return "can't be read, and so not be copied";
    return "";
}
} // namespace

std::vector<std::string> neededcompanions(const state &s)
{
    std::vector<std::string> programs;
    if (s.run.merging != mergekind::none) return programs;
    if (s.run.specstartgen == 1) programs = {"macs", "Vintrecaskelle"};
    const cyclework work = workofcycles(s);
    if (work.prediction)
        programs.emplace_back(s.selection.selmethindicator == 1 ? "QuillomereP" : "Quillomere");
    if (work.contributions || work.coancestry) programs.emplace_back("Brenvask");
    if (work.contributions) programs.emplace_back("Corvalind");
    return programs;
}

std::vector<missingcompanion> missingcompanions(const state &s)
{
    std::vector<missingcompanion> missing;
    for (const std::string &program : neededcompanions(s))
        if (const std::string reason = reasonagainst(program); !reason.empty())
            missing.push_back({program, reason});
    return missing;
}
