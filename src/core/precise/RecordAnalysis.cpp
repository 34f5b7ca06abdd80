#include "core/precise/RecordAnalysis.h"

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

LinesMeasurement MeasureLines(const RecordPlan& plan, const PreciseSettings& settings, const Record& record,
                              FittedLines& fit) {
    const Band& band = settings.tone.band;
    if (settings.mode == PreciseMode::kPair) return MeasurePair(plan, record, settings.tonesHz, band, &fit);
    if (settings.mode == PreciseMode::kMultitone)
        return MeasureMultitone(plan, record, settings.tonesHz, band, &fit);
    return MeasureNoise(plan, record, &fit);
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

RecordAnalysis VoidRecord(const PreciseSettings& settings, int bits, Void reason) {
    RecordAnalysis analysis;
    if (settings.mode != PreciseMode::kTone) analysis.values = LinesMeasurement();
    std::visit(
        [&](auto& values) {
            values.voids.push_back(std::move(reason));
            values.bits = bits;
            values.blocks = 0;
        },
        analysis.values);
    return analysis;
}

const std::vector<Void>& VoidsOf(const RecordAnalysis& analysis) {
    return std::visit([](const auto& values) -> const std::vector<Void>& { return values.voids; },
                      analysis.values);
}

const std::vector<Warning>& WarningsOf(const RecordAnalysis& analysis) {
    return std::visit([](const auto& values) -> const std::vector<Warning>& { return values.warnings; },
                      analysis.values);
}

void AddWarning(RecordAnalysis& analysis, const Warning& warning) {
    std::visit(
        [&](auto& values) {
            for (const Warning& known : values.warnings)
                if (known.code == warning.code) return;
            values.warnings.push_back(warning);
        },
        analysis.values);
}

RecordAverage::RecordAverage(std::shared_ptr<const RecordPlan> plan, PreciseSettings settings)
    : plan_(std::move(plan)), settings_(std::move(settings)), tone_(*plan_, settings_.averages) {}

void RecordAverage::Include(const RecordAnalysis& analysis, std::size_t shift) {
    if (const auto* const tone = std::get_if<ToneMeasurement>(&analysis.values))
        tone_.Add(*tone, shift);
    else
        IncludeLines(std::get<LinesMeasurement>(analysis.values), shift);
}

LinesReading RecordAverage::Values() const {
    if (settings_.mode != PreciseMode::kTone) return ReadingOf(lines_.value());
    LinesReading reading;
    reading.reading = MakeReading(*plan_, tone_.Mean(), settings_.tone);
    return reading;
}

void RecordAverage::Restart() {
    tone_.Restart();
    newest_.clear();
    lines_.reset();
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

LinesReading RecordAverage::ReadingOf(const LinesMeasurement& lines) const {
    const Band& band = settings_.tone.band;
    if (settings_.mode == PreciseMode::kPair) return MakePairReading(*plan_, lines, band);
    if (settings_.mode == PreciseMode::kMultitone) return MakeMultitoneReading(*plan_, lines, band);
    return MakeNoiseReading(*plan_, lines, band);
}

}  // namespace sonavex
