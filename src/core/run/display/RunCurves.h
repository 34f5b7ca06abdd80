#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/preview/PreviewAnalysis.h"
#include "core/run/RunLimits.h"

namespace sonavex {

// What a plot of a run draws: four ratios in dB at the left axis, and the level of the fundamental in dBFS at
// the right one.
enum class RunSeries { kThd, kThdn, kSecond, kThird, kLevel };
inline constexpr int kRunSeriesCount = 5;

// "THD", "THD+N", "H2", "H3", "Level"
const char* NameOf(RunSeries series);
// "dB", "dBc" or "dBFS"
const char* UnitOf(RunSeries series);
// Not defined for a void point, and for harmonics outside the band.
Value ValueOf(const RunPointResult& result, RunSeries series);

// Position of a point on the axis of a run: log10 of the requested frequency in Hz, or the level in dBFS.
double PositionOf(const RunPoint& point, RunAxis over);

struct RunCurvePoint {
    double position = 0;
    double value = 0;
    bool bound = false;  // an upper bound, hidden by noise
};

// Points that a line joins.
using RunCurve = std::vector<RunCurvePoint>;

// The pieces of a series. A piece ends where a value is missing, and where the next tone of the list begins.
std::vector<RunCurve> CurvesOf(std::span<const RunPointResult> results, RunAxis over, RunSeries series);

// A preview of the points of the first level.
struct RunPreviewData {
    std::span<const PreviewPoint> preview;
    std::span<const RunPoint> points;  // of the whole run
    std::size_t measured = 0;          // from the first one on: these are not drawn
    double bandHighHz = 20000;         // a harmonic ends here
};

// Harmonics and level; nothing for THD and THD+N, and nothing less than 10 dB above the mean noise.
std::vector<RunCurve> PreviewCurvesOf(const RunPreviewData& data, RunSeries series);

struct RunLimitLine {
    RunCurve curve;
    bool atLevelAxis = false;  // of the response: in dBFS at the right axis
    std::string flag;          // "-90"; empty for a line that is not constant
};

// The limits over the part of the axis that the points cover. points: of the whole run.
std::vector<RunLimitLine> LimitLinesOf(std::span<const RunLimit> limits, std::span<const RunPoint> points,
                                       RunAxis over);

}  // namespace sonavex
