#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/stimulus/Stimulus.h"

namespace sonavex {

// How a stimulus is to be played.
struct StimulusRequest {
    Stimulus stimulus;
    double rateHz = 48000;
    std::size_t length = 65536;  // of a record, a power of two
    double levelDbfs = -1;       // checked by CheckLevel
    bool snap = false;           // to the nearest odd bin of a record
};

// A tone as it is played.
struct PlannedTone {
    std::uint64_t step = 0;  // frequency in 2^-64 turns per sample
    double hertz = 0;
    double amplitude = 1;  // only its ratio to the other tones counts
};

// A stimulus with its frequencies at a rate.
struct StimulusPlan {
    StimulusShape shape = StimulusShape::kSine;
    std::vector<PlannedTone> tones;  // in rising order for a multitone of tones per octave
    double rateHz = 0;
    std::size_t length = 0;
    double levelDbfs = 0;

    // Whether the stimulus is played from one period of a record's length, which takes time to render. Its
    // tones are on bins of the record. Sines and pairs are computed sample by sample.
    bool Periodic() const noexcept { return shape != StimulusShape::kSine && shape != StimulusShape::kPair; }
};

// Tones are this far from each other, from 0 Hz and from half the rate.
inline constexpr double kBinsBetweenTones = 8.0;
// Harmonics of square, triangle and sawtooth end at this part of the rate.
inline constexpr double kHighestPart = 0.45;

// Chooses the frequencies. StimulusError for a frequency outside the limits of the rate and for tones that
// are too close.
StimulusPlan PlanStimulus(const StimulusRequest& request);

}  // namespace sonavex
