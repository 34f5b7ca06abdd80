#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/run/RunLimits.h"

namespace sonavex {

// What is measured and how it is judged.
struct RunFile {
    RunPlan plan;
    std::vector<RunLimit> limits;
};

// The content of a run file: a JSON object. Everything but `over` has the default of RunPlan:
//   over                 "frequency" or "level"
//   frequency_hz         a number, a list, or {"from", "to"} with one of "per_octave", "step" and "points";
//                        points are logarithmic unless "spacing" is "linear"
//   level_dbfs           the same; points are linear
//   highest_level_dbfs, side ("left", "right", "both"), dither (true, false, or bits), snap,
//   length, channel ("left", "right"), band ([low, high]), harmonics,
//   settling             {"level_db", "thdn_db", "records"}
//   limits               [{"quantity", "at_least", "at_most"}], each a number or rows [[hertz, dB], ...]
// RunError for anything else, also for a name that is not known. PointsOf checks the values.
RunFile ParseRunFile(std::string_view text);

// One line without a line end. ParseRunFile reads the same run from it.
std::string RunFileText(const RunFile& file);

}  // namespace sonavex
