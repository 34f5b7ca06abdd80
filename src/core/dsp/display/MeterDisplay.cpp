#include "core/dsp/display/MeterDisplay.h"

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kNotAvailable = "N/A";
constexpr const char* kOverloadCaption = "Ovr";
constexpr const char* kMuted = "Muted";

// By the highest harmonic with a percentage; if there is none, the full range.
constexpr std::array<std::string_view, Readings::kHarmonics> kTotalOf{
    "H2, re total (THD_R)",    "H2–H3, re total (THD_R)", "H2–H4, re total (THD_R)",
    "H2–H5, re total (THD_R)", "H2–H6, re total (THD_R)", "H2–H7, re total (THD_R)",
    "H2–H8, re total (THD_R)", "H2–H9, re total (THD_R)"};

std::string LevelCaption(double peak) {
    return Format(peak / kFullScale * 100.0, Pattern::kWhole);
}

std::string Spoken(std::string_view word, const Label& level, bool inPercent) {
    if (!word.empty()) return std::string(word);
    return inPercent ? level.Caption() + " %" : level.Caption();
}

}  // namespace

MeterDisplay::MeterDisplay(MeasurementControls& controls) : controls_(controls) {
    ShowLock(false);
    controls_.Cycle.SetCaption("0 of 19");
}

modDSP::BlockInputs MeterDisplay::Inputs(std::int32_t sampleRateHz) const {
    modDSP::BlockInputs inputs;
    inputs.sampleRateHz = sampleRateHz;
    inputs.automatic = controls_.chkAuto.Checked();
    inputs.mute = controls_.chkMuteOutput.Checked();
    inputs.baseline = controls_.chkBaseline.Checked();
    if (inputs.automatic) return inputs;
    try {
        inputs.typedHz = CLng(Val(controls_.txtFreq.Text()));
    } catch (const RuntimeError& error) {
        inputs.typedError = error.Number();
    }
    return inputs;
}

void MeterDisplay::Show(const Readings& readings, Percentages& shownPct) {
    const auto reached = [&](BlockStep step) { return readings.reached >= step; };
    if (reached(BlockStep::kInputLevel)) ShowInputLevel(readings.inputPeak);
    if (reached(BlockStep::kFrequency) && readings.automatic)
        controls_.txtFreq.SetText(Trim(Str(readings.measuredHz)));
    if (reached(BlockStep::kLock)) ShowLock(readings.locked);
    for (std::size_t i = 0; i < readings.harmonicsAveraged; ++i) {
        ShowHarmonic(i, readings.harmonics[i]);
        shownPct[i] = Val(controls_.lbltest[i].Caption());
    }
    if (reached(BlockStep::kHarmonics)) {
        if (readings.locked)
            ShowTotal();
        else
            ShowUnlocked();
    }
    if (reached(BlockStep::kOutputLevel)) ShowOutputLevel(readings);
    ShowTotalOf();
    ShowSettling();
}

// A block without a positive sample reads as overload too. The word distinguishes the two.
void MeterDisplay::ShowInputLevel(double peak) {
    view_.noSignal = peak <= 0.0;
    const bool overload = peak >= kFullScale || view_.noSignal;
    controls_.prgADC.SetValue(static_cast<float>(overload ? kFullScale : peak));
    controls_.LblLevel.SetCaption(overload ? kOverloadCaption : LevelCaption(peak));
    view_.inputInPercent = !overload && !controls_.LblLevel.Caption().empty();
    view_.inputWord = view_.noSignal ? meter_words::kNoSignal
                      : overload     ? meter_words::kOverload
                                     : std::string_view();
}

void MeterDisplay::ShowOutputLevel(const Readings& readings) {
    const bool overload = !readings.muted && readings.outputPeak >= kFullScale;
    controls_.prgDAC.SetValue(static_cast<float>(readings.outputPeak));
    if (readings.muted)
        controls_.lblDACLevel.SetCaption(kMuted);
    else
        controls_.lblDACLevel.SetCaption(overload ? kOverloadCaption : LevelCaption(readings.outputPeak));
    view_.outputInPercent = !readings.muted && !overload && !controls_.lblDACLevel.Caption().empty();
    view_.outputWord = overload ? meter_words::kOverload : std::string_view();
}

void MeterDisplay::ShowLock(bool locked) {
    locked_ = locked;
    for (Indicator* lamp : {&controls_.picLocked, &controls_.GenLocked})
        lamp->SetBackColor(locked ? kLightGreen : kLightRed);
    ShowLockWord();
}

void MeterDisplay::ShowLockWord() {
    view_.lockWord = stopped_  ? meter_words::kStopped
                     : locked_ ? meter_words::kLocked
                               : meter_words::kNotLocked;
}

void MeterDisplay::ShowHarmonic(std::size_t index, const HarmonicReading& reading) {
    Label& percent = controls_.lbltest[index];
    percent.SetCaption(reading.percent ? Format(*reading.percent, Pattern::kPercent) : kNotAvailable);
    inPercent_[index] = reading.percent.has_value();
    Label& level = controls_.lblDb[index];
    level.SetCaption(reading.levelDb ? Format(*reading.levelDb, Pattern::kTwoByTwo) : kNotAvailable);
    view_.levelsDb[index].reset();
    if (reading.levelDb) view_.levelsDb[index] = Val(level.Caption());
}

// The percentage up to the highest harmonic that could be measured.
void MeterDisplay::ShowTotal() {
    for (std::size_t i = Readings::kHarmonics; i-- > 0;) {
        if (controls_.lbltest[i].Caption() == kNotAvailable) continue;
        controls_.lblThd.SetCaption(controls_.lbltest[i].Caption());
        view_.totalInPercent = inPercent_[i];
        return;
    }
    controls_.lblThd.SetCaption(kNotAvailable);
    view_.totalInPercent = false;
}

void MeterDisplay::ShowUnlocked() {
    for (std::size_t i = 0; i < Readings::kHarmonics; ++i) {
        controls_.lbltest[i].SetCaption("");
        controls_.lblDb[i].SetCaption("");
    }
    inPercent_.fill(false);
    view_.levelsDb.fill(std::nullopt);
    controls_.lblThd.SetCaption(kNotAvailable);
    view_.totalInPercent = false;
}

void MeterDisplay::ShowTotalOf() {
    std::size_t highest = Readings::kHarmonics - 1;
    while (highest > 0 && !inPercent_[highest]) --highest;
    view_.totalOf = inPercent_[highest] ? kTotalOf[highest] : kTotalOf.back();
}

void MeterDisplay::ShowCycle(std::int32_t blocks, bool settled) {
    settled_ = settled;
    ShowSettling();
    if (blocks == view_.cycleBlocks) return;
    view_.cycleBlocks = blocks;
    controls_.Cycle.SetCaption(CStr(blocks) + " of 19");
}

void MeterDisplay::ShowStopped(bool stopped) {
    stopped_ = stopped;
    if (stopped) ShowLock(false);
    ShowLockWord();
    ShowSettling();
}

void MeterDisplay::ShowSettling() {
    view_.settling = view_.totalInPercent && !stopped_ && !settled_;
}

std::string MeterDisplay::SpokenInput() const {
    return Spoken(view_.inputWord, controls_.LblLevel, view_.inputInPercent);
}

std::string MeterDisplay::SpokenOutput() const {
    return Spoken(view_.outputWord, controls_.lblDACLevel, view_.outputInPercent);
}

}  // namespace sonavex
