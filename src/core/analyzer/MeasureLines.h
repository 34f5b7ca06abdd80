#pragma once

#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/analyzer/FitLines.h"
#include "core/analyzer/LinesReading.h"
#include "core/analyzer/NoiseSpectrum.h"
#include "core/analyzer/Record.h"
#include "core/analyzer/RecordPlan.h"

namespace sonavex {

struct MeasuredTone {
    double frequencyHz = 0;
    double frequencySigmaHz = 0;  // standard deviation in one record
    double amplitude = 0;         // peak
};

struct MeasuredProduct {
    int n1 = 0;
    int n2 = 0;

    // Peak; its phase is that of the line minus n1 and n2 times those of the tones, so that it does not
    // depend on where the record starts.
    std::complex<double> amplitude;
};

// What one record of several tones, or of noise, contains, in the form that can be averaged.
struct LinesMeasurement {
    std::vector<Void> voids;
    std::vector<Warning> warnings;
    int bits = 0;
    bool floatingPoint = false;
    std::size_t blocks = 1;

    // Samples from the start of the last but one record to the start of the last; 0: a quarter of a record.
    std::size_t lastShift = 0;

    std::vector<MeasuredTone> tones;  // in ascending order of frequency
    std::vector<MeasuredProduct> products;
    // Closer than 6 bins to another line, or than 8 bins to 0 Hz or half the rate.
    std::vector<MeasuredProduct> dropped;
    double dc = 0;
    double peak = 0;                    // largest sample
    std::vector<double> residualPower;  // RecordPlan::PowerSpectrum of the residual
    double excessKurtosis = 0;          // of the residual's samples
};

// Each measures the last samples of a record, as many as the plan's length. `fit`, when not null, receives
// the fitted lines, tones first, and the residual; it is not changed if there is nothing to fit.

// How far from the given frequencies the tones of a pair are searched, at most to the middle between them and
// 1 bin beyond it.
enum class PairSearch {
    kGiven,   // within 1 % and 1 bin
    kPlayed,  // within 1000 ppm and 3 bins: this program plays the tones
};

// Two tones and their products to order 5. tonesHz: where they are searched; empty: the two strongest lines.
// band: for the search of damage.
LinesMeasurement MeasurePair(const RecordPlan& plan, Record record, std::span<const double> tonesHz,
                             const Band& band, FittedLines* fit = nullptr,
                             PairSearch search = PairSearch::kGiven);

// Tones with one clock ratio to these frequencies, which are known within 1000 ppm and 3 bins.
LinesMeasurement MeasureMultitone(const RecordPlan& plan, Record record, std::span<const double> tonesHz,
                                  const Band& band, FittedLines* fit = nullptr);

// Dc alone. The residual is the noise. It is searched for bursts; samples that were lost, repeated or zeroed
// are found only where noise of low frequencies makes a step of them. In white noise they change nothing.
LinesMeasurement MeasureNoise(const RecordPlan& plan, Record record, FittedLines* fit = nullptr);

// Why these tones cannot be measured together, as a sentence; empty if they can: at least 8 bins, below half
// the rate less 8 bins, 6 bins apart.
std::optional<std::string> TonesFault(const RecordPlan& plan, std::span<const double> tonesHz);

// Adds a record that overlaps the last one by 75 % to a mean of all since the start: products as complex
// numbers, noise by power. Begins again after a void measurement, or when a tone has changed its frequency
// (more than 4 sigma of the change and 1e-7) or its level (more than 0.01 dB). shift: samples from the start
// of the record before to the start of this one; 0: a quarter of a record.
void AddToMean(std::optional<LinesMeasurement>& mean, LinesMeasurement next, std::size_t shift = 0);

LinesReading MakePairReading(const RecordPlan& plan, const LinesMeasurement& measurement, const Band& band);
LinesReading MakeMultitoneReading(const RecordPlan& plan, const LinesMeasurement& measurement,
                                  const Band& band);
LinesReading MakeNoiseReading(const RecordPlan& plan, const LinesMeasurement& measurement, const Band& band);

}  // namespace sonavex
