// openstate.h - a state whose settings a test may change, where the reader's are constant.
#pragma once

#include "state.h"

// Settings that a state can be made from.
struct ownsettings {
    runsettings settings;
};

struct openstate : private ownsettings, state {
    openstate() : state(settings) {}
    openstate(openstate &&other) : ownsettings(std::move(other)), state(settings)
    {
        static_cast<stagerecords &>(*this) = std::move(static_cast<stagerecords &>(other));
    }
    openstate &operator=(openstate &&other)
    {
        settings = std::move(other.settings);
        static_cast<stagerecords &>(*this) = std::move(static_cast<stagerecords &>(other));
        return *this;
    }

    // In place of the constant ones.
    runcontrol &run = settings.run;
    populationsettings &pop = settings.pop;
    foundersettings &founders = settings.founders;
    chipsettings &chips = settings.chips;
    qtnsettings &qtn = settings.qtn;
    traitsettings &traits = settings.traits;
    selectionsettings &selection = settings.selection;
    editingsettings &editing = settings.editing;
};
