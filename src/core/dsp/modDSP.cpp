#include "core/dsp/modDSP.h"

#include <algorithm>
#include <cmath>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex::modDSP {
namespace {

using namespace modSPL2VB;

constexpr std::int32_t kFilterTaps = 2048;
constexpr std::int32_t kHalfLength = kFftLength / 2;

// Number of halvings from the transform length to 1.
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

// The upper halves of the channels stay zero: nothing else writes to them.
void Split(State& state, std::span<const std::int16_t> captured) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(kBlockFrames); ++i) {
        state.ChanA[i] = captured[2 * i + 1];
        state.ChanB[i] = captured[2 * i];
    }
}

void ShowInputLevel(State& state, MeasurementControls& controls) {
    state.InputPeak = nspdMax(state.ChanB, kFftLength);
    state.InputPeakB = nspdMax(state.ChanA, kFftLength);
    state.InputPeak = std::max(state.InputPeak, state.InputPeakB);
    // A block without any positive sample counts as overload too.
    if (state.InputPeak >= kFullScale || state.InputPeak <= 0.0) {
        controls.prgADC.SetValue(static_cast<float>(kFullScale));
        controls.LblLevel.SetCaption("Ovr");
        return;
    }
    controls.prgADC.SetValue(static_cast<float>(state.InputPeak));
    controls.LblLevel.SetCaption(Format(state.InputPeak / kFullScale * 100.0, Pattern::kWhole));
}

// Both channels in one complex transform, filtered by multiplying the spectra. Only the magnitudes of
// the lower half are read, and no phases.
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

// Frequency of the peak's bin, whole Hz, rounded down.
double MeasuredHz(const State& state) {
    return std::floor(static_cast<double>(state.BinWidth) * state.PeakBin);
}

void TestLock(State& state, MeasurementControls& controls) {
    const double measuredHz = MeasuredHz(state);
    if (controls.chkAuto.Checked()) controls.txtFreq.SetText(Trim(Str(measuredHz)));
    state.FundamentalHz = CLng(Val(controls.txtFreq.Text()));
    const double fundamentalHz = state.FundamentalHz;
    state.FreqLocked = fundamentalHz - kLockRangeHz < measuredHz &&
                       measuredHz < fundamentalHz + kLockRangeHz && state.FundamentalHz != 0;
    const Colour colour = state.FreqLocked ? kLightGreen : kLightRed;
    controls.picLocked.SetBackColor(colour);
    controls.GenLocked.SetBackColor(colour);
}

}  // namespace

void SetUpAnalysis(State& state, std::int32_t lowHz, std::int32_t highHz) {
    const std::int32_t rate = state.shared.SampleRate;
    if (rate <= 0) throw RuntimeError(error_number::kDivisionByZero);
    state.LowFraction = static_cast<double>(lowHz) / rate;
    state.HighFraction = static_cast<double>(highHz) / rate;
    state.BinWidth = static_cast<float>(rate) / static_cast<float>(kFftLength);
    state.CutoffBin = CLng(highHz / static_cast<double>(state.BinWidth));
    state.FftOrder = OrderOf(kFftLength);
    nspdFirBandpass(state.LowFraction, state.HighFraction, state.FilterTaps, kFilterTaps, kBlackman, 1);
    nspzrFftNip(state.plan, state.FilterTaps, state.FilterZero, state.FilterRe, state.FilterIm, kForward);
}

void ProcessCapturedBlock(State& state, MeasurementControls& controls, BlockFill& generator,
                          std::span<const std::int16_t> captured, std::span<std::int16_t> playback) {
    if (captured.size() < kBlockSamples || playback.size() < kBlockSamples)
        throw RuntimeError(error_number::kSubscript);
    StartBlock(state);
    Split(state, captured);
    ShowInputLevel(state, controls);
    FilteredSpectrum(state);
    FindFundamental(state);
    TestLock(state, controls);
    if (state.FreqLocked)
        MeasureHarmonics(state, controls);
    else
        ShowUnlocked(controls);
    MakeOutput(state, controls, generator, playback);
}

}  // namespace sonavex::modDSP
