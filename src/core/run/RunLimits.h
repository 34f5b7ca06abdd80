#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/run/LimitCurve.h"
#include "core/run/RunResult.h"

namespace sonavex {

// A quantity that can be limited, in dB.
struct RunQuantity {
    enum class Kind { kThd, kThdn, kHarmonic, kResponse };
    Kind kind = Kind::kThd;
    int order = 0;  // of a harmonic, 2 to 9
    bool operator==(const RunQuantity&) const = default;
};

// "thd", "thdn", "h2" to "h9", "response" (gain relative to the stimulus)
std::string NameOf(const RunQuantity& quantity);
std::optional<RunQuantity> QuantityNamed(std::string_view name);

// Not defined for a void point, and for harmonics outside the band.
Value ValueOf(const RunPointResult& result, const RunQuantity& quantity);

// At least one of the curves.
struct RunLimit {
    RunQuantity quantity;
    std::optional<LimitCurve> atLeast;
    std::optional<LimitCurve> atMost;
};

// RunError for a table that does not cover all points.
void RequireCoverage(std::span<const RunLimit> limits, std::span<const RunPoint> points);

// The value that is closest to its limit, or furthest beyond it.
struct RunMargin {
    std::size_t point = 0;  // from 0
    RunQuantity quantity;
    double valueDb = 0;
    double limitDb = 0;
    double marginDb = 0;  // negative beyond the limit
};

enum class RunOutcome {
    kUnjudged,  // complete, without limits
    kPass,
    kFail,
    kNotComplete,
};
// "COMPLETE", "PASS", "FAIL", "NOT COMPLETE"
const char* NameOf(RunOutcome outcome);

struct RunVerdict {
    RunOutcome outcome = RunOutcome::kUnjudged;
    std::size_t pointsBeyond = 0;  // at least one limit
    std::size_t pointsOpen = 0;    // void, not measured, or with a bound that proves nothing
    std::optional<RunMargin> worst;
};

// Judges with the requested frequencies. FAIL when a value is beyond its limit; otherwise NOT COMPLETE when
// a point is void or has not been measured, when noise hides a value behind a bound above the limit, and when
// a limit was not compared with any value. Values that are not defined are not judged. points: of the whole
// run.
RunVerdict JudgeRun(std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                    std::size_t points);

}  // namespace sonavex
