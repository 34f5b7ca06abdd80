#pragma once

#include <string>

#include "core/run/RunLimits.h"

namespace sonavex::measure {

// A limit as typed: QUANTITY:[LOW:]HIGH in dB, or QUANTITY:FILE with a CSV table. Throws MeasureError, and
// RunError for a table that cannot be used.
RunLimit LimitOf(const std::string& text);

// The content of a small file. what: "run", "limit". Throws MeasureError.
std::string TextOfFile(const std::string& what, const std::string& path);

}  // namespace sonavex::measure
