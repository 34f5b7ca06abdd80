#include "core/precise/display/ReadingsPanel.h"

#include <algorithm>
#include <utility>

#include "core/precise/calibration/Voltage.h"
#include "core/precise/display/LevelUnits.h"
#include "core/precise/display/ReadingTexts.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kPercentUnit = 1;
constexpr int kPercentDecimals = 6;
constexpr int kVoltDecimals = 3;
// Levels at the ends of a harmonic's bar.
constexpr double kBarLowestDbc = -150.0;
constexpr double kBarHighestDbc = -90.0;
constexpr double kLastUnit = static_cast<int>(LevelUnits::kVolts);
constexpr std::array<std::pair<ReadingsPanel::Row, SettingsKey>, 4> kStoredUnits{
    {{ReadingsPanel::kThdn, keys::kAnalyzerThdnUnit},
     {ReadingsPanel::kNotch, keys::kAnalyzerNotchUnit},
     {ReadingsPanel::kNoise, keys::kAnalyzerNoiseUnit},
     {ReadingsPanel::kLevel, keys::kAnalyzerInputUnit}}};
// The standard pairs of the mod method are at least this far apart.
constexpr double kFarTones = 4.0;

HarmonicsTable::Row RowOf(const Harmonic& harmonic) {
    HarmonicsTable::Row row;
    const ValueText text = TextOf(harmonic.levelDbc, 2);
    row.order = 'H' + std::to_string(harmonic.order);
    row.level = text.value;
    row.bound = text.bound;
    if (text.bound) {
        row.phase = "in the noise";
        return row;
    }
    if (harmonic.levelDbc.uncertainty) row.spread = SpreadText(*harmonic.levelDbc.uncertainty, 2);
    if (harmonic.phaseDegrees.value) row.phase = WithDecimals(*harmonic.phaseDegrees.value, 0) + "\u00b0";
    const double level = harmonic.levelDbc.value.value_or(kBarLowestDbc);
    row.bar = std::clamp((level - kBarLowestDbc) / (kBarHighestDbc - kBarLowestDbc), 0.0, 1.0);
    return row;
}

std::string WeightingName(Weighting weighting) {
    if (weighting == Weighting::kA) return "A-weighted";
    return weighting == Weighting::k468 ? "468-weighted" : "unweighted";
}

}  // namespace

ReadingsPanel::ReadingsPanel(Settings& settings) : settings_(settings) {
    cmbThdUnit.SetItems({"dB", "%"});
    cmbThdUnit.SetListIndex(0);
    cmbThdUnit.Click.Handle([this] { TakeUnit(); });
    constexpr std::array<const char*, kRows> kUnits{"dB", "dB", "dB", "dB", "bit", "dBFS", "Hz", "dBFS"};
    for (std::size_t row = 0; row < kRows; ++row) {
        const bool ratio = row == kThdn || row == kNotch;
        Rows[row].unit.SetItems(ratio ? std::vector<std::string>{"dB", "%"}
                                      : std::vector<std::string>{kUnits[row]});
        Rows[row].unit.SetListIndex(0);
        Rows[row].unit.Click.Handle([this] { TakeUnit(); });
    }
    mnuThdn.Click.Handle([this] { PutFirst(false); });
    mnuNotch.Click.Handle([this] { PutFirst(true); });
    Clear("");
}

void ReadingsPanel::Load() {
    notchFirst_ = settings_.Value(keys::kAnalyzerNotchFirst) == 1;
    cmbThdUnit.SetListIndex(settings_.Value(keys::kAnalyzerThdUnit) == 1 ? 1 : 0);
    for (const auto& [row, key] : kStoredUnits)
        wantedUnits_[row] = static_cast<int>(std::clamp(settings_.Value(key), 0.0, kLastUnit));
    OfferUnits();
}

// A unit belongs to the line, so that the first line keeps its unit.
void ReadingsPanel::PutFirst(bool notch) {
    notchFirst_ = notch;
    settings_.Save(keys::kAnalyzerNotchFirst, notch ? "1" : "0");
    if (shown_) return Refresh();
    Clear(std::string(lblThdSpread.Caption()));
}

void ReadingsPanel::SetCalibration(const std::optional<Calibration>& calibration) {
    if (calibration == calibration_) return;
    calibration_ = calibration;
    OfferUnits();
}

