#pragma once

#include <string>
#include <vector>

#include "core/run/RunText.h"

namespace sonavex {

// A run with what was measured, complete or not.
struct MeasuredRun {
    RunFile file;
    std::vector<RunPoint> points;  // of the whole run
    // In the order of the points, as many as are measured.
    std::vector<RunPointResult> results;
    RunConditions conditions;
    std::string time;    // local, when it began: "2026-11-23 10:58:21"; empty if that is not known
    double seconds = 0;  // that the run took; 0 if that is not known
};

}  // namespace sonavex
