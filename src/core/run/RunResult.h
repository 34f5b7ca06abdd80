#pragma once

#include <optional>

#include "core/analyzer/Reading.h"
#include "core/run/RunPlan.h"
#include "core/run/Settling.h"

namespace sonavex {

// What was measured at a point of a run.
struct RunPointResult {
    RunPoint point;
    Reading reading;  // the average of two settled records; without values in a void point
    Value gainDb;     // level of the fundamental less that of the stimulus
    // Of the response: phase of what arrived less that of what was played `delaySeconds` before, -180 to 180
    // degrees. Not defined unless input and output run on the same clock and the delay is known.
    Value phaseDegrees;
    // Of the path, from the output's queue to the input: measured by a burst, refined by the phases. Empty if
    // the burst was not found.
    std::optional<double> delaySeconds;
    PointFault fault;  // of a void point; its code is empty in a valid one
    int attempts = 1;
    bool afterLoss = false;  // a device was lost and has returned since the run began
    bool Valid() const noexcept { return fault.code.empty(); }
};

}  // namespace sonavex
