#include "core/precise/display/AnalysisPanel.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/analyzer/AnalysisWindow.h"
#include "core/precise/display/ReadingTexts.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kMostAverages = 999;
constexpr int kLeastOrder = 2;
constexpr int kMostOrder = 1000;
constexpr double kAudioBandHz = 20000.0;
constexpr std::size_t kKilo = 1024;

std::string PointsText(std::size_t points) {
    if (points >= kKilo * kKilo) return std::to_string(points / (kKilo * kKilo)) + 'M';
    return std::to_string(points / kKilo) + 'k';
}

LengthEntry EntryOf(std::size_t points, double rateHz) {
    const double seconds = static_cast<double>(points) / rateHz;
    return {PointsText(points), WithDecimals(seconds, 3), WithDecimals(1.0 / seconds, 3),
            WithDecimals(kGuardBins / seconds, 1)};
}

std::optional<int> WholeIn(const std::string& text, int least, int most) {
    const std::optional<double> number = QuantityIn(text, "");
    if (!number || *number < least || *number > most || *number != static_cast<int>(*number))
        return std::nullopt;
    return static_cast<int>(*number);
}

// The stored text as a whole number within limits; otherwise the default.
int StoredWhole(const Settings& settings, const SettingsKey& key, int least, int most) {
    const auto fallback = WholeIn(std::string(key.fallback), least, most);
    return WholeIn(settings.Text(key), least, most).value_or(fallback.value_or(least));
}

void SelectWithin(ComboBox& box, int index) {
    box.SetListIndex(std::clamp(index, 0, box.Count() - 1));
}

}  // namespace

AnalysisPanel::AnalysisPanel(Settings& settings, std::function<void()> onChanged)
    : settings_(settings), onChanged_(std::move(onChanged)) {
    cmbBand.SetItems({"20-20k", "Full"});
    cmbWeighting.SetItems({"None", "A", "468"});
    OfferChannels(Source::kStereo);
    for (ComboBox* const box : {&cmbLength, &cmbBand, &cmbWeighting, &cmbChannel})
        box->Click.Handle([this] { TakeChoice(); });
    for (TextBox* const box : {&txtAverages, &txtHarmonics}) box->Leave.Handle([this] { TakeNumbers(); });
}

void AnalysisPanel::Load(double rateHz, Source source) {
    rateHz_ = rateHz;
    OfferLengths();
    SelectWithin(cmbBand, StoredWhole(settings_, keys::kAnalyzerBand, 0, 1));
    SelectWithin(cmbWeighting, StoredWhole(settings_, keys::kAnalyzerWeighting, 0, 2));
    stereoChannel_ = StoredWhole(settings_, keys::kAnalyzerChannel, 0, 1);
    OfferChannels(source);
    averages_ = static_cast<std::size_t>(StoredWhole(settings_, keys::kAnalyzerAverages, 1, kMostAverages));
    highestOrder_ = StoredWhole(settings_, keys::kAnalyzerHarmonics, kLeastOrder, kMostOrder);
    ShowNumbers();
    ShowLength();
}

// The stored length is relative to the default length of the rate: 0 is a quarter of it, 6 is 16 times as
// much.
void AnalysisPanel::OfferLengths() {
    points_.clear();
    Lengths.clear();
    const std::size_t usual = DefaultRecordLength(rateHz_);
    const int stored = StoredWhole(settings_, keys::kAnalyzerLength, 0, 6);
    std::vector<std::string> items;
    int selected = 0;
    for (int choice = 0; choice <= 6; ++choice) {
        const std::size_t points = (usual << choice) / 4;
        if (points < kShortestRecord || points > kLongestRecord) continue;
        if (choice <= stored) selected = static_cast<int>(points_.size());
        points_.push_back(points);
        Lengths.push_back(EntryOf(points, rateHz_));
        items.push_back(Lengths.back().points + " points");
    }
    cmbLength.SetItems(std::move(items));
    cmbLength.SetListIndex(selected);
}

