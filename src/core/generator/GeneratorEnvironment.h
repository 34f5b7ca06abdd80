#pragma once

#include "core/generator/Generator.h"
#include "core/generator/SweepClock.h"
#include "core/ports/Dialogs.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// What the generator's panels work with. Everything must outlive them.
struct GeneratorEnvironment {
    const SharedState& shared;
    Settings& settings;
    Dialogs& dialogs;
    Generator& generator;
    SweepClock& HiTimer1;
};

}  // namespace sonavex
