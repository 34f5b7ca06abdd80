#include "core/precise/RecordAnalysis.h"

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

LinesMeasurement MeasureLines(const RecordPlan& plan, const PreciseSettings& settings, const Record& record,
                              FittedLines& fit) {
    const Band& band = settings.tone.band;
    if (settings.mode == PreciseMode::kPair)
        return MeasurePair(plan, record, settings.tonesHz, band, &fit, settings.pairSearch);
    if (settings.mode == PreciseMode::kMultitone)
        return MeasureMultitone(plan, record, settings.tonesHz, band, &fit);
    return MeasureNoise(plan, record, &fit);
}

LinesReading ReadingOf(const RecordPlan& plan, const PreciseSettings& settings,
                       const LinesMeasurement& lines) {
    const Band& band = settings.tone.band;
    if (settings.mode == PreciseMode::kMultitone) return MakeMultitoneReading(plan, lines, band);
    if (settings.mode == PreciseMode::kNoise) return MakeNoiseReading(plan, lines, band);
    return MakePairReading(plan, lines, band);
}

}  // namespace

RecordAnalysis AnalyzeRecord(const RecordPlan& plan, const PreciseSettings& settings, const Record& record) {
    RecordAnalysis analysis;
    FittedLines fit;
    if (settings.mode == PreciseMode::kTone)
        analysis.values = MeasureTone(plan, record, settings.tone, &fit);
    else
        analysis.values = MeasureLines(plan, settings, record, fit);
    analysis.samples.assign(record.samples.begin(), record.samples.end());
    analysis.residual = std::move(fit.residual);
    return analysis;
}

LinesReading ReadingOfVoid(const RecordPlan& plan, const PreciseSettings& settings, int bits, Void reason) {
    const auto fill = [&](auto measurement) {
        measurement.voids.push_back(std::move(reason));
        measurement.bits = bits;
        measurement.blocks = 0;
        return measurement;
    };
    if (settings.mode != PreciseMode::kTone) return ReadingOf(plan, settings, fill(LinesMeasurement()));
    LinesReading reading;
    reading.reading = MakeReading(plan, fill(ToneMeasurement()), settings.tone);
    return reading;
}

const std::vector<Void>& VoidsOf(const RecordAnalysis& analysis) {
    return std::visit([](const auto& values) -> const std::vector<Void>& { return values.voids; },
                      analysis.values);
}

const std::vector<Warning>& WarningsOf(const RecordAnalysis& analysis) {
    return std::visit([](const auto& values) -> const std::vector<Warning>& { return values.warnings; },
                      analysis.values);
}

RecordAverage::RecordAverage(std::shared_ptr<const RecordPlan> plan, PreciseSettings settings)
    : plan_(std::move(plan)),
      settings_(std::move(settings)),
      tone_(*plan_, settings_.averages),
      spectrum_(*plan_, settings_.averages != 0) {}

void RecordAverage::Include(const RecordAnalysis& analysis, std::size_t shift) {
    if (const auto* const tone = std::get_if<ToneMeasurement>(&analysis.values))
        tone_.Add(*tone, shift);
    else
        IncludeLines(std::get<LinesMeasurement>(analysis.values), shift);
    if (settings_.spectrum) IncludeSpectrum(analysis);
}

// The level at an overloaded input is set with its spectrum in view.
void RecordAverage::IncludeSpectrum(const RecordAnalysis& analysis) {
    const std::vector<Void>& voids = VoidsOf(analysis);
    if (voids.empty() || voids.front().code == VoidCode::kOverload)
        spectrum_.Add(analysis.samples, std::max<std::size_t>(Records(), 1));
}

LinesReading RecordAverage::Values() const {
    if (settings_.mode != PreciseMode::kTone) return ReadingOf(*plan_, settings_, lines_.value());
    LinesReading reading;
    reading.reading = MakeReading(*plan_, tone_.Mean(), settings_.tone);
    return reading;
}

std::size_t RecordAverage::Records() const {
    return settings_.mode == PreciseMode::kTone ? tone_.Mean().blocks : lines_.value().blocks;
}

// A limited average is computed from its records each time, so that a record that drops out leaves nothing
// behind. A record that does not continue the average is alone in it, and the older ones are dropped.
void RecordAverage::IncludeLines(LinesMeasurement next, std::size_t shift) {
    if (settings_.averages == 0) {
        AddToMean(lines_, std::move(next), shift);
        return;
    }
    newest_.push_back(std::move(next));
    if (newest_.size() > settings_.averages) newest_.pop_front();
    lines_.reset();
    for (const LinesMeasurement& record : newest_) AddToMean(lines_, record);
    while (newest_.size() > std::max<std::size_t>(lines_->blocks, 1)) newest_.pop_front();
}

}  // namespace sonavex
