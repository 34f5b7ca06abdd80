#include "core/run/display/RunTexts.h"

#include <algorithm>
#include <cmath>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kTextDigits = 5;
constexpr std::size_t kMostListed = 6;
constexpr int kOverDecimals = 2;
constexpr int kLimitTextDecimals = 2;
constexpr double kKilohertz = 1000.0;
constexpr long kMinuteSeconds = 60;
constexpr long kHourSeconds = 3600;

std::string PointCount(std::size_t points) {
    return std::to_string(points) + (points == 1 ? " point" : " points");
}

std::string SideText(const char* side, const LimitCurve& limit) {
    if (!limit.Constant()) return std::string(" ") + side + " a line";
    return std::string(" ") + side + ' ' +
           WithoutTrailingZeros(limit.Rows().front().decibels, kLimitTextDecimals) + " dB";
}

std::string LimitText(const RunLimit& limit) {
    std::string text = TitleOf(limit.quantity);
    if (limit.atLeast) text += SideText("at least", *limit.atLeast);
    if (limit.atLeast && limit.atMost) text += " and";
    if (limit.atMost) text += SideText("at most", *limit.atMost);
    return text;
}

std::string SpanText(std::span<const RunPoint> points) {
    if (points.empty()) return "";
    const auto [low, high] = std::minmax_element(
        points.begin(), points.end(),
        [](const RunPoint& a, const RunPoint& b) { return a.requestedHz < b.requestedHz; });
    if (low->requestedHz == high->requestedHz) return ", " + HertzText(low->requestedHz);
    return ", " + HertzText(low->requestedHz) + " to " + HertzText(high->requestedHz);
}

std::string BeyondText(const RunVerdict& verdict, std::span<const RunPointResult> results) {
    if (verdict.pointsBeyond == 0 || !verdict.worst) return "";
    const RunMargin& worst = *verdict.worst;
    return ": " + PointCount(verdict.pointsBeyond) + " over, worst " +
           WithDecimals(-worst.marginDb, kOverDecimals) + " dB at " +
           PlaceText(results, worst.point, HertzText(results[worst.point].point.requestedHz));
}

std::string ListedText(std::span<const double> values) {
    std::string text;
    for (std::size_t i = 0; i < std::min(values.size(), kMostListed); ++i)
        text += (text.empty() ? "" : ", ") + WithDigits(values[i], kTextDigits);
    return values.size() > kMostListed ? text + " \u2026" : text;
}

std::string PositionsText(const RunPoint& point, RunAxis over) {
    return over == RunAxis::kFrequency ? HertzText(point.requestedHz)
                                       : WithDigits(point.levelDbfs, kTextDigits) + " dBFS";
}

// What is measured over the axis, and at which values of the other list.
std::string AxisText(const MeasuredRun& run) {
    if (run.points.empty()) return "";
    const RunPlan& plan = run.file.plan;
    const bool overFrequency = plan.over == RunAxis::kFrequency;
    std::vector<double> others;
    for (const RunPoint& point : run.points) {
        const double other = overFrequency ? point.levelDbfs : point.requestedHz;
        if (std::find(others.begin(), others.end(), other) == others.end()) others.push_back(other);
    }
    return PointCount(run.points.size()) + (overFrequency ? " over frequency, " : " over level, ") +
           PositionsText(run.points.front(), plan.over) + " to " +
           PositionsText(run.points.back(), plan.over) + ", at " + ListedText(others) +
           (overFrequency ? " dBFS" : " Hz");
}

std::string AnalysisText(const MeasuredRun& run) {
    const RunPlan& plan = run.file.plan;
    return "Records of " + std::to_string(RecordLengthOf(plan, run.conditions.rateHz)) + " samples at " +
           WithDecimals(run.conditions.rateHz, 0) + " Hz, band " + HertzText(plan.band.lowHz) + " to " +
           HertzText(plan.band.highHz) + ", " + (plan.channel == 0 ? "left" : "right") +
           " channel, harmonics to " + std::to_string(plan.highestOrder);
}

// The points without values; empty if there are none.
std::string InvalidText(const MeasuredRun& run) {
    std::string text;
    std::size_t count = 0;
    for (const RunPointResult& result : run.results) {
        if (result.Valid() || ++count > kMostListed) continue;
        text += (text.empty() ? "Invalid: " : ", ") + PositionsText(result.point, run.file.plan.over) + " (" +
                result.fault.code + ')';
    }
    return count > kMostListed ? text + " and " + std::to_string(count - kMostListed) + " more" : text;
}

}  // namespace