void ReadingsPanel::OfferUnits() {
    for (const Row row : {kNoise, kLevel})
        Rows[row].unit.SetItems(LevelUnits::Names(calibration_.has_value()));
    for (const auto& [row, key] : kStoredUnits)
        Rows[row].unit.SetListIndex(wantedUnits_[row] < Rows[row].unit.Count() ? wantedUnits_[row] : 0);
    Refresh();
}

void ReadingsPanel::TakeUnit() {
    settings_.Save(keys::kAnalyzerThdUnit, std::to_string(cmbThdUnit.ListIndex()));
    for (const auto& [row, key] : kStoredUnits) {
        const bool offered = Rows[row].unit.Count() > 1;
        if (offered) wantedUnits_[row] = Rows[row].unit.ListIndex();
        settings_.Save(key, std::to_string(wantedUnits_[row]));
    }
    Refresh();
}

void ReadingsPanel::Show(const LinesReading& reading, const Conditions& conditions) {
    shown_ = true;
    reading_ = reading;
    conditions_ = conditions;
    Refresh();
}

void ReadingsPanel::Clear(const std::string& line) {
    shown_ = false;
    const int highestOrder = reading_.reading.highestOrder;
    reading_ = {};
    reading_.reading.highestOrder = highestOrder;
    ShowFigures();
    Harmonics.Show({}, true);
    Rows[kNoise].name.SetCaption("Noise");
    for (ReadingRow& row : Rows) row.value.SetCaption("");
    for (ReadingRow& row : Rows) row.spread.SetCaption("");
    lblNoiseBand.SetCaption("");
    lblThd.SetCaption("none");
    lblThd.SetQuiet(true);
    lblThdSpread.SetCaption(line);
    lblThdOther.SetCaption("");
}

void ReadingsPanel::ToggleUnit() {
    cmbThdUnit.UserSelects(cmbThdUnit.ListIndex() == kPercentUnit ? 0 : kPercentUnit);
}

void ReadingsPanel::Refresh() {
    if (!shown_) return;
    ShowFigures();
    ShowNoise();
    ShowHarmonics();
}

void ReadingsPanel::ShowFigures() {
    if (conditions_.mode == PreciseMode::kTone)
        ShowTone();
    else
        ShowLines();
}

// The main figure, its uncertainty, and the same in the other unit.
void ReadingsPanel::ShowMain(const Value& decibels, const std::string& title, const std::string& reference) {
    lblThdTitle.SetCaption(title);
    lblThdReference.SetCaption(reference);
    const Value percent = PercentOfDecibels(decibels);
    const bool inPercent = cmbThdUnit.ListIndex() == kPercentUnit;
    const ValueText text = TextOf(decibels, 2);
    const std::string percentText = PercentText(percent);
    lblThd.SetCaption(!decibels.value ? "none" : inPercent ? percentText : text.value);
    lblThd.SetQuiet(conditions_.quiet || text.bound || !decibels.value);
    std::string spread = text.bound ? "in the noise" : text.spread + (text.spread.empty() ? "" : " dB");
    if (conditions_.settling && !text.bound && !spread.empty()) spread += " so far";
    lblThdSpread.SetCaption(spread);
    if (!decibels.value) return lblThdOther.SetCaption("");
    const std::string other = inPercent ? text.value + " dB" : percentText + " %";
    lblThdOther.SetCaption(text.bound ? other : "= " + other);
}

void ReadingsPanel::ShowRow(Row row, const char* name, const Value& value, int decimals, int spreadDecimals) {
    ReadingRow& shown = Rows[row];
    const ValueText text = TextOf(value, decimals, spreadDecimals);
    shown.name.SetCaption(name);
    shown.value.SetCaption(text.value);
    shown.value.SetQuiet(conditions_.quiet || text.bound);
    shown.spread.SetCaption(text.spread);
}

void ReadingsPanel::ShowLevel(Row row, const char* name, const Value& dbfs, int decimals) {
    const int unit = Rows[row].unit.ListIndex();
    Value shown = LevelUnits::Converted(dbfs, unit, calibration_);
    if (unit != LevelUnits::kVolts) return ShowRow(row, name, shown, decimals, decimals);
    const VoltageUnit volts = UnitOfVoltage(shown.value.value_or(1.0));
    OfferVolts(row, volts.name);
    if (shown.value) *shown.value /= volts.volts;
    if (shown.uncertainty) *shown.uncertainty /= volts.volts;
    ShowRow(row, name, shown, kVoltDecimals, kVoltDecimals);
}

// The unit of the value is a part of its name in the list.
void ReadingsPanel::OfferVolts(Row row, const char* volts) {
    ComboBox& choice = Rows[row].unit;
    if (choice.Text() == volts) return;
    choice.SetItems(LevelUnits::Names(true, volts));
    choice.SetListIndex(LevelUnits::kVolts);
}

