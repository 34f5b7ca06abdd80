#include "core/precise/display/StimulusPanel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "core/precise/calibration/Voltage.h"
#include "core/precise/display/LevelUnits.h"
#include "core/precise/display/ReadingTexts.h"
#include "core/precise/display/ToneList.h"
#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/StimulusPlan.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

struct StandardPair {
    const char* caption;
    const char* notation;
};

constexpr std::array<StandardPair, 5> kStandardPairs{{{"SMPTE 60 Hz, 7 kHz", "smpte"},
                                                      {"DIN 250 Hz, 8 kHz", "din"},
                                                      {"CCIF 19 kHz, 20 kHz", "ccif"},
                                                      {"AES17 41 Hz, 7993 Hz", "aes17-mod"},
                                                      {"AES17 18 kHz, 20 kHz", "aes17-dfd"}}};
constexpr int kOwnPair = 5;
constexpr std::array<const char*, 6> kToneNotations{"sine:", "", "", "square:", "triangle:", "sawtooth:"};
constexpr int kToneDigits = 6;  // of a tone that was spaced by a fraction of an octave
constexpr double kLowestDbfs = -150.0;
constexpr double kHighestNoiseDbfs = -12.0;
// A frequency closer to a bin than this part of a bin is on it.
constexpr double kOnBin = 1e-6;

std::vector<std::string> PairCaptions() {
    std::vector<std::string> captions;
    captions.reserve(kStandardPairs.size() + 1);
    for (const StandardPair& pair : kStandardPairs) captions.emplace_back(pair.caption);
    captions.emplace_back("Own");
    return captions;
}

// Without an output device its bits are not known.
std::vector<std::string> DitherCaptions(int outputBits) {
    const std::string bits = outputBits > 0 ? ", " + std::to_string(outputBits) + " bit" : "";
    return {"TPDF" + bits, "Off"};
}

// The shortest text that reads as the same number: "1000", "997.5".
std::string NumberText(double number) {
    for (int decimals = 0; decimals < 9; ++decimals) {
        std::string text = WithDecimals(number, decimals);
        if (QuantityIn(text, "") == number) return text;
    }
    return WithDecimals(number, 9);
}

int StoredChoice(const Settings& settings, const SettingsKey& key, int count) {
    const std::optional<double> number = QuantityIn(settings.Text(key), "");
    if (!number || *number != std::floor(*number) || *number < 0 || *number >= count)
        return static_cast<int>(QuantityIn(key.fallback, "").value_or(0.0));
    return static_cast<int>(*number);
}

double StoredNumber(const Settings& settings, const SettingsKey& key, double least, double most) {
    const std::optional<double> number = QuantityIn(settings.Text(key), "");
    if (!number || *number < least || *number > most) return QuantityIn(key.fallback, "").value_or(least);
    return *number;
}

// Takes the text if it is a number in the limits, and shows what counts.
void TakeNumber(TextBox& box, double& number, const char* unit, double least, double most) {
    const std::optional<double> typed = QuantityIn(box.Text(), unit);
    if (typed && *typed >= least && *typed <= most) number = *typed;
    box.SetText(NumberText(number));
}

}  // namespace

StimulusPanel::StimulusPanel(Settings& settings, Events events)
    : settings_(settings), events_(std::move(events)) {
    cmbShape.SetItems({"Sine", "Two tones", "Multitone", "Square", "Triangle", "Sawtooth", "Noise"});
    cmbPair.SetItems(PairCaptions());
    cmbNoise.SetItems({"White", "Pink"});
    cmbSide.SetItems({"Left", "Right", "Both"});
    cmbDither.SetItems(DitherCaptions(0));
    for (ComboBox* const box : {&cmbShape, &cmbPair, &cmbNoise, &cmbDither, &cmbSide}) box->SetListIndex(0);
    cmdCalibrate.SetCaption("Calibrate\u2026");
    cmdEditTones.SetCaption("Edit\u2026");
    cmdEditTones.Click.Handle([this] { EditTones(); });
    OfferLevelUnits();
    cmbLevelUnit.Click.Handle([this] {
        levelUnit_ = cmbLevelUnit.ListIndex();
        ShowLevel();
        Store();
    });
    for (ComboBox* const box : {&cmbPair, &cmbNoise, &cmbDither, &cmbSide})
        box->Click.Handle([this] { TakeChange(); });
    cmbShape.Click.Handle([this] { TakeShape(); });
    chkSnap.Click.Handle([this] { TakeChange(); });
    for (TextBox* const box : {&txtFrequency, &txtFrequency2, &txtRatio, &txtTones, &txtLevel})
        box->Leave.Handle([this] { TakeTexts(); });
    cmdStart.Click.Handle([this] { playing_ ? events_.stop() : events_.start(); });
    ShowPlaying(StimulusPlayer::State::kOff);
}

