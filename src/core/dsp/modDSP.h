#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "core/dsp/BlockFill.h"
#include "core/dsp/Readings.h"
#include "core/dsp/modSPL2VB.h"
#include "core/support/BlockSize.h"

// The analysis of one captured block: band-pass in the frequency domain, search for the fundamental,
// harmonics, averages over a cycle of 19 blocks, levels, and the next block of output.
namespace sonavex::modDSP {

inline constexpr std::size_t kVectorSize = 4097;
inline constexpr std::int32_t kFftLength = 4096;
inline constexpr std::size_t kHarmonics = Readings::kHarmonics;
inline constexpr std::int32_t kLastSlot = 18;  // 19 slots make a cycle

// Settings for one block.
struct BlockInputs {
    std::int32_t sampleRateHz = 0;
    bool automatic = false;  // the fundamental is the strongest bin, not the typed frequency
    bool mute = false;       // the input is not sent to the output
    bool baseline = false;   // BaselinePct is subtracted from the averages
    // The typed frequency in whole Hz, or the number of the error that its text raises when it is used. Not
    // used if automatic.
    std::int32_t typedHz = 0;
    std::int32_t typedError = 0;
};

// Aligned for the widest vector instructions.
struct alignas(64) AnalysisVector : std::array<double, kVectorSize> {};

// Real and imaginary parts of each transform are adjacent, as the plan expects.
struct State {
    float BinWidth = 0.0F;  // Hz
    std::int32_t FftOrder = 12;
    std::int32_t CutoffBin = 0;  // bin of the band's upper edge
    double LowFraction = 0.0;    // band edges, fractions of the sampling rate
    double HighFraction = 0.0;
    AnalysisVector FilterTaps{};
    AnalysisVector FilterZero{};
    AnalysisVector FilterRe{};  // frequency response of the band-pass, 4096 bins
    AnalysisVector FilterIm{};

    AnalysisVector ChanA{};       // second sample of each frame, zero from 2048 on
    AnalysisVector ChanB{};       // first sample of each frame
    AnalysisVector SpecRe{};      // filtered spectrum, then the output signal of channel A
    AnalysisVector SpecIm{};      // and of channel B
    AnalysisVector FilteredRe{};  // input of the inverse transform
    AnalysisVector FilteredIm{};
    AnalysisVector SpecMag{};  // magnitudes of bins 0 to 2048
    AnalysisVector TailA{};    // part of the filter response that extends into the next block
    AnalysisVector TailB{};

    double InputPeak = 0.0;  // 16-bit steps, largest sample by sign
    double InputPeakB = 0.0;
    double OutputPeak = 0.0;  // 16-bit steps, longest two-channel vector
    double SynthPeak = 0.0;
    std::int32_t PeakBin = 0;
    std::int32_t PeakMag = 0;
    std::int32_t FundamentalHz = 0;
    bool FreqLocked = false;

    std::int32_t HistIndex = 0;
    // [slot][0: distortion up to the harmonic, percent; 1: harmonic / fundamental][harmonic - 2]
    std::array<std::array<std::array<double, 10>, 2>, 21> History{};
    std::array<double, kHarmonics> CurrentPct{};  // last shown values, set by the display; 0 for "N/A"
    // Averages of the last update from which a baseline was subtracted; none without a baseline.
    std::array<std::optional<double>, kHarmonics> UncorrectedPct{};
    std::array<double, kHarmonics> CurrentDb{};  // last computed values
    std::int32_t CurrentHz = 0;                  // the fundamental of both; 0 before the first
    std::int32_t CurrentRate = 0;                // the sampling rate of both, Hz; 0 before the first
    std::array<double, kHarmonics> BaselinePct{};
    std::array<double, kHarmonics> BaselineDb{};

    modSPL2VB::FftPlan plan{12, sizeof(AnalysisVector) / sizeof(double)};
};

// The peak must be nearer to the fundamental than this, Hz. Bins are up to 46.9 Hz wide, and the frequency of
// a peak is rounded down.
inline double LockRangeHz(float binWidthHz) noexcept {
    return std::max(14.0, static_cast<double>(binWidthHz) / 2.0 + 1.0);
}

// Designs the band-pass from lowHz to highHz for this sampling rate. Error 11 for a rate that is not
// positive.
void SetUpAnalysis(State& state, std::int32_t rateHz, std::int32_t lowHz, std::int32_t highHz);

// Analyses one block and makes the next block of output. captured, playback: kBlockSamples interleaved
// samples (error 9 if shorter). Raises the error of a typed frequency, and error 11 for a fundamental of
// magnitude 0. After an error, `readings` says which steps were completed. Does not allocate.
void ProcessCapturedBlock(State& state, const BlockInputs& inputs, Readings& readings, BlockFill& generator,
                          std::span<const std::int16_t> captured, std::span<std::int16_t> playback);

// Steps of ProcessCapturedBlock, each in a separate source.

// Adds this block's harmonic sums to the history, and averages them into the readings when the cycle ends.
void MeasureHarmonics(State& state, const BlockInputs& inputs, Readings& readings);
// Makes the samples to play from the filtered spectrum.
void MakeOutput(State& state, bool mute, Readings& readings, BlockFill& generator,
                std::span<std::int16_t> playback);

}  // namespace sonavex::modDSP
