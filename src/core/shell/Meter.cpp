#include "core/shell/Meter.h"

#include <utility>

namespace sonavex {

Meter::Meter(const SharedState& shared) : Tones(shared), analysis_(std::make_unique<modDSP::State>(shared)) {
    // Nothing is locked before the first block.
    Controls.picLocked.SetBackColor(kLightRed);
    Controls.GenLocked.SetBackColor(kLightRed);
}

void Meter::SetUpAnalysis(std::int32_t lowHz, std::int32_t highHz) {
    modDSP::SetUpAnalysis(*analysis_, lowHz, highHz);
}

void Meter::ProcessCapturedBlock(std::span<const std::int16_t> captured, std::span<std::int16_t> playback) {
    // A block that fails leaves the next one disturbed.
    const bool disturbed = std::exchange(disturbed_, true);
    modDSP::ProcessCapturedBlock(*analysis_, Controls, Tones, captured, playback);
    disturbed_ = false;
    ++blocks_;
    if (analysis_->HistIndex == 0) cycleGood_ = true;
    if (disturbed || !analysis_->FreqLocked) cycleGood_ = false;
    if (Updated()) shownSettled_ = cycleGood_;
    if (onBlock_) onBlock_();
}

}  // namespace sonavex
