#include "check/checkspec.h"

#include "check/estimates.h"
#include "check/inputs.h"
#include "check/plan.h"
#include "folders.h"
#include "randomnumbers.h"
#include "runlock.h"
#include "shell.h"
#include "spec/readinparameters.h"
#include "spec/specreader.h"
#include "textlayout.h"
#include "words.h"

#include <cstdio>
#include <optional>

namespace
{
// A run that gets to its end all the same.
void finishwithout(const commandfailures &failures)
{
    if (failures.count == 0) {
        printline(" Nothing was found that would keep a run from its end. Nothing was written.");
        return;
    }
    printline(" A run would come to its end, but with status 3. Nothing was written.");
    std::fprintf(stderr, "ERROR: commands or programs of the run would fail; the first: %s\n",
                 failures.first.c_str());
    plainstop(3);
}

// The first stop decides how the run would end; behind it nothing of the run would follow.
void finish(const faultlist &faults, const commandfailures &failures)
{
    printline("");
    if (faults.stops.empty()) return finishwithout(failures);
    int status = 0;
    for (const stopped &stop : faults.stops)
        if (const int its = reportstop(stop); status == 0) status = its;
    printline(" A run would end with status " + numbertext(status) + " (" +
              numbertext(std::ssize(faults.stops)) +
              (faults.stops.size() == 1 ? " fault" : " faults") + " found). Nothing was written.");
    plainstop(status);
}

void checkrun(state &s, faultlist &faults)
{
    arrayscope arrays;
    if (s.run.merging != mergekind::none) {
        const runfacts facts = judgemerge(s, arrays, faults);
        if (faults.stops.empty()) printestimates(s, facts);
        return;
    }
    const runfacts facts = judgeinputs(s, arrays, faults);
    printplan(s, facts);
    if (faults.stops.empty()) printestimates(s, facts);
}
} // namespace

void checkspec(const runoptions &options)
{
    faultlist faults;
    randomstream random;
    std::optional<runsettings> settings;
    commandfailures failures;
    faults.judge([&] { commandsatonce(); });
    faults.judge([&] { lockrun(options, specfile); });
    for (const char *folder : runfolders) faults.judge([&] { refuselinks(folder); });
    faults.judge([&] { random = firststream(readseed(options)); });
    if (faults.judge([&] { settings = readinparameters(options); })) {
        state s(*settings);
        s.random = random;
        s.failures.strict = options.strict;
        checkrun(s, faults);
        failures = s.failures;
    }
    finish(faults, failures);
}
