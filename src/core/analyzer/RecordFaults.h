#pragma once

#include <optional>

#include "core/analyzer/Reading.h"
#include "core/analyzer/Record.h"

namespace sonavex {

// Whether the samples of a record can be measured at all: enough of them, none lost, all finite, not silent.
// Overload is judged separately.
std::optional<Void> FaultOf(const Record& record, std::size_t length);

// Whether a sample reaches full scale less 1.5 codes; floats: full scale.
bool Overloaded(const Record& record);

}  // namespace sonavex
