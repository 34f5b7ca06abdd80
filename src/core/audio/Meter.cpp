#include "core/audio/Meter.h"

#include <utility>

namespace sonavex {

Meter::Meter(const SharedState& shared)
    : Generator(shared), shared_(shared), analysis_(std::make_unique<modDSP::State>()) {}

void Meter::SetUpAnalysis(std::int32_t lowHz, std::int32_t highHz) {
    modDSP::SetUpAnalysis(*analysis_, shared_.SampleRate, lowHz, highHz);
}

void Meter::ShowReadings() {
    Display.Show(readings_, analysis_->CurrentPct);
    Display.ShowCycle(blocks_ == 0 ? 0 : CyclePosition(), shownSettled_);
}

void Meter::Analyse(std::span<const std::int16_t> captured, std::span<std::int16_t> playback) {
    try {
        modDSP::ProcessCapturedBlock(*analysis_, Display.Inputs(shared_.SampleRate), readings_, Generator,
                                     captured, playback);
    } catch (...) {
        ShowReadings();
        throw;
    }
}

void Meter::ProcessCapturedBlock(std::span<const std::int16_t> captured, std::span<std::int16_t> playback) {
    // After a block that fails, the next one counts as disturbed.
    const bool disturbed = std::exchange(disturbed_, true);
    Analyse(captured, playback);
    disturbed_ = false;
    ++blocks_;
    if (analysis_->HistIndex == 0) cycleGood_ = true;
    if (disturbed || !analysis_->FreqLocked) cycleGood_ = false;
    if (Updated()) shownSettled_ = cycleGood_;
    ShowReadings();
    if (OnBlock) OnBlock();
}

}  // namespace sonavex
