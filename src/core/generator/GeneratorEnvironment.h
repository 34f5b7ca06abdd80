#pragma once

#include "core/generator/Generator.h"
#include "core/generator/SweepClock.h"
#include "core/ports/Dialogs.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// All referenced objects must outlive the panels.
struct GeneratorEnvironment {
    const SharedState& shared;
    Settings& settings;
    Dialogs& dialogs;
    Generator& generator;
    SweepClock& HiTimer1;
};

}  // namespace sonavex
