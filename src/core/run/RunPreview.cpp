#include "core/run/RunPreview.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/analyzer/RecordFaults.h"

namespace sonavex {
namespace {

constexpr double kHighestStartPart = 0.1;  // of the rate, as MakePreviewSweep asks
constexpr const char* kPreviewOverload = "The input reaches full scale.";

// The frequencies of the first level.
std::vector<double> PreviewFrequencies(const std::vector<RunPoint>& points) {
    std::vector<double> frequencies;
    for (const RunPoint& point : points) {
        if (point.levelDbfs != points.front().levelDbfs) break;
        frequencies.push_back(point.requestedHz);
    }
    return frequencies;
}

}  // namespace

void RunPreview::Prepare(const RunPlan& plan, const std::vector<RunPoint>& points, double rateHz) {
    pending_ = plan.preview && !points.empty();
    analysis_.reset();
    points_.clear();
    trouble_.clear();
    if (!pending_) return;
    frequenciesHz_ = PreviewFrequencies(points);
    levelDbfs_ = points.front().levelDbfs;
    const double lowest = *std::min_element(frequenciesHz_.begin(), frequenciesHz_.end());
    analysis_ = std::make_shared<const PreviewAnalysis>(
        MakePreviewSweep(std::min(lowest, kHighestStartPart * rateHz), rateHz));
}

void RunPreview::Choose(PreciseSettings& settings, StimulusChoice& choice) const {
    // The sweep's samples belong to the analysis.
    choice.period = std::shared_ptr<const std::vector<double>>(analysis_, &analysis_->Sweep().samples);
    settings.collected = choice.period->size();
}

double RunPreview::Seconds() const {
    return pending_ ? PreviewSeconds(analysis_->Sweep().rateHz) : 0.0;
}

void RunPreview::Take(const Record& record) {
    if (const std::optional<Void> fault = FaultOf(record, record.samples.size()))
        return GiveUp(fault->sentence);
    if (Overloaded(record)) return GiveUp(kPreviewOverload);
    pending_ = false;
    background_.Run(
        Background::Line::kAnalysis,
        [this, alive = std::weak_ptr(alive_), analysis = analysis_, frequencies = frequenciesHz_,
         amplitude = std::pow(10.0, levelDbfs_ / 20.0),
         samples =
             std::vector<double>(record.samples.begin(), record.samples.end())]() -> Background::Result {
            return [this, alive, analysis, points = analysis->Analyze(samples, amplitude, frequencies)] {
                if (alive.expired() || analysis != analysis_) return;
                points_ = points;
                analysis_.reset();
                if (OnPoints) OnPoints();
            };
        });
}

void RunPreview::GiveUp(const std::string& trouble) {
    pending_ = false;
    analysis_.reset();
    trouble_ = trouble;
}

}  // namespace sonavex
