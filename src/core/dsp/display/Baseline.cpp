#include "core/dsp/display/Baseline.h"

#include <array>
#include <cstdlib>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kCaptured = "Baseline calculations captured";

double Stored(const Settings& settings, const SettingsKey& key, int harmonic) {
    const std::string name = keys::Numbered(key, harmonic);
    return settings.Value({key.section, name, key.fallback});
}

// The stored state of a check box. The error for an impossible number names its key.
std::int16_t StoredBox(const Settings& settings, const SettingsKey& key) {
    const double value = settings.Value(key);
    try {
        return CInt(value);
    } catch (const RuntimeError& error) {
        throw settings.Failure(error.Number(), key);
    }
}

// A stored condition; 0 if the text is not a valid number.
std::int32_t StoredCondition(const Settings& settings, const SettingsKey& key) {
    try {
        return CLng(settings.Value(key));
    } catch (const RuntimeError&) {
        return 0;
    }
}

void Save(Settings& settings, const SettingsKey& key, int harmonic, double value) {
    settings.Store().Save(key.section, keys::Numbered(key, harmonic), Str(value));
}

// The last shown percentages without a baseline. They can be corrected although no baseline is applied any
// more.
std::array<double, modDSP::kHarmonics> MeasuredPct(const modDSP::State& analysis) {
    std::array<double, modDSP::kHarmonics> measured = analysis.CurrentPct;
    for (std::size_t i = 0; i < modDSP::kHarmonics; ++i)
        if (const auto& average = analysis.UncorrectedPct[i])
            measured[i] = Val(Format(*average, Pattern::kPercent));
    return measured;
}

}  // namespace

Baseline::Baseline(const SharedState& shared, Settings& settings, Dialogs& dialogs, modDSP::State& analysis,
                   MeasurementControls& meter)
    : shared_(shared), settings_(settings), dialogs_(dialogs), analysis_(analysis), meter_(meter) {
    meter_.chkAuto.Click.Handle([this] { chkAuto_Click(); });
    meter_.chkBaseline.Click.Handle([this] { chkBaseline_Click(); });
    cmdBaseline.Click.Handle([this] { cmdBaseline_Click(); });
}

void Baseline::RestoreBoxes() {
    meter_.chkAuto.SetValue(settings_.Integer(keys::kAuto));
    meter_.chkBaseline.SetValue(StoredBox(settings_, keys::kBaseline));
    meter_.chkMuteOutput.SetValue(settings_.Integer(keys::kMuteMeter));
    ApplyAuto();
    if (meter_.chkBaseline.Checked()) ApplyBaseline();
}

void Baseline::ApplyAuto() {
    meter_.txtFreq.SetEnabled(!meter_.chkAuto.Checked());
}

void Baseline::chkAuto_Click() {
    ApplyAuto();
    settings_.Save(keys::kAuto, CStr(std::int32_t{meter_.chkAuto.Value()}));
}

void Baseline::ApplyBaseline() {
    for (std::size_t i = 0; i < modDSP::kHarmonics; ++i) {
        analysis_.BaselinePct[i] = Stored(settings_, keys::kThd, static_cast<int>(i));
        analysis_.BaselineDb[i] = Stored(settings_, keys::kDb, static_cast<int>(i));
    }
    capturedHz_ = StoredCondition(settings_, keys::kBaselineHz);
    capturedRate_ = StoredCondition(settings_, keys::kBaselineRate);
    cmdBaseline.SetEnabled(!meter_.chkBaseline.Checked());
}

void Baseline::chkBaseline_Click() {
    settings_.Save(keys::kBaseline, Str(meter_.chkBaseline.Value()));
    ApplyBaseline();
}

void Baseline::cmdBaseline_Click() {
    const auto measuredPct = MeasuredPct(analysis_);
    for (std::size_t i = 0; i < modDSP::kHarmonics; ++i) {
        Save(settings_, keys::kThd, static_cast<int>(i), measuredPct[i]);
        Save(settings_, keys::kDb, static_cast<int>(i), analysis_.CurrentDb[i]);
    }
    analysis_.BaselinePct = measuredPct;
    analysis_.BaselineDb = analysis_.CurrentDb;
    capturedHz_ = analysis_.CurrentHz;
    capturedRate_ = analysis_.CurrentRate;
    settings_.Save(keys::kBaselineHz, CStr(capturedHz_));
    settings_.Save(keys::kBaselineRate, CStr(capturedRate_));
    dialogs_.Message(kCaptured, MessageIcon::kInformation);
}

bool Baseline::CapturedElsewhere() const {
    if (!meter_.chkBaseline.Checked() || capturedRate_ == 0 || !analysis_.FreqLocked) return false;
    return capturedRate_ != shared_.SampleRate ||
           std::abs(capturedHz_ - analysis_.FundamentalHz) >= modDSP::LockRangeHz(analysis_.BinWidth);
}

}  // namespace sonavex