void StimulusPanel::Load() {
    cmbShape.SetListIndex(StoredChoice(settings_, keys::kAnalyzerShape, cmbShape.Count()));
    cmbPair.SetListIndex(StoredChoice(settings_, keys::kAnalyzerPair, cmbPair.Count()));
    cmbNoise.SetListIndex(StoredChoice(settings_, keys::kAnalyzerNoise, cmbNoise.Count()));
    cmbSide.SetListIndex(StoredChoice(settings_, keys::kAnalyzerSide, cmbSide.Count()));
    chkSnap.SetValue(static_cast<std::int16_t>(StoredChoice(settings_, keys::kAnalyzerSnap, 2)));
    cmbDither.SetListIndex(StoredChoice(settings_, keys::kAnalyzerDither, 2));
    hertz_ = StoredNumber(settings_, keys::kAnalyzerFrequency, 0, 1e6);
    hertz2_ = StoredNumber(settings_, keys::kAnalyzerFrequency2, 0, 1e6);
    ratio_ = StoredNumber(settings_, keys::kAnalyzerRatio, 0.001, 1000);
    levelDbfs_ = StoredNumber(settings_, keys::kAnalyzerLevel, kLowestDbfs, 0);
    tones_ = settings_.Text(keys::kAnalyzerTones);
    txtTones.SetText(tones_);
    txtFrequency.SetText(NumberText(hertz_));
    txtFrequency2.SetText(NumberText(hertz2_));
    txtRatio.SetText(NumberText(ratio_));
    levelUnit_ = StoredChoice(settings_, keys::kAnalyzerLevelUnit, LevelUnits::kCount);
    OfferLevelUnits();
    ShowPlayed();
}

void StimulusPanel::SetCalibration(const std::optional<Calibration>& calibration) {
    if (calibration == calibration_) return;
    calibration_ = calibration;
    OfferLevelUnits();
}

void StimulusPanel::OfferLevelUnits() {
    cmbLevelUnit.SetItems(LevelUnits::Names(calibration_.has_value()));
    cmbLevelUnit.SetListIndex(std::min(levelUnit_, cmbLevelUnit.Count() - 1));
    if (!calibration_) cmbLevelUnit.SetListIndex(0);
    ShowLevel();
}

// The level in the chosen unit, and in the other one below.
void StimulusPanel::ShowLevel() {
    const std::string dbfs = WithDecimals(levelDbfs_, 2);
    const int unit = cmbLevelUnit.ListIndex();
    const ValueText text =
        TextOf(LevelUnits::Converted({levelDbfs_, {}}, unit, calibration_), LevelUnits::Decimals(unit));
    shownLevel_ = unit == LevelUnits::kVolts ? VoltageText(calibration_->Volts(levelDbfs_)) : text.value;
    txtLevel.SetText(shownLevel_);
    if (!calibration_) return lblLevelNote.SetCaption("not calibrated");
    lblLevelNote.SetCaption(
        (unit == LevelUnits::kDbfs ? VoltageText(calibration_->Volts(levelDbfs_)) + " rms" : dbfs + " dBFS") +
        ", calibrated");
}

// A text with a unit is in that unit, another one in the chosen unit.
std::optional<double> StimulusPanel::TypedDbfs() const {
    const std::string& text = txtLevel.Text();
    const int unit = cmbLevelUnit.ListIndex();
    const std::optional<double> number = QuantityIn(text, LevelUnits::kNames[static_cast<std::size_t>(unit)]);
    if (!calibration_ || (number && unit == LevelUnits::kDbfs)) return number;
    if (number && unit == LevelUnits::kDbv) return *number - calibration_->Dbv(0);
    if (number && unit == LevelUnits::kDbu) return *number - calibration_->Dbu(0);
    if (const std::optional<double> dbfs = QuantityIn(text, "dBFS"); dbfs && !number) return dbfs;
    const std::optional<double> volts = ParseVoltage(text);
    return volts ? std::optional(calibration_->DbfsOfVolts(*volts)) : std::nullopt;
}

