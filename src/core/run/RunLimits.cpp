#include "core/run/RunLimits.h"

#include <algorithm>
#include <array>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kLowestLimitedOrder = 2;
constexpr int kHighestLimitedOrder = 9;

enum class Comparison { kUndefined, kWithin, kBeyond, kOpen };

class RunJudge {
public:
    RunVerdict Judge(std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                     std::size_t points) {
        std::vector<bool> compared(limits.size());
        verdict_.pointsOpen = points - std::min(points, results.size());
        for (std::size_t i = 0; i < results.size(); ++i) {
            bool beyond = false;
            bool open = !results[i].Valid();
            for (std::size_t k = 0; k < limits.size() && results[i].Valid(); ++k) {
                const Comparison comparison = Compare(limits[k], results[i], i);
                beyond = beyond || comparison == Comparison::kBeyond;
                open = open || comparison == Comparison::kOpen;
                if (comparison != Comparison::kUndefined) compared[k] = true;
            }
            if (beyond) ++verdict_.pointsBeyond;
            if (open) ++verdict_.pointsOpen;
        }
        const bool allCompared = std::all_of(compared.begin(), compared.end(), [](bool is) { return is; });
        verdict_.outcome = OutcomeOf(!limits.empty(), allCompared && points > 0);
        return verdict_;
    }

private:
    RunOutcome OutcomeOf(bool limited, bool complete) const {
        if (verdict_.pointsBeyond > 0) return RunOutcome::kFail;
        if (verdict_.pointsOpen > 0 || !complete) return RunOutcome::kNotComplete;
        return limited ? RunOutcome::kPass : RunOutcome::kUnjudged;
    }

    Comparison Compare(const RunLimit& limit, const RunPointResult& result, std::size_t point) {
        const Value value = ValueOf(result, limit.quantity);
        if (!value.value) return Comparison::kUndefined;
        const double hertz = result.point.requestedHz;
        Comparison worst = Comparison::kWithin;
        if (limit.atMost) {
            const double limitDb = limit.atMost->At(hertz);
            worst =
                Side(value.atMost, {point, limit.quantity, *value.value, limitDb, limitDb - *value.value});
        }
        if (limit.atLeast) {
            const double limitDb = limit.atLeast->At(hertz);
            const RunMargin margin{point, limit.quantity, *value.value, limitDb, *value.value - limitDb};
            // A bound below the lowest value is beyond it; above it, it proves nothing.
            const Comparison side =
                value.atMost && margin.marginDb >= 0.0 ? Comparison::kOpen : Side(false, margin);
            worst = std::max(worst, side);
        }
        return worst;
    }

    Comparison Side(bool bound, const RunMargin& margin) {
        if (bound && margin.marginDb < 0.0) return Comparison::kOpen;
        if (!verdict_.worst || margin.marginDb < verdict_.worst->marginDb) verdict_.worst = margin;
        return margin.marginDb < 0.0 ? Comparison::kBeyond : Comparison::kWithin;
    }

    RunVerdict verdict_;
};

Value HarmonicOf(const Reading& reading, int order) {
    const auto found = std::find_if(reading.harmonics.begin(), reading.harmonics.end(),
                                    [order](const Harmonic& harmonic) { return harmonic.order == order; });
    if (found == reading.harmonics.end() || !reading.frequencyHz.value) return {};
    return reading.band.Contains(order * *reading.frequencyHz.value) ? found->levelDbc : Value();
}

void RequireCovered(const std::optional<LimitCurve>& curve, const RunQuantity& quantity, double hertz) {
    if (!curve || curve->Covers(hertz)) return;
    throw RunError("The limit table of " + NameOf(quantity) + " is incomplete: it ends at " +
                   WithDigits(curve->Rows().front().hertz, 9) + " and " +
                   WithDigits(curve->Rows().back().hertz, 9) + " Hz, and a point is at " +
                   WithDigits(hertz, 9) + " Hz.");
}

}  // namespace

std::string NameOf(const RunQuantity& quantity) {
    switch (quantity.kind) {
        case RunQuantity::Kind::kThd:
            return "thd";
        case RunQuantity::Kind::kThdn:
            return "thdn";
        case RunQuantity::Kind::kHarmonic:
            return "h" + std::to_string(quantity.order);
        case RunQuantity::Kind::kResponse:
            break;
    }
    return "response";
}

std::optional<RunQuantity> QuantityNamed(std::string_view name) {
    std::vector<RunQuantity> all{
        {RunQuantity::Kind::kThd}, {RunQuantity::Kind::kThdn}, {RunQuantity::Kind::kResponse}};
    for (int order = kLowestLimitedOrder; order <= kHighestLimitedOrder; ++order)
        all.push_back({RunQuantity::Kind::kHarmonic, order});
    for (const RunQuantity& quantity : all)
        if (NameOf(quantity) == name) return quantity;
    return std::nullopt;
}

Value ValueOf(const RunPointResult& result, const RunQuantity& quantity) {
    if (!result.Valid()) return {};
    switch (quantity.kind) {
        case RunQuantity::Kind::kThd:
            return result.reading.thdDb;
        case RunQuantity::Kind::kThdn:
            return result.reading.thdnDb;
        case RunQuantity::Kind::kHarmonic:
            return HarmonicOf(result.reading, quantity.order);
        case RunQuantity::Kind::kResponse:
            break;
    }
    return result.gainDb;
}

void RequireCoverage(std::span<const RunLimit> limits, std::span<const RunPoint> points) {
    for (const RunLimit& limit : limits)
        for (const RunPoint& point : points) {
            RequireCovered(limit.atLeast, limit.quantity, point.requestedHz);
            RequireCovered(limit.atMost, limit.quantity, point.requestedHz);
        }
}

const char* NameOf(RunOutcome outcome) {
    switch (outcome) {
        case RunOutcome::kUnjudged:
            return "COMPLETE";
        case RunOutcome::kPass:
            return "PASS";
        case RunOutcome::kFail:
            return "FAIL";
        case RunOutcome::kNotComplete:
            break;
    }
    return "NOT COMPLETE";
}

RunVerdict JudgeRun(std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                    std::size_t points) {
    return RunJudge().Judge(limits, results, points);
}

}  // namespace sonavex
