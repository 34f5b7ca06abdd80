#pragma once

#include <string>

#include "core/precise/display/frmAnalyzer.h"
#include "support/RandomUser.h"

namespace sonavex {

// Performs a random action of a user in the Analyzer, each of its events through `run`: opens and closes it,
// opens recordings by the names given, and uses any control. Actions on disabled controls have no effect.
// Returns the action in words.
std::string UseAnalyzer(Randomness& randomness, frmAnalyzer& form, const std::vector<std::string>& recordings,
                        const RunEvent& run);

}  // namespace sonavex
