#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <variant>
#include <vector>

#include "core/analyzer/NoiseSpectrum.h"
#include "core/run/Settling.h"
#include "core/stimulus/SampleWord.h"

namespace sonavex {

// A run, a limit or a file of either that cannot be used. The text is one line for the user.
class RunError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class RunAxis { kFrequency, kLevel };

// Values from one end to the other, in either direction. Both ends belong to the range, also when the last
// step is shorter than the others.
struct RunRange {
    enum class Spacing {
        kPerOctave,          // amount: points in an octave
        kStep,               // amount: distance of the points
        kLogarithmicPoints,  // amount: points in all, at least 2
        kLinearPoints,
    };
    double from = 20;
    double to = 20000;
    Spacing spacing = Spacing::kPerOctave;
    double amount = 6;
    bool operator==(const RunRange&) const = default;
};

using RunValues = std::variant<std::vector<double>, RunRange>;

// A tone stepped over frequency or level, as data. Levels in dBFS, of a full-scale sine.
struct RunPlan {
    RunAxis over = RunAxis::kFrequency;
    // The axis is measured once for each value of the other list.
    RunValues frequenciesHz = RunRange();
    RunValues levelsDbfs = std::vector<double>{-1.0};
    double highestLevelDbfs = 0;  // no point and no other sound of the run is louder

    StimulusSide side = StimulusSide::kBoth;
    bool dither = true;
    std::optional<int> ditherBits;  // empty: the bits of the output
    bool snap = false;              // to the nearest odd bin of a record

    std::size_t length = 0;   // samples of a record; 0: DefaultRecordLength
    std::size_t channel = 0;  // 0 left, 1 right
    Band band;
    int highestOrder = 9;  // up to which THD sums

    SettlingLimits settling;

    // Before the first point a fast sweep shows the response and the harmonics at the frequencies of the
    // first level. Only over frequency.
    bool preview = false;
};

// Limits and axes use the requested frequency.
struct RunPoint {
    double requestedHz = 0;
    double playedHz = 0;
    double levelDbfs = 0;
};

// Whether two points were requested alike.
inline bool SamePoint(const RunPoint& point, const RunPoint& other) {
    return point.requestedHz == other.requestedHz && point.levelDbfs == other.levelDbfs;
}

inline constexpr std::size_t kMostRunPoints = 2000;

// Samples of a record at this rate.
std::size_t RecordLengthOf(const RunPlan& plan, double rateHz);

// The points in the order in which they are measured. With snap, the lowest and the highest frequency are
// played on the next odd bin inside the range. RunError for frequencies below 8 bins or above 0.45 of the
// rate, levels above the highest one, and settings out of range.
std::vector<RunPoint> PointsOf(const RunPlan& plan, double rateHz);

}  // namespace sonavex
