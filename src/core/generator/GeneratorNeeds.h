#pragma once

#include <functional>

#include "core/generator/Generator.h"
#include "core/ports/Dialogs.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// All referenced objects must outlive the panels.
struct GeneratorNeeds {
    const SharedState& shared;
    Settings& settings;
    Dialogs& dialogs;
    Generator& generator;
    // Starts and stops the timer that advances the sweeps.
    std::function<void(bool)> EnableHiTimer1;
};

}  // namespace sonavex