std::vector<std::string> RunPageLines(const MeasuredRun& run, const std::string& program) {
    std::vector<std::string> lines{run.time.empty() ? program : run.time + ", " + program, AxisText(run),
                                   AnalysisText(run)};
    if (const auto& stream = run.conditions.stream) {
        lines.push_back("Input " + stream->input + ", " + std::to_string(stream->inputBits) +
                        " bit; output " + stream->output + ", " + std::to_string(stream->outputBits) +
                        " bit");
        for (const std::string& note : stream->notes) lines.push_back(note);
        if (stream->simulated) lines.emplace_back("SIMULATED sound card: this run measures nothing real");
    }
    const std::string limits = LimitsText(run.file.limits, run.points, run.results);
    lines.push_back(limits.empty() ? "No limit" : "Limit: " + limits);
    lines.push_back(VerdictSentence(JudgeRun(run.file.limits, run.results, run.points.size()), run.results,
                                    run.points.size()));
    if (std::string invalid = InvalidText(run); !invalid.empty()) lines.push_back(std::move(invalid));
    return lines;
}

RunVerdictChip VerdictChipOf(std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                             std::size_t points, bool running) {
    using Kind = RunVerdictChip::Kind;
    if (points == 0) return {};
    const RunVerdict verdict = JudgeRun(limits, results, points);
    if (verdict.outcome == RunOutcome::kFail) return {Kind::kFail, NameOf(verdict.outcome)};
    if (running) {
        const bool judged = !limits.empty() && verdict.worst;
        return judged ? RunVerdictChip{Kind::kPass, "PASS so far"} : RunVerdictChip{};
    }
    if (verdict.outcome == RunOutcome::kUnjudged) return {};
    const bool passed = verdict.outcome == RunOutcome::kPass;
    return {passed ? Kind::kPass : Kind::kNotComplete, NameOf(verdict.outcome)};
}

std::string LimitsText(std::span<const RunLimit> limits, std::span<const RunPoint> points,
                       std::span<const RunPointResult> results) {
    std::string text;
    for (const RunLimit& limit : limits) text += (text.empty() ? "" : "; ") + LimitText(limit);
    if (text.empty()) return "";
    return text + SpanText(points) + BeyondText(JudgeRun(limits, results, points.size()), results);
}

std::string TitleOf(const RunQuantity& quantity) {
    switch (quantity.kind) {
        case RunQuantity::Kind::kThd:
            return "THD";
        case RunQuantity::Kind::kThdn:
            return "THD+N";
        case RunQuantity::Kind::kHarmonic:
            return "H" + std::to_string(quantity.order);
        case RunQuantity::Kind::kResponse:
            break;
    }
    return "Response";
}

std::string HertzText(double hertz) {
    const bool kilo = hertz >= 10 * kKilohertz;
    return WithDigits(kilo ? hertz / kKilohertz : hertz, kTextDigits) + (kilo ? " kHz" : " Hz");
}

std::string DurationText(double seconds) {
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole < kMinuteSeconds) return std::to_string(whole) + " s";
    const long minutes = whole / kMinuteSeconds;
    if (whole < kHourSeconds)
        return std::to_string(minutes) + " min " + std::to_string(whole % kMinuteSeconds) + " s";
    return std::to_string(whole / kHourSeconds) + " h " + std::to_string(minutes % kMinuteSeconds) + " min";
}

std::string RunningPointText(std::span<const RunPoint> points, std::size_t measured, RunAxis over) {
    if (points.empty()) return "";
    const std::size_t index = std::min(measured, points.size() - 1);
    const RunPoint& point = points[index];
    const std::string where = over == RunAxis::kFrequency
                                  ? WithDigits(point.requestedHz, kTextDigits) + " Hz"
                                  : WithDigits(point.levelDbfs, kTextDigits) + " dBFS";
    return "Point " + std::to_string(index + 1) + " of " + std::to_string(points.size()) + ": " + where;
}

std::string FinishedText(std::span<const RunPointResult> results, std::size_t points, double seconds) {
    const auto count = [&results](auto condition) {
        return static_cast<std::size_t>(std::count_if(results.begin(), results.end(), condition));
    };
    const std::size_t invalid = count([](const RunPointResult& r) { return !r.Valid(); });
    const std::size_t repeated = count([](const RunPointResult& r) { return r.attempts > 1; });
    std::string text = results.size() < points ? std::to_string(results.size()) + " of " + PointCount(points)
                                               : PointCount(points);
    text += " in " + DurationText(seconds);
    if (invalid > 0 || repeated > 0)
        text += "; " + std::to_string(invalid) + " invalid, " + std::to_string(repeated) + " repeated";
    return text;
}

}  // namespace sonavex
