#include "core/run/RunRanges.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace sonavex {
namespace {

// A last step that is shorter than this part of a step is a rounding error.
constexpr double kPartOfAStep = 1e-6;

[[noreturn]] void RefuseRange(const char* what, const char* fault) {
    throw RunError(std::string("The range of ") + what + fault);
}

bool IsLogarithmic(RunRange::Spacing spacing) {
    return spacing == RunRange::Spacing::kPerOctave || spacing == RunRange::Spacing::kLogarithmicPoints;
}

// Steps from one end to the other, with a fraction if the last one is shorter.
double StepsOf(const RunRange& range) {
    switch (range.spacing) {
        case RunRange::Spacing::kPerOctave:
            return std::abs(std::log2(range.to / range.from)) * range.amount;
        case RunRange::Spacing::kStep:
            return std::abs(range.to - range.from) / range.amount;
        case RunRange::Spacing::kLogarithmicPoints:
        case RunRange::Spacing::kLinearPoints:
            break;
    }
    return range.amount - 1.0;
}

void RequireRange(const RunRange& range, const char* what) {
    if (!std::isfinite(range.from) || !std::isfinite(range.to)) RefuseRange(what, " has no end.");
    if (IsLogarithmic(range.spacing) && !(range.from > 0.0 && range.to > 0.0))
        RefuseRange(what, " is logarithmic and must begin and end above 0.");
    const bool counted = range.spacing == RunRange::Spacing::kLogarithmicPoints ||
                         range.spacing == RunRange::Spacing::kLinearPoints;
    if (counted && !(range.amount >= 2.0 && range.amount == std::floor(range.amount)))
        RefuseRange(what, " has a whole number of points, at least 2.");
    if (!(range.amount > 0.0)) RefuseRange(what, " needs steps greater than 0.");
    if (!(StepsOf(range) < static_cast<double>(kMostRunPoints)))
        RefuseRange(what, " has more than 2000 points.");
}

std::vector<double> RangeValues(const RunRange& range) {
    if (range.from == range.to) return {range.from};
    const double steps = StepsOf(range);
    const double ratio = std::log2(range.to / range.from);
    std::vector<double> values;
    for (int i = 0; i < steps - kPartOfAStep; ++i) {
        const double part = i / steps;
        values.push_back(IsLogarithmic(range.spacing) ? range.from * std::exp2(part * ratio)
                                                      : range.from + part * (range.to - range.from));
    }
    values.push_back(range.to);
    return values;
}

}  // namespace

std::vector<double> ValuesOf(const RunValues& values, const char* what) {
    if (const auto* const range = std::get_if<RunRange>(&values)) {
        RequireRange(*range, what);
        return RangeValues(*range);
    }
    const auto& list = std::get<std::vector<double>>(values);
    if (list.empty()) throw RunError(std::string("The list of ") + what + " is empty.");
    if (list.size() > kMostRunPoints)
        throw RunError(std::string("The list of ") + what + " has more than 2000 points.");
    if (!std::all_of(list.begin(), list.end(), [](double value) { return std::isfinite(value); }))
        throw RunError(std::string("The list of ") + what + " has a value that is not a number.");
    return list;
}

}  // namespace sonavex
