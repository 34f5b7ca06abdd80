#pragma once

#include <optional>
#include <string_view>

#include "core/analyzer/Reading.h"

namespace sonavex {

// The reading of one tone in a line of AnalyzedJson. Empty for anything else. Sentences of voids and warnings
// that are missing in the line are empty.
std::optional<Reading> ParseReading(std::string_view line);

}  // namespace sonavex
