#pragma once

#include <complex>
#include <cstddef>
#include <optional>
#include <vector>

#include "core/analyzer/FitLines.h"
#include "core/analyzer/NoiseSpectrum.h"
#include "core/analyzer/Reading.h"
#include "core/analyzer/Record.h"
#include "core/analyzer/RecordPlan.h"

namespace sonavex {

struct ToneSettings {
    Band band;
    int highestOrder = 9;  // up to which THD sums

    // Where the fundamental is searched. Neither: the strongest line of the record.
    std::optional<double> fundamentalHz;  // within 1 %
    std::optional<double> playedHz;       // within 1000 ppm and 3 bins
};

// A harmonic relative to the fundamental: x = sin(t) + |ratio| sin(order t + arg ratio).
struct HarmonicRatio {
    int order = 0;
    std::complex<double> ratio;
};

// What one record contains, in the form that can be averaged.
struct ToneMeasurement {
    std::vector<Void> voids;
    std::vector<Warning> warnings;

    double rateHz = 0;
    int bits = 0;
    bool floatingPoint = false;
    std::size_t blocks = 1;

    // Independent records that have the variance of this measurement: of amplitudes, of the frequency, of
    // powers.
    double amplitudeRecords = 1;
    double frequencyRecords = 1;
    double powerRecords = 1;

    double frequencyHz = 0;
    double frequencySigmaHz = 0;  // standard deviation in one record
    double amplitude = 0;         // of the fundamental, peak
    // The fundamental is amplitude sin(phase) at the centre of the record, (length - 1) / 2 samples after its
    // first one. Radians. In an average, of any one record.
    double phase = 0;
    double dc = 0;
    std::vector<HarmonicRatio> harmonics;
    std::vector<double> residualPower;  // RecordPlan::PowerSpectrum of the residual

    double excessKurtosis = 0;  // of the residual's samples
};

// The fundamental and its harmonics 2 to max(20, highest order), as far as they are below half the rate less
// kGuardBins.
std::vector<LineToFit> HarmonicLines(const RecordPlan& plan, double fundamentalHz, int highestOrder);

// Measures the last samples of a record, as many as the plan's length: fundamental, harmonics, residual. The
// rate of the record is the plan's. `fit`, when not null, receives the fitted lines (fundamental first) and
// the residual; it is not changed if there is nothing to fit.
ToneMeasurement MeasureTone(const RecordPlan& plan, Record record, const ToneSettings& settings,
                            FittedLines* fit = nullptr);

// The values of a measurement. A void measurement gives a reading without values.
Reading MakeReading(const RecordPlan& plan, const ToneMeasurement& measurement, const ToneSettings& settings);

Reading AnalyzeTone(const RecordPlan& plan, const Record& record, const ToneSettings& settings);

}  // namespace sonavex
