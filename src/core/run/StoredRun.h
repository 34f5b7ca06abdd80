#pragma once

#include <string>
#include <string_view>

#include "core/run/MeasuredRun.h"

namespace sonavex {

// The run as one JSON object on one line: `run` (RunFileText), `rate_hz`, `points`, `time`, `seconds` and
// `results`
// (RunPointJson of each point).
std::string StoredRunText(const MeasuredRun& run);

// Reads the object of StoredRunText. The conditions are those of the last point. RunError for anything else,
// and for results that are not the first of the run's points.
MeasuredRun ParseStoredRun(std::string_view text);

// Reads a line of RunPointJson. RunError for anything else.
struct StoredPoint {
    RunPointResult result;
    RunConditions conditions;
};
StoredPoint ParseStoredPoint(std::string_view line);

}  // namespace sonavex