void StimulusPanel::SetConditions(double rateHz, std::size_t recordLength, int outputBits) {
    rateHz_ = rateHz;
    recordLength_ = recordLength;
    if (outputBits != outputBits_) {
        const std::int32_t selected = cmbDither.ListIndex();
        cmbDither.SetItems(DitherCaptions(outputBits));
        cmbDither.SetListIndex(selected);
    }
    outputBits_ = outputBits;
    ShowPlayed();
}

bool StimulusPanel::HasOwnPair() const {
    return HasPair() && cmbPair.ListIndex() == kOwnPair;
}

std::string StimulusPanel::Notation() const {
    if (HasNoise()) return cmbNoise.ListIndex() == 0 ? "white" : "pink";
    if (HasTones()) return "multitone:" + tones_;
    if (HasPair() && !HasOwnPair())
        return kStandardPairs[static_cast<std::size_t>(cmbPair.ListIndex())].notation;
    const std::string hertz = NumberText(hertz_);
    if (HasPair()) return "pair:" + hertz + ',' + NumberText(hertz2_) + ',' + NumberText(ratio_);
    return kToneNotations[static_cast<std::size_t>(cmbShape.ListIndex())] + hertz;
}

StimulusChoice StimulusPanel::Chosen() const {
    constexpr std::array<StimulusSide, 3> kSides{StimulusSide::kLeft, StimulusSide::kRight,
                                                 StimulusSide::kBoth};
    StimulusChoice choice;
    choice.stimulus = ParseStimulus(HasTones() ? "multitone:" + ToneNotation(tones_) : Notation());
    choice.side = kSides[static_cast<std::size_t>(cmbSide.ListIndex())];
    choice.levelDbfs = levelDbfs_;
    choice.snap = chkSnap.Checked();
    choice.dither = cmbDither.ListIndex() == 0;
    choice.recordLength = recordLength_;
    return choice;
}

std::vector<double> StimulusPanel::TonesHz() const {
    std::vector<double> hertz;
    try {
        for (const PlannedTone& tone :
             PlanStimulus({Chosen().stimulus, rateHz_, recordLength_, levelDbfs_, chkSnap.Checked()}).tones)
            hertz.push_back(tone.hertz);
    } catch (const StimulusError&) {
        // The panel names the fault.
    }
    return hertz;
}

std::string StimulusPanel::Description() const {
    constexpr std::array<const char*, 3> kSides{"left", "right", "both sides"};
    return Notation() + " at " + WithDecimals(levelDbfs_, 2) + " dBFS, " +
           kSides.at(static_cast<std::size_t>(cmbSide.ListIndex())) + ", dither " + cmbDither.Text() +
           (chkSnap.Checked() && !HasNoise() ? ", on an odd bin" : "");
}

PreciseMode StimulusPanel::Mode() const {
    if (HasNoise()) return PreciseMode::kNoise;
    if (HasTones()) return PreciseMode::kMultitone;
    return HasPair() ? PreciseMode::kPair : PreciseMode::kTone;
}

void StimulusPanel::ShowPlaying(StimulusPlayer::State state) {
    playing_ = state != StimulusPlayer::State::kOff && state != StimulusPlayer::State::kEnding;
    cmdStart.SetCaption(playing_ ? "Stop" : "Start");
    lblPlaying.SetCaption(playing_ ? "playing" : "silent");
    shpPlaying.SetBackColor(playing_ ? kLightGreen : Colour{});
}

void StimulusPanel::ShowTrouble(const std::string& sentence) {
    trouble_ = sentence;
    lblTrouble.SetCaption(trouble_.empty() ? fault_ : trouble_);
}