// The only channel of a mono source leaves no choice.
void AnalysisPanel::OfferChannels(Source source) {
    const bool mono = source == Source::kMono;
    cmbChannel.SetItems(mono ? std::vector<std::string>{"Mono"} : std::vector<std::string>{"Left", "Right"});
    cmbChannel.SetListIndex(mono ? 0 : stereoChannel_);
    cmbChannel.SetEnabled(!mono);
}

PreciseSettings AnalysisPanel::Chosen() const {
    PreciseSettings chosen;
    chosen.rateHz = rateHz_;
    chosen.length = points_.at(static_cast<std::size_t>(cmbLength.ListIndex()));
    chosen.channel = static_cast<std::size_t>(cmbChannel.ListIndex());
    if (cmbBand.ListIndex() == 1) chosen.tone.band = {0.0, 0.5 * rateHz_};
    chosen.tone.highestOrder = highestOrder_;
    chosen.averages = averages_;
    return chosen;
}

Weighting AnalysisPanel::Weighting() const {
    return static_cast<sonavex::Weighting>(cmbWeighting.ListIndex());
}

std::string AnalysisPanel::BandText() const {
    const double highHz = 0.5 * rateHz_;
    if (cmbBand.ListIndex() == 0 && highHz > kAudioBandHz) return "20 Hz to 20 kHz";
    const std::string high = WithDecimals(highHz / 1000.0, 1) + " kHz";
    return (cmbBand.ListIndex() == 0 ? "20 Hz to " : "0 Hz to ") + high;
}

void AnalysisPanel::ShowLength() {
    const LengthEntry& entry = Lengths.at(static_cast<std::size_t>(cmbLength.ListIndex()));
    lblLength.SetCaption(entry.seconds + " s, " + entry.binHz + " Hz a bin, lowest " + entry.lowestHz +
                         " Hz");
}

void AnalysisPanel::ShowNumbers() {
    txtAverages.SetText(std::to_string(averages_));
    txtHarmonics.SetText(std::to_string(highestOrder_));
    lblHarmonics.SetCaption(highestOrder_ == kLeastOrder ? "H2" : "H2 to H" + std::to_string(highestOrder_));
}

void AnalysisPanel::TakeChoice() {
    if (cmbChannel.Enabled()) stereoChannel_ = cmbChannel.ListIndex();
    ShowLength();
    Store();
    if (onChanged_) onChanged_();
}

// Text that is no number in the limits is replaced by the last one.
void AnalysisPanel::TakeNumbers() {
    const std::size_t averages = averages_;
    const int highestOrder = highestOrder_;
    if (const auto number = WholeIn(txtAverages.Text(), 1, kMostAverages))
        averages_ = static_cast<std::size_t>(*number);
    if (const auto number = WholeIn(txtHarmonics.Text(), kLeastOrder, kMostOrder)) highestOrder_ = *number;
    ShowNumbers();
    if (averages == averages_ && highestOrder == highestOrder_) return;
    Store();
    if (onChanged_) onChanged_();
}

void AnalysisPanel::Store() {
    const std::size_t usual = DefaultRecordLength(rateHz_) / 4;
    int choice = 0;
    while ((usual << choice) < Chosen().length) ++choice;
    settings_.Save(keys::kAnalyzerLength, std::to_string(choice));
    settings_.Save(keys::kAnalyzerBand, std::to_string(cmbBand.ListIndex()));
    settings_.Save(keys::kAnalyzerWeighting, std::to_string(cmbWeighting.ListIndex()));
    settings_.Save(keys::kAnalyzerChannel, std::to_string(stereoChannel_));
    settings_.Save(keys::kAnalyzerAverages, std::to_string(averages_));
    settings_.Save(keys::kAnalyzerHarmonics, std::to_string(highestOrder_));
}

}  // namespace sonavex
