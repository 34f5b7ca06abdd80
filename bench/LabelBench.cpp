// The end of a measuring cycle: converts the averages of all harmonics to captions.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>

#include "core/dsp/display/MeasurementControls.h"
#include "core/dsp/display/MeterDisplay.h"
#include "core/dsp/modDSP.h"

namespace {

using namespace sonavex;

constexpr std::int32_t kFundamentalBin = 85;

// A fundamental with eight harmonics of decreasing magnitude.
void DrawLines(modDSP::State& state, double distortion) {
    state.SpecMag[kFundamentalBin] = 1.0e6;
    for (std::size_t order = 2; order <= 9; ++order)
        state.SpecMag[order * kFundamentalBin] = 1.0e6 * distortion / static_cast<double>(order);
}

// Argument: 1 if every update changes every caption, 0 if none changes.
void BM_LabelUpdate(benchmark::State& state) {
    constexpr std::int32_t kRateHz = 48000;
    MeasurementControls controls;
    MeterDisplay display(controls);
    Readings readings;
    const auto analysis = std::make_unique<modDSP::State>();
    modDSP::SetUpAnalysis(*analysis, kRateHz, 25, 23900);
    analysis->PeakBin = kFundamentalBin;
    analysis->HistIndex = modDSP::kLastSlot;
    const modDSP::BlockInputs inputs = display.Inputs(kRateHz);
    const bool changes = state.range(0) != 0;
    bool odd = false;
    for (auto _ : state) {
        odd = changes && !odd;
        DrawLines(*analysis, odd ? 0.31 : 0.17);
        modDSP::MeasureHarmonics(*analysis, inputs, readings);
        readings.locked = true;
        readings.reached = BlockStep::kHarmonics;
        display.Show(readings, analysis->CurrentPct);
        benchmark::ClobberMemory();
    }
    state.SetLabel(controls.lblThd.Caption() + " %");
}
BENCHMARK(BM_LabelUpdate)->Arg(0)->Arg(1);

// One caption, with the same argument.
void BM_SetCaption(benchmark::State& state) {
    Label label;
    const bool changes = state.range(0) != 0;
    bool odd = false;
    for (auto _ : state) {
        odd = changes && !odd;
        label.SetCaption(odd ? "0.8399" : "0.8401");
        label.Clean();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_SetCaption)->Arg(0)->Arg(1);

}  // namespace
