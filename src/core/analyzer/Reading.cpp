#include "core/analyzer/Reading.h"

#include <cmath>

namespace sonavex {

const char* Name(VoidCode code) {
    switch (code) {
        case VoidCode::kTooShort:
            return "too short";
        case VoidCode::kSilence:
            return "silence";
        case VoidCode::kNoTone:
            return "no tone";
        case VoidCode::kFrequencyTooLow:
            return "frequency too low";
        case VoidCode::kDisturbed:
            return "disturbed";
        case VoidCode::kNotFinite:
            return "not finite";
        case VoidCode::kOverload:
            return "overload";
    }
    return "";
}

const char* Name(WarningCode code) {
    switch (code) {
        case WarningCode::kUnsteadyTone:
            return "unsteady tone";
        case WarningCode::kImpulsiveNoise:
            return "impulsive noise";
        case WarningCode::kLimitedBy16Bit:
            return "limited by 16 bit";
        case WarningCode::kClipped:
            return "clipped";
        case WarningCode::kNoHarmonicInBand:
            return "no harmonic in the band";
    }
    return "";
}

double Decibels(double ratio) {
    constexpr double kNothing = -400.0;
    return ratio > 0.0 ? 20.0 * std::log10(ratio) : kNothing;
}

}  // namespace sonavex
