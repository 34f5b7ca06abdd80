#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "core/run/MeasuredRun.h"

namespace sonavex {

// The verdict as a chip at the plot.
struct RunVerdictChip {
    enum class Kind { kNone, kPass, kFail, kNotComplete };
    Kind kind = Kind::kNone;
    std::string text;  // "PASS", "PASS so far", "FAIL", "NOT COMPLETE"
    bool operator==(const RunVerdictChip&) const = default;
};

// None without limits, except for a run that is not complete. While a run is active only the measured points
// count: "so far". points: of the whole run.
RunVerdictChip VerdictChipOf(std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                             std::size_t points, bool running);

// "THD+N at most -95 dB, 20 Hz to 20 kHz: 7 points over, worst 3.20 dB at 20 Hz"; several limits are
// separated by semicolons. Empty without limits.
std::string LimitsText(std::span<const RunLimit> limits, std::span<const RunPoint> points,
                       std::span<const RunPointResult> results);

// Lines about a run for a page: time and program, plan, devices, notes, limits, verdict, invalid points.
std::vector<std::string> RunPageLines(const MeasuredRun& run, const std::string& program);

// "THD", "THD+N", "H2", "Response"
std::string TitleOf(const RunQuantity& quantity);
// "20 Hz", "1612.7 Hz", "20 kHz": at most 5 digits.
std::string HertzText(double hertz);
// "12 s", "1 min 9 s", "1 h 5 min", rounded up to whole seconds. seconds: not negative.
std::string DurationText(double seconds);
// "Point 39 of 61: 1612.7 Hz"; over level: "Point 3 of 20: -40 dBFS".
std::string RunningPointText(std::span<const RunPoint> points, std::size_t measured, RunAxis over);
// "61 points in 3 min 2 s; 1 invalid, 1 repeated"
std::string FinishedText(std::span<const RunPointResult> results, std::size_t points, double seconds);

}  // namespace sonavex
