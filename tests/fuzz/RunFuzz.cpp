// Run files, and lines of interrupted runs. Any text gives a run whose points can be played and judged, or a
// sentence on one line.

#include <cmath>

#include "core/run/RunFile.h"
#include "core/run/RunLines.h"
#include "fuzz/FuzzTarget.h"

namespace sonavex {
namespace {

using fuzz::Require;

constexpr double kFuzzedRateHz = 48000;

void CheckPoints(const RunPlan& plan, const std::vector<RunPoint>& points) {
    const double binHz = kFuzzedRateHz / static_cast<double>(RecordLengthOf(plan, kFuzzedRateHz));
    Require(!points.empty() && points.size() <= kMostRunPoints, "1 to 2000 points");
    for (const RunPoint& point : points) {
        Require(point.playedHz >= 7.999 * binHz, "at least 8 bins");
        // Between two ends without an odd bin the lower one counts.
        Require(point.playedHz <= 0.45 * kFuzzedRateHz + 2.0 * binHz, "at most 0.45 of the rate");
        Require(point.levelDbfs <= plan.highestLevelDbfs && point.levelDbfs <= 0.0, "never too loud");
    }
}

void CheckVerdict(const RunFile& run, const std::vector<RunPoint>& points) {
    std::vector<RunPointResult> results;
    for (const RunPoint& point : points) {
        RunPointResult result;
        result.point = point;
        result.fault.code = "not settled";
        results.push_back(result);
    }
    const RunVerdict verdict = JudgeRun(run.limits, results, points.size());
    Require(verdict.outcome == RunOutcome::kNotComplete, "void points never pass and never fail");
    results.front().fault = {};
    results.front().reading.thdDb = {-100.0, 0.1};
    results.resize(1);
    for (const RunLimit& limit : run.limits)
        if (limit.atMost)
            Require(std::isfinite(limit.atMost->At(points.front().requestedHz)), "finite limits");
    Require(JudgeRun(run.limits, results, points.size() + 1).outcome != RunOutcome::kPass,
            "a run that is not complete never passes");
}

void RequireSentence(std::string_view sentence) {
    Require(sentence.find_first_of("\r\n") == std::string_view::npos, "one line", sentence);
    Require(sentence.ends_with('.'), "a sentence", sentence);
}

// The same bytes as the lines of an interrupted run.
void CheckLines(std::string_view text) {
    try {
        const MeasuredRun run = ReadRunLines(text).run;
        Require(!run.results.empty() && run.results.size() <= run.points.size(), "points of the run");
        for (std::size_t i = 0; i < run.results.size(); ++i)
            Require(SamePoint(run.results[i].point, run.points[i]), "in the order of the points");
        JudgeRun(run.file.limits, run.results, run.points.size());
    } catch (const RunError& error) {
        RequireSentence(error.what());
    }
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    CheckLines(input);
    try {
        const RunFile run = ParseRunFile(input);
        const std::string text = RunFileText(run);
        Require(RunFileText(ParseRunFile(text)) == text, "the written run is the same", text);
        const std::vector<RunPoint> points = PointsOf(run.plan, kFuzzedRateHz);
        CheckPoints(run.plan, points);
        RequireCoverage(run.limits, points);
        CheckVerdict(run, points);
    } catch (const RunError& error) {
        RequireSentence(error.what());
    }
    return 0;
}
