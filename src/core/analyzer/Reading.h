#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/analyzer/NoiseSpectrum.h"

namespace sonavex {

// A value with its 95 % uncertainty (half the width of the interval) in the same unit.
struct Value {
    std::optional<double> value;  // empty: not defined
    std::optional<double> uncertainty;

    // Noise hides the value; `value` is an upper bound and has no uncertainty.
    bool atMost = false;
};

enum class VoidCode {
    kTooShort,
    kSilence,
    kNoTone,
    kFrequencyTooLow,
    kDisturbed,
    kNotFinite,
    kOverload,
};

enum class WarningCode {
    kUnsteadyTone,
    kImpulsiveNoise,
    kLimitedBy16Bit,
    kClipped,
    kNoHarmonicInBand,
};

// "too short", "no tone" ...
const char* Name(VoidCode code);
const char* Name(WarningCode code);

// Why a reading is not valid, with a sentence that names the cause.
struct Void {
    VoidCode code;
    std::string sentence;
};

struct Warning {
    WarningCode code;
    std::string sentence;
};

struct Harmonic {
    int order = 0;
    Value levelDbc;

    // psi of x = sin(t) + h sin(order t + psi), -180 to 180. Independent of where the record starts.
    Value phaseDegrees;
};

struct Spur {
    double frequencyHz = 0;
    double levelDbc = 0;
};

// The values of one record, or of an average of several. Levels in dBFS are relative to a full-scale sine.
struct Reading {
    std::vector<Void> voids;
    std::vector<Warning> warnings;
    bool Valid() const noexcept { return voids.empty(); }

    Value frequencyHz;
    Value levelDbfs;  // of the fundamental
    Value dc;         // full scale = 1

    Value thdPercent;  // relative to the fundamental
    Value thdDb;
    Value thdRPercent;  // relative to fundamental and harmonics
    double thdFloorDb = 0;
    Value thdnDb;       // relative to the fundamental
    Value thdnRDb;      // relative to the total
    Value thdnNotchDb;  // through a notch of quality 2, relative to the total
    Value sinadDb;
    Value snrDb;
    Value enob;  // bits, relative to full scale
    Value noiseDbfs;
    Value noiseADbfs;
    Value noise468Dbfs;
    Value noiseCcirRmsDbfs;
    Value skirtDb;  // relative to the fundamental
    Value sfdrDb;

    std::vector<Harmonic> harmonics;  // every fitted order
    std::vector<Spur> spurs;          // strongest first

    int highestOrder = 0;  // up to which THD sums
    std::size_t lines = 0;
    std::size_t length = 0;
    std::size_t blocks = 0;
    int bits = 0;
    bool floatingPoint = false;
    Band band;
};

// dB of an amplitude ratio; -400 for 0.
double Decibels(double ratio);

}  // namespace sonavex