void ReadingsPanel::ShowRatio(Row row, const char* name, const Value& decibels) {
    if (Rows[row].unit.ListIndex() != kPercentUnit) return ShowRow(row, name, decibels, 2, 2);
    const Value percent = PercentOfDecibels(decibels);
    ShowSmall(row, name, percent, kPercentDecimals);
}

// A spread with as many decimals as the value is too wide.
void ReadingsPanel::ShowSmall(Row row, const char* name, const Value& value, int decimals) {
    ShowRow(row, name, value, decimals, 0);
    const bool hasSpread = value.value && value.uncertainty && !value.atMost;
    Rows[row].spread.SetCaption(hasSpread ? ShortSpread(*value.uncertainty) : std::string());
}

void ReadingsPanel::ShowDistortionAndNoise(const Value& thdn, const Value& notch) {
    ShowRatio(notchFirst_ ? kNotch : kThdn, "THD+N", thdn);
    ShowRatio(notchFirst_ ? kThdn : kNotch, "THD+N (notch)", notch);
}

void ReadingsPanel::ShowTone() {
    const Reading& reading = reading_.reading;
    const std::string orders =
        reading.highestOrder > 2 ? "H2-H" + std::to_string(reading.highestOrder) + ' ' : "";
    ShowMain(reading.thdDb, "THD", orders + "re fundamental");
    ShowDistortionAndNoise(reading.thdnDb, reading.thdnNotchDb);
    ShowRow(kSinad, "SINAD", reading.sinadDb, 2, 2);
    ShowRow(kSnr, "SNR", reading.snrDb, 2, 2);
    ShowRow(kEnob, "ENOB re FS", reading.enob, 2, 2);
    ShowRow(kFrequency, "Frequency", reading.frequencyHz, 4, 4);
    ShowLevel(kLevel, "Level", reading.levelDbfs, 3);
}

// Pairs, multitones and noise alone have no harmonics of one tone.
void ReadingsPanel::ShowLines() {
    const Intermodulation& products = reading_.intermodulation;
    const std::vector<ToneValues>& tones = reading_.tones;
    const bool pair = conditions_.mode == PreciseMode::kPair;
    const bool far = tones.size() == 2 && tones[0].frequencyHz.value && tones[1].frequencyHz.value &&
                     *tones[1].frequencyHz.value > kFarTones * *tones[0].frequencyHz.value;
    if (pair && far)
        ShowMain(products.modDb, "IMD", "SMPTE, DIN: re upper tone");
    else if (pair)
        ShowMain(products.dfdAes17Db, "IMD", "difference tones re lower tone");
    else if (conditions_.mode == PreciseMode::kMultitone)
        ShowMain(reading_.tdnDb, "TD+N", "all but the tones, re total");
    else
        ShowMain(WeightedNoise(), "Noise", "re full scale");
    const Value none;
    ShowDistortionAndNoise(none, none);
    ShowRow(kSinad, "SINAD", none, 2, 2);
    ShowRow(kSnr, "SNR", reading_.reading.snrDb, 2, 2);
    ShowRow(kEnob, "ENOB re FS", none, 2, 2);
    ShowRow(kFrequency, "Frequency", tones.empty() ? none : tones.front().frequencyHz, 4, 4);
    ShowLevel(kLevel, "Level", tones.empty() ? reading_.reading.levelDbfs : tones.front().levelDbfs, 3);
}

const Value& ReadingsPanel::WeightedNoise() const {
    const Reading& reading = reading_.reading;
    if (conditions_.weighting == Weighting::kA) return reading.noiseADbfs;
    return conditions_.weighting == Weighting::k468 ? reading.noise468Dbfs : reading.noiseDbfs;
}

void ReadingsPanel::ShowNoise() {
    ShowLevel(kNoise, "Noise", WeightedNoise(), 2);
    lblNoiseBand.SetCaption(conditions_.band + ", " + WeightingName(conditions_.weighting));
}

void ReadingsPanel::ShowHarmonics() {
    std::vector<HarmonicsTable::Row> rows;
    if (conditions_.mode == PreciseMode::kTone)
        for (const Harmonic& harmonic : reading_.reading.harmonics)
            if (harmonic.order <= reading_.reading.highestOrder) rows.push_back(RowOf(harmonic));
    Harmonics.Show(std::move(rows), conditions_.quiet);
}

}  // namespace sonavex
