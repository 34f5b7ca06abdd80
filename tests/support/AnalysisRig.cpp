#include "support/AnalysisRig.h"

#include <algorithm>

namespace sonavex {
namespace {

std::string Captions(const std::array<Label, MeasurementControls::kHarmonics>& labels) {
    std::string row;
    for (const Label& label : labels) {
        if (!row.empty()) row += ' ';
        row += label.Caption().empty() ? "-" : label.Caption();
    }
    return row;
}

}  // namespace

AnalysisRig::AnalysisRig(std::int32_t sampleRate, std::int32_t lowHz)
    : state(std::make_unique<modDSP::State>()) {
    shared.SampleRate = sampleRate;
    controls.chkAuto.SetValue(1);
    controls.chkMuteOutput.SetValue(1);
    modDSP::SetUpAnalysis(*state, sampleRate, lowHz, sampleRate / 2 - 100);
}

void AnalysisRig::Feed(std::span<const std::int16_t> block) {
    try {
        modDSP::ProcessCapturedBlock(*state, display.Inputs(shared.SampleRate), readings, generator, block,
                                     playback);
    } catch (...) {
        display.Show(readings, state->CurrentPct);
        throw;
    }
    display.Show(readings, state->CurrentPct);
}

void AnalysisRig::Feed(const StereoSignal& signal, int blocks) {
    for (int i = 0; i < blocks; ++i) {
        Feed(MakeBlock(signal, nextFrame_));
        nextFrame_ += static_cast<std::int64_t>(kTestBlockFrames);
    }
}

void AnalysisRig::FeedLines(const std::vector<Line>& lines, int blocks) {
    state->FilterRe.fill(0.0);
    state->FilterIm.fill(0.0);
    for (const auto& [bin, magnitude] : lines) state->FilterRe[static_cast<std::size_t>(bin)] = magnitude;
    Block step{};
    step[1] = 1;
    for (int i = 0; i < blocks; ++i) Feed(step);
}

void AnalysisRig::MeasureLines(const std::vector<Line>& lines) {
    state->SpecMag.fill(0.0);
    for (const auto& [bin, magnitude] : lines) state->SpecMag[static_cast<std::size_t>(bin)] = magnitude;
    state->PeakBin = lines.front().first;
    state->HistIndex = modDSP::kLastSlot;
    state->History = {};
    readings = {};
    modDSP::MeasureHarmonics(*state, display.Inputs(shared.SampleRate), readings);
    readings.locked = true;
    readings.reached = BlockStep::kHarmonics;
    display.Show(readings, state->CurrentPct);
}

std::string AnalysisRig::Percentages() const {
    return Captions(controls.lbltest);
}

std::string AnalysisRig::Levels() const {
    return Captions(controls.lblDb);
}

}  // namespace sonavex
