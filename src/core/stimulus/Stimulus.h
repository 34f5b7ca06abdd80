#pragma once

#include <stdexcept>
#include <vector>

namespace sonavex {

enum class StimulusShape {
    kSine,
    kPair,
    kMultitone,
    kSquare,
    kTriangle,
    kSawtooth,
    kWhiteNoise,
    kPinkNoise,
};

struct StimulusTone {
    double hertz = 0;
    double amplitude = 1;  // only its ratio to the other tones counts
};

// What to play, independent of rate and level.
struct Stimulus {
    StimulusShape shape = StimulusShape::kSine;

    // One tone for a sine, square, triangle and sawtooth, two for a pair, any number for a multitone. Empty
    // for noise and for a multitone of tonesPerOctave.
    std::vector<StimulusTone> tones;

    // Not 0: equal tones at this spacing from 20 Hz to 20 kHz.
    int tonesPerOctave = 0;
};

inline bool IsNoise(StimulusShape shape) noexcept {
    return shape == StimulusShape::kWhiteNoise || shape == StimulusShape::kPinkNoise;
}

// Square, triangle and sawtooth.
inline bool HasHarmonics(StimulusShape shape) noexcept {
    return shape == StimulusShape::kSquare || shape == StimulusShape::kTriangle ||
           shape == StimulusShape::kSawtooth;
}

// A stimulus that cannot be played. The text is one line for the user.
class StimulusError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace sonavex
