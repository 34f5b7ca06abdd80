#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/audio/StreamEngine.h"
#include "core/precise/PreciseMeasurement.h"
#include "core/run/PathDelay.h"
#include "core/run/RunResult.h"

namespace sonavex {

// The phases of the points of a run, and the delay of its path: that of the burst, refined by the slope of
// the phases that follow it. Phases are not defined when input and output are not known to share a clock.
class RunPhase {
public:
    // Both must outlive this object.
    RunPhase(const StreamEngine& engine, const PreciseMeasurement& measurement)
        : engine_(engine), measurement_(measurement) {}

    // highestHz: of the run that begins.
    void Start(double highestHz);
    // Whether the frames have lost their relation to the burst that the last points followed.
    bool PathLost() const;

    // A record of a point: its fundamental, and the number of the captured frame at which it begins.
    struct PointRecord {
        double phase = 0;  // ToneMeasurement::phase
        std::uint64_t firstFrame = 0;
    };
    // Adds a point, whose stimulus still plays, and brings the results up to date: the point's, and those of
    // the others that followed the same burst. Additive noise makes the same error of the phase in radians as
    // of the amplitude, relatively (Rife and Boorstyn 1974, "Single-tone parameter estimation from
    // discrete-time observations"), so the uncertainty is that of the level. It does not include that of the
    // delay.
    void Add(std::size_t point, const std::array<PointRecord, 2>& records,
             std::vector<RunPointResult>& results);

private:
    struct Phase {
        std::size_t point;
        double hertz;
        double turns;  // after the delay that the burst says
    };

    void FollowBurst(const PreciseMeter::StimulusArrival& arrival);
    void Put(std::vector<RunPointResult>& results) const;

    const StreamEngine& engine_;
    const PreciseMeasurement& measurement_;
    double highestHz_ = 0;
    std::optional<PreciseMeter::StimulusArrival> arrival_;
    PathDelay delay_{1.0};
    std::vector<Phase> phases_;
};

}  // namespace sonavex
