#include "core/precise/RecordingAnalysis.h"

#include <algorithm>
#include <string>
#include <utility>

namespace sonavex {
namespace {

template <typename Fault>
void AddUnknown(std::vector<Fault>& known, const std::vector<Fault>& faults) {
    for (const Fault& fault : faults)
        if (std::none_of(known.begin(), known.end(),
                         [&fault](const Fault& other) { return other.code == fault.code; }))
            known.push_back(fault);
}

Warning PartOfRecording(std::size_t newest, std::size_t measured) {
    return {WarningCode::kUnsteadyTone,
            "The level or the frequency of a tone differs between records: the reading contains the newest " +
                std::to_string(newest) + " of " + std::to_string(measured) + " records."};
}

std::unique_ptr<OpenRecording> WithChannel(std::unique_ptr<OpenRecording> recording, std::size_t channel) {
    if (channel >= static_cast<std::size_t>(recording->Channels()))
        throw FileError("The recording has only one channel.");
    return recording;
}

PreciseSettings SettingsOfAll(PreciseSettings settings, const RecordPlan& plan) {
    settings.rateHz = plan.RateHz();
    settings.length = plan.Length();
    settings.averages = 0;
    return settings;
}

}  // namespace

RecordingAnalysis::RecordingAnalysis(std::unique_ptr<OpenRecording> recording,
                                     std::shared_ptr<const RecordPlan> plan, const PreciseSettings& settings)
    : recording_(WithChannel(std::move(recording), settings.channel)),
      plan_(std::move(plan)),
      settings_(SettingsOfAll(settings, *plan_)),
      records_(*recording_, settings.channel, plan_->Length()),
      average_(plan_, settings_),
      spectrum_(*plan_) {}

bool RecordingAnalysis::MeasureNext() {
    if (!records_.Next()) return false;
    Include();
    return true;
}

void RecordingAnalysis::MeasureOnly(std::size_t index) {
    records_.MoveTo(index);
    Include();
}

void RecordingAnalysis::Include() {
    const Record record{.samples = records_.Samples(),
                        .rateHz = plan_->RateHz(),
                        .bits = recording_->Bits(),
                        .floatingPoint = recording_->FloatingPoint(),
                        .startSeconds = records_.StartSeconds()};
    ++measured_;
    newest_ = AnalyzeRecord(*plan_, settings_, record);
    if (!newest_.residual.empty()) residual_ = newest_.residual;
    AddUnknown(voids_, VoidsOf(newest_));
    AddUnknown(warnings_, WarningsOf(newest_));
    if (voids_.empty()) average_.Include(newest_, records_.Shift());
    const bool begins = voids_.empty() && average_.Records() == 1;
    if (record.samples.size() == plan_->Length()) spectrum_.Add(record.samples, begins ? 1 : 0);
}

LinesReading RecordingAnalysis::Values() const {
    if (voids_.empty()) {
        LinesReading values = average_.Values();
        values.reading.highestOrder = settings_.tone.highestOrder;
        std::vector<Warning> warnings;
        if (average_.Records() < measured_)
            warnings.push_back(PartOfRecording(average_.Records(), measured_));
        AddUnknown(warnings, values.reading.warnings);
        AddUnknown(warnings, warnings_);
        values.reading.warnings = std::move(warnings);
        return values;
    }
    LinesReading values;
    Reading& reading = values.reading;
    reading.voids = voids_;
    reading.warnings = warnings_;
    reading.blocks = measured_;
    reading.band = settings_.tone.band.UpTo(0.5 * plan_->RateHz());
    reading.length = plan_->Length();
    reading.bits = recording_->Bits();
    reading.floatingPoint = recording_->FloatingPoint();
    reading.highestOrder = settings_.tone.highestOrder;
    return values;
}

}  // namespace sonavex
