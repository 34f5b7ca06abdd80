#pragma once

#include <vector>

#include "core/analyzer/NoiseSpectrum.h"

namespace sonavex {

// A line in the residual that was not fitted.
struct SpurLine {
    double frequencyHz = 0;
    double amplitude = 0;  // peak
};

// Peaks of a residual that are at least 17 dB above the noise around them, strongest first, at most 50.
// Skirts of tones do not count.
std::vector<SpurLine> FindSpurs(const NoiseSpectrum& noise);

}  // namespace sonavex
