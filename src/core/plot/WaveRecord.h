#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace sonavex {

// A harmonic next to the fundamental sin(t): amplitude sin(order t + phase).
struct WaveHarmonic {
    int order = 0;
    double amplitude = 0;  // full scale 1
    double phaseRadians = 0;
};

// The end of a record, as it is drawn. Full scale is 1, times are in samples from the first one.
struct WaveRecord {
    double rateHz = 48000;
    std::optional<double> fundamentalHz;  // without it 5 ms take the place of a period
    double phaseRadians = 0;              // the fundamental is sin(2 pi time / period + phase)
    std::vector<WaveHarmonic> harmonics;  // in ascending order, without bounds
    std::vector<float> samples;
    std::vector<float> captured;  // the samples without dc and fundamental; empty: unknown
};

inline constexpr double kSecondsWithoutTone = 0.005;
double PeriodSeconds(const WaveRecord& record);

// Copies as much of the end of a record as the plot can show. residual: the samples without dc, fundamental
// and harmonics, as many as there are samples, or none.
std::shared_ptr<const WaveRecord> EndOfRecord(double rateHz, std::optional<double> fundamentalHz,
                                              std::vector<WaveHarmonic> harmonics,
                                              std::span<const double> samples,
                                              std::span<const double> residual);

// The sum of the harmonics.
double HarmonicsAt(const WaveRecord& record, double time);

}  // namespace sonavex