// "on bin 1365: 999.756 Hz"; several tones are listed without their bins.
void StimulusPanel::ShowPlayed() {
    fault_.clear();
    ShowTrouble(trouble_);
    try {
        const StimulusPlan plan =
            PlanStimulus({Chosen().stimulus, rateHz_, recordLength_, levelDbfs_, chkSnap.Checked()});
        if (HasNoise() || plan.tones.empty()) return lblPlayed.SetCaption("");
        if (plan.tones.size() > 2) return lblPlayed.SetCaption(std::to_string(plan.tones.size()) + " tones");
        const std::string first = WithDecimals(plan.tones.front().hertz, 3);
        if (plan.tones.size() == 2)
            return lblPlayed.SetCaption(first + " Hz, " + WithDecimals(plan.tones.back().hertz, 3) + " Hz");
        const double bin = plan.tones.front().hertz * static_cast<double>(recordLength_) / rateHz_;
        const bool onBin = std::abs(bin - std::round(bin)) < kOnBin;
        lblPlayed.SetCaption((onBin ? "on bin " + WithDecimals(bin, 0) : "between bins") + ": " + first +
                             " Hz");
    } catch (const StimulusError& error) {
        fault_ = error.what();
        lblPlayed.SetCaption("cannot be played");
        ShowTrouble(trouble_);
    }
}

void StimulusPanel::EditTones() {
    if (!AskForTones) return;
    const std::string lines = LinesOfTones(EditedTones());
    const std::optional<std::string> edited = AskForTones(lines);
    if (!edited || *edited == lines) return;
    txtTones.SetText(TonesOfLines(*edited));
    TakeTexts();
}

// Tones that are spaced by a fraction of an octave are edited one by one.
std::string StimulusPanel::EditedTones() const {
    try {
        const Stimulus stimulus = Chosen().stimulus;
        if (stimulus.tonesPerOctave == 0) return tones_;
        std::string tones;
        for (const PlannedTone& tone :
             PlanStimulus({stimulus, rateHz_, recordLength_, levelDbfs_, false}).tones)
            tones += (tones.empty() ? "" : ",") + WithDigits(tone.hertz, kToneDigits) + "@0";
        return tones;
    } catch (const StimulusError&) {
        return tones_;
    }
}

// Noise needs room for its peaks.
void StimulusPanel::TakeShape() {
    if (HasNoise() && levelDbfs_ > kHighestNoiseDbfs) {
        levelDbfs_ = kHighestNoiseDbfs;
        ShowLevel();
    }
    TakeChange();
}

void StimulusPanel::TakeChange() {
    ShowTrouble("");
    ShowPlayed();
    Store();
    if (events_.changed) events_.changed();
}

void StimulusPanel::TakeTexts() {
    const std::string before = Notation();
    const double level = levelDbfs_;
    TakeNumber(txtFrequency, hertz_, "Hz", 0, 1e6);
    TakeNumber(txtFrequency2, hertz2_, "Hz", 0, 1e6);
    TakeNumber(txtRatio, ratio_, "", 0.001, 1000);
    // The shown level is rounded, so it is not read again.
    const std::optional<double> typed = txtLevel.Text() == shownLevel_ ? std::nullopt : TypedDbfs();
    if (typed && *typed >= kLowestDbfs && *typed <= 0) levelDbfs_ = *typed;
    ShowLevel();
    try {
        tones_ = ToneNotation(txtTones.Text());
    } catch (const StimulusError&) {
        tones_ = txtTones.Text();  // ShowPlayed names the fault
    }
    txtTones.SetText(tones_);
    if (level == levelDbfs_ && Notation() == before) return;
    TakeChange();
}

void StimulusPanel::Store() {
    settings_.Save(keys::kAnalyzerShape, std::to_string(cmbShape.ListIndex()));
    settings_.Save(keys::kAnalyzerPair, std::to_string(cmbPair.ListIndex()));
    settings_.Save(keys::kAnalyzerNoise, std::to_string(cmbNoise.ListIndex()));
    settings_.Save(keys::kAnalyzerSide, std::to_string(cmbSide.ListIndex()));
    settings_.Save(keys::kAnalyzerSnap, chkSnap.Checked() ? "1" : "0");
    settings_.Save(keys::kAnalyzerDither, std::to_string(cmbDither.ListIndex()));
    settings_.Save(keys::kAnalyzerFrequency, NumberText(hertz_));
    settings_.Save(keys::kAnalyzerFrequency2, NumberText(hertz2_));
    settings_.Save(keys::kAnalyzerRatio, NumberText(ratio_));
    settings_.Save(keys::kAnalyzerLevel, NumberText(levelDbfs_));
    settings_.Save(keys::kAnalyzerTones, tones_);
    settings_.Save(keys::kAnalyzerLevelUnit, std::to_string(levelUnit_));
}

}  // namespace sonavex
