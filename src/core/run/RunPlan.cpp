#include "core/run/RunPlan.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string>

#include "core/analyzer/Record.h"
#include "core/run/RunRanges.h"
#include "core/stimulus/StimulusPlan.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kShownDigits = 9;
constexpr double kPartOfABin = 1e-6;
constexpr int kMostOrders = 1000;
constexpr int kMostSettlingRecords = 1000;
constexpr double kWidestSettlingDb = 100.0;
constexpr int kFewestDitherBits = 8;
constexpr int kMostDitherBits = 32;

std::string ShownNumber(double value) {
    return WithDigits(value, kShownDigits);
}

void Require(bool condition, const std::string& sentence) {
    if (!condition) throw RunError(sentence);
}

void RequireAnalysis(const RunPlan& plan) {
    Require(plan.length == 0 || (std::has_single_bit(plan.length) && plan.length >= kShortestRecord &&
                                 plan.length <= kLongestRecord),
            "The length of a record is a power of two from 4096 to 1048576, not " +
                std::to_string(plan.length) + ".");
    Require(plan.channel <= 1, "The channel is left or right.");
    Require(plan.highestOrder >= 2 && plan.highestOrder <= kMostOrders,
            "The highest harmonic is 2 to 1000, not " + std::to_string(plan.highestOrder) + ".");
    Require(plan.band.lowHz >= 0.0 && plan.band.lowHz < plan.band.highHz && std::isfinite(plan.band.highHz),
            "The band " + ShownNumber(plan.band.lowHz) + " to " + ShownNumber(plan.band.highHz) +
                " Hz is empty.");
    Require(
        !plan.ditherBits || (*plan.ditherBits >= kFewestDitherBits && *plan.ditherBits <= kMostDitherBits),
        "The dither has 8 to 32 bits.");
}

bool IsSettlingLimit(double limitDb) {
    return limitDb >= 0.0 && limitDb <= kWidestSettlingDb;
}

void RequireSettling(const SettlingLimits& limits) {
    Require(IsSettlingLimit(limits.levelDb) && IsSettlingLimit(limits.thdnDb),
            "The limits of settling are 0 to 100 dB.");
    Require(limits.records >= 2 && limits.records <= kMostSettlingRecords,
            "A point settles within 2 to 1000 records, not " + std::to_string(limits.records) + ".");
}

void RequireLevels(const std::vector<double>& levelsDbfs, double highestDbfs) {
    for (const double level : levelsDbfs) {
        Require(level >= kLowestLevelDbfs && level <= 0.0,
                "The level " + ShownNumber(level) + " dBFS is outside -200 to 0 dBFS.");
        Require(level <= highestDbfs, "The level " + ShownNumber(level) + " dBFS is above " +
                                          ShownNumber(highestDbfs) + " dBFS, the highest of the run.");
    }
}

// The frequencies of a run at a rate.
class RunFrequencies {
public:
    RunFrequencies(const RunPlan& plan, const std::vector<double>& requestedHz, double rateHz)
        : snap_(plan.snap),
          binHz_(rateHz / static_cast<double>(RecordLengthOf(plan, rateHz))),
          lowestHz_(kBinsBetweenTones * binHz_),
          highestHz_(kHighestPart * rateHz) {
        for (const double hertz : requestedHz) RequireAt(hertz, rateHz);
        const auto [low, high] = std::minmax_element(requestedHz.begin(), requestedHz.end());
        // A single frequency has no inside.
        const bool several = *low < *high;
        lowestBin_ = OddBinFrom(several ? *low : lowestHz_);
        highestBin_ = OddBinUpTo(several ? *high : highestHz_);
    }

    double PlayedHz(double requestedHz) const {
        if (!snap_) return requestedHz;
        const double nearest = 2.0 * std::floor(requestedHz / binHz_ / 2.0) + 1.0;
        return binHz_ * std::max(std::min(nearest, highestBin_), lowestBin_);
    }

private:
    void RequireAt(double hertz, double rateHz) const {
        const std::string subject = "The frequency " + ShownNumber(hertz) + " Hz is ";
        Require(hertz >= lowestHz_, subject + "below " + ShownNumber(lowestHz_) + " Hz, 8 bins of a record.");
        Require(hertz <= highestHz_, subject + "above " + ShownNumber(highestHz_) +
                                         " Hz, 0.45 of the rate of " + ShownNumber(rateHz) + " Hz.");
    }

    // A frequency on an odd bin must not miss it by a rounding error.
    double OddBinFrom(double hertz) const {
        return 2.0 * std::ceil((hertz / binHz_ - 1.0 - kPartOfABin) / 2.0) + 1.0;
    }
    double OddBinUpTo(double hertz) const {
        return 2.0 * std::floor((hertz / binHz_ - 1.0 + kPartOfABin) / 2.0) + 1.0;
    }

    bool snap_;
    double binHz_;
    double lowestHz_;
    double highestHz_;
    double lowestBin_ = 0;
    double highestBin_ = 0;
};

}  // namespace

std::size_t RecordLengthOf(const RunPlan& plan, double rateHz) {
    return plan.length != 0 ? plan.length : DefaultRecordLength(rateHz);
}

std::vector<RunPoint> PointsOf(const RunPlan& plan, double rateHz) {
    RequireAnalysis(plan);
    RequireSettling(plan.settling);
    Require(!plan.preview || plan.over == RunAxis::kFrequency, "A preview is for runs over frequency.");
    const std::vector<double> frequencies = ValuesOf(plan.frequenciesHz, "frequencies");
    const std::vector<double> levels = ValuesOf(plan.levelsDbfs, "levels");
    Require(frequencies.size() * levels.size() <= kMostRunPoints,
            "The run has " + std::to_string(frequencies.size() * levels.size()) + " points; at most " +
                std::to_string(kMostRunPoints) + " are possible.");
    RequireLevels(levels, plan.highestLevelDbfs);
    const RunFrequencies played(plan, frequencies, rateHz);

    std::vector<RunPoint> points;
    const auto add = [&](double hertz, double level) {
        points.push_back({hertz, played.PlayedHz(hertz), level});
    };
    if (plan.over == RunAxis::kFrequency) {
        for (const double level : levels)
            for (const double hertz : frequencies) add(hertz, level);
    } else {
        for (const double hertz : frequencies)
            for (const double level : levels) add(hertz, level);
    }
    return points;
}

}  // namespace sonavex
