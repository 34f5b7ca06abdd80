#pragma once

#include <functional>
#include <optional>

#include "core/precise/PreciseMeter.h"
#include "core/precise/StimulusPlayer.h"

namespace sonavex {

// Stimulus and precise meter together: the meter follows every change of the stimulus, and a burst before the
// first stimulus measures the delay of the path.
class PreciseMeasurement {
public:
    // All referenced objects must outlive this object.
    explicit PreciseMeasurement(const StimulusPlayer::Needs& needs);
    PreciseMeasurement(const PreciseMeasurement&) = delete;
    PreciseMeasurement& operator=(const PreciseMeasurement&) = delete;

    // Measures what arrives, and plays the stimulus if there is one. Without it, what plays continues.
    // Frequencies that the settings do not name are those of the stimulus. StimulusError and
    // std::invalid_argument as in StimulusPlayer and PreciseMeter.
    void Start(const PreciseSettings& settings, const std::optional<StimulusChoice>& stimulus);
    // Ends the measurement at once, and the stimulus with a ramp.
    void Stop();

    // Called when Player.OnChanged is.
    std::function<void()> OnChanged;

    PreciseMeter Meter;
    StimulusPlayer Player;

private:
    void Follow();
    void MeasureStimulus();

    StimulusPlayer::Needs needs_;
    PreciseSettings settings_;
    bool measuring_ = false;
};

}  // namespace sonavex
