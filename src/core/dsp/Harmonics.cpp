#include <cmath>
#include <optional>

#include "core/dsp/modDSP.h"
#include "core/support/RuntimeError.h"
#include "core/support/WholeNumbers.h"

namespace sonavex::modDSP {
namespace {

// The 2nd harmonic of this bin is in bin 2046. Up to this bin it has a percentage, even beyond MaxBin.
constexpr std::int32_t kHighestWithSecond = 1023;

struct HarmonicSums {
    double all = 0.0;   // fundamental and harmonics
    double harm = 0.0;  // harmonics alone
};

double Magnitude(const State& state, std::int32_t bin) {
    if (bin < 0 || bin >= static_cast<std::int32_t>(kVectorSize))
        throw RuntimeError(error_number::kSubscript);
    return state.SpecMag[static_cast<std::size_t>(bin)];
}

double Power(const State& state, std::int32_t bin) {
    const double magnitude = Magnitude(state, bin);
    return magnitude * magnitude;
}

// A harmonic counts only below this bin.
std::int32_t MaxBin(const State& state, std::int32_t sampleRateHz) {
    return (sampleRateHz / 2 - 1000) / CLng(static_cast<double>(state.BinWidth));
}

HarmonicSums SecondHarmonicSums(const State& state) {
    const std::int32_t k = state.PeakBin;
    if (k > kHighestWithSecond) return {};
    return {std::sqrt(Power(state, 2 * k) + Power(state, k)), std::sqrt(Power(state, 2 * k))};
}

// Sums harmonics 2 to h + 1. A harmonic at or beyond MaxBin resets both sums to zero.
HarmonicSums SumsUpTo(const State& state, std::int32_t h, std::int32_t maxBin) {
    if (h == 1) return SecondHarmonicSums(state);
    const std::int32_t k = state.PeakBin;
    HarmonicSums sums{Power(state, k), 0.0};
    for (std::int32_t j = 1; j <= h; ++j) {
        if ((j + 1) * k < maxBin) {
            const double power = Power(state, (j + 1) * k);
            sums.all += power;
            sums.harm += power;
        } else {
            sums = {};
        }
    }
    return {std::sqrt(sums.all), std::sqrt(sums.harm)};
}

double RatioToFundamental(const State& state, std::int32_t h, std::int32_t maxBin) {
    const std::int32_t k = state.PeakBin;
    if ((h + 1) * k >= maxBin) return 0.0;
    const double fundamental = Magnitude(state, k);
    if (fundamental == 0.0) throw RuntimeError(error_number::kDivisionByZero);
    return Magnitude(state, (h + 1) * k) / fundamental;
}

double Average(const State& state, std::size_t kind, std::size_t harmonic) {
    double sum = 0.0;
    for (std::size_t slot = 0; slot <= static_cast<std::size_t>(kLastSlot); ++slot)
        sum += state.History[slot][kind][harmonic];
    return sum / (kLastSlot + 1);
}

std::optional<double> CorrectedPercent(const State& state, std::size_t harmonic, double averagePct,
                                       bool baseline) {
    if (baseline) averagePct -= state.BaselinePct[harmonic];
    if (averagePct == 0.0) return std::nullopt;
    return averagePct;
}

std::optional<double> LevelDb(const State& state, std::size_t harmonic) {
    const double averageRatio = Average(state, 1, harmonic);
    if (averageRatio == 0.0) return std::nullopt;
    const double bels = std::log(averageRatio) / std::log(10.0);
    return bels * 10.0 * 2.0;
}

// An unavailable level leaves CurrentDb unchanged.
HarmonicReading AverageHarmonic(State& state, std::size_t harmonic, bool baseline) {
    HarmonicReading reading;
    reading.averagePct = Average(state, 0, harmonic);
    reading.percent = CorrectedPercent(state, harmonic, reading.averagePct, baseline);
    state.UncorrectedPct[harmonic].reset();
    if (baseline) state.UncorrectedPct[harmonic] = reading.averagePct;
    reading.levelDb = LevelDb(state, harmonic);
    if (reading.levelDb) state.CurrentDb[harmonic] = *reading.levelDb;
    return reading;
}

}  // namespace

void MeasureHarmonics(State& state, const BlockInputs& inputs, Readings& readings) {
    const std::int32_t maxBin = MaxBin(state, inputs.sampleRateHz);
    auto& slot = state.History[static_cast<std::size_t>(state.HistIndex)];
    for (std::int32_t h = 1; h <= static_cast<std::int32_t>(kHarmonics); ++h) {
        const auto harmonic = static_cast<std::size_t>(h - 1);
        const HarmonicSums sums = SumsUpTo(state, h, maxBin);
        slot[0][harmonic] = sums.all != 0.0 ? sums.harm * 100.0 / sums.all : 0.0;
        slot[1][harmonic] = RatioToFundamental(state, h, maxBin);
        if (state.HistIndex != kLastSlot) continue;
        readings.harmonics[harmonic] = AverageHarmonic(state, harmonic, inputs.baseline);
        readings.harmonicsAveraged = harmonic + 1;
    }
    if (state.HistIndex != kLastSlot) return;
    state.CurrentHz = state.FundamentalHz;
    state.CurrentRate = inputs.sampleRateHz;
}

}  // namespace sonavex::modDSP
