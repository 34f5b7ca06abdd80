#pragma once

#include <vector>

#include "core/run/RunPlan.h"

namespace sonavex {

// All values of an axis, 1 to kMostRunPoints. what: "frequencies" or "levels". RunError if there are none or
// too many, and for numbers that make no range.
std::vector<double> ValuesOf(const RunValues& values, const char* what);

}  // namespace sonavex
