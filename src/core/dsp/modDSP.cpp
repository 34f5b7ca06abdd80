#include "core/dsp/modDSP.h"

#include <algorithm>
#include <cmath>

#include "core/support/RuntimeError.h"
#include "core/support/WholeNumbers.h"

namespace sonavex::modDSP {
namespace {

using namespace modSPL2VB;

constexpr std::int32_t kFilterTaps = 2048;
constexpr std::int32_t kHalfLength = kFftLength / 2;

// log2 of the transform length.
std::int32_t OrderOf(std::int32_t length) {
    std::int32_t order = 0;
    while (length > 1) {
        length /= 2;
        ++order;
    }
    return order;
}

void StartBlock(State& state) {
    if (++state.HistIndex <= kLastSlot) return;
    state.HistIndex = 0;
    state.History = {};
}

// The upper halves of the channels stay zero, because nothing writes to them.
void Split(State& state, std::span<const std::int16_t> captured) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(kBlockFrames); ++i) {
        state.ChanA[i] = captured[2 * i + 1];
        state.ChanB[i] = captured[2 * i];
    }
}

void MeasureInputLevel(State& state, Readings& readings) {
    state.InputPeak = nspdMax(state.ChanB, kFftLength);
    state.InputPeakB = nspdMax(state.ChanA, kFftLength);
    state.InputPeak = std::max(state.InputPeak, state.InputPeakB);
    readings.inputPeak = state.InputPeak;
    readings.reached = BlockStep::kInputLevel;
}

// Transforms both channels at once and filters by multiplying the spectra. Only magnitudes of the lower half
// are computed.
void FilteredSpectrum(State& state) {
    nspzrFftNip(state.plan, state.ChanA, state.ChanB, state.SpecRe, state.SpecIm, kForward);
    MultiplyComplex(state.FilterRe, state.FilterIm, state.SpecRe, state.SpecIm, kFftLength);
    Magnitudes(state.SpecRe, state.SpecIm, state.SpecMag, kHalfLength + 1);
}

void FindFundamental(State& state) {
    state.PeakMag = 0;
    state.PeakBin = 0;
    for (std::int32_t k = 1; k <= kHalfLength; ++k) {
        const double magnitude = state.SpecMag[static_cast<std::size_t>(k)];
        if (!(state.PeakMag < magnitude)) continue;
        state.PeakMag = CLng(magnitude);
        state.PeakBin = k;
    }
}

// Frequency of the strongest bin.
void MeasureFrequency(const State& state, const BlockInputs& inputs, Readings& readings) {
    readings.measuredHz = std::floor(static_cast<double>(state.BinWidth) * state.PeakBin);
    readings.automatic = inputs.automatic;
    readings.reached = BlockStep::kFrequency;
}

std::int32_t FundamentalHz(const BlockInputs& inputs, double measuredHz) {
    if (inputs.automatic) return CLng(measuredHz);
    if (inputs.typedError != 0) throw RuntimeError(inputs.typedError);
    return inputs.typedHz;
}

void TestLock(State& state, const BlockInputs& inputs, Readings& readings) {
    state.FundamentalHz = FundamentalHz(inputs, readings.measuredHz);
    const double fundamentalHz = state.FundamentalHz;
    const double rangeHz = LockRangeHz(state.BinWidth);
    state.FreqLocked = fundamentalHz - rangeHz < readings.measuredHz &&
                       readings.measuredHz < fundamentalHz + rangeHz && state.FundamentalHz != 0;
    readings.locked = state.FreqLocked;
    readings.reached = BlockStep::kLock;
}

}  // namespace

void SetUpAnalysis(State& state, std::int32_t rateHz, std::int32_t lowHz, std::int32_t highHz) {
    if (rateHz <= 0) throw RuntimeError(error_number::kDivisionByZero);
    state.LowFraction = static_cast<double>(lowHz) / rateHz;
    state.HighFraction = static_cast<double>(highHz) / rateHz;
    state.BinWidth = static_cast<float>(rateHz) / static_cast<float>(kFftLength);
    state.CutoffBin = CLng(highHz / static_cast<double>(state.BinWidth));
    state.FftOrder = OrderOf(kFftLength);
    nspdFirBandpass(state.LowFraction, state.HighFraction, state.FilterTaps, kFilterTaps, kBlackman, 1);
    nspzrFftNip(state.plan, state.FilterTaps, state.FilterZero, state.FilterRe, state.FilterIm, kForward);
}

void ProcessCapturedBlock(State& state, const BlockInputs& inputs, Readings& readings, BlockFill& generator,
                          std::span<const std::int16_t> captured, std::span<std::int16_t> playback) {
    readings = {};
    if (captured.size() < kBlockSamples || playback.size() < kBlockSamples)
        throw RuntimeError(error_number::kSubscript);
    StartBlock(state);
    Split(state, captured);
    MeasureInputLevel(state, readings);
    FilteredSpectrum(state);
    FindFundamental(state);
    MeasureFrequency(state, inputs, readings);
    TestLock(state, inputs, readings);
    if (state.FreqLocked) MeasureHarmonics(state, inputs, readings);
    readings.reached = BlockStep::kHarmonics;
    MakeOutput(state, inputs.mute, readings, generator, playback);
}

}  // namespace sonavex::modDSP
