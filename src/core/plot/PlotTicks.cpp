#include "core/plot/PlotTicks.h"

#include <algorithm>
#include <cmath>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr double kLeastLabelGap = 3.0;  // pixels

// "20", "1k", "1.05k".
std::string HertzLabel(double hertz) {
    const bool kilo = hertz > 999.9;
    return WithoutTrailingZeros(kilo ? hertz / 1000.0 : hertz, 4) + (kilo ? "k" : "");
}

// The ticks in the order in which they get labels: powers of ten, fives, twos. The others have none.
int LabelRank(int digit) {
    if (digit == 1) return 0;
    if (digit == 5) return 1;
    return digit == 2 ? 2 : 3;
}

struct RankedTick {
    PlotTick tick;
    int rank = 0;
};

std::vector<RankedTick> DecadeTicks(PlotRange decades) {
    std::vector<RankedTick> ticks;
    for (int decade = static_cast<int>(std::floor(decades.low)); decade <= decades.high; ++decade)
        for (int digit = 1; digit < 10; ++digit) {
            const double hertz = digit * std::pow(10.0, decade);
            const double position = decades.FractionOf(std::log10(hertz));
            if (position > -1e-9 && position < 1.0 + 1e-9)
                ticks.push_back({{hertz, "", digit != 1}, LabelRank(digit)});
        }
    return ticks;
}

// The smallest of 1, 2, 5, 10, 20 ... that is not below `least`.
double RoundStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double digit : {1.0, 2.0, 5.0})
        if (digit * power >= least * (1.0 - 1e-9)) return digit * power;
    return 10.0 * power;
}

std::vector<RankedTick> EqualTicks(PlotRange hertz, double step) {
    std::vector<RankedTick> ticks;
    for (double i = std::ceil(hertz.low / step - 1e-9); i * step <= hertz.high * (1.0 + 1e-12); ++i)
        ticks.push_back({{i * step, "", false}, 0});
    return ticks;
}

void AddLabels(std::vector<RankedTick>& ticks, PlotRange decades, double widthPixels,
               const LabelWidth& labelWidth) {
    struct Extent {
        double left;
        double right;
    };
    std::vector<Extent> taken;
    for (int rank = 0; rank < 3; ++rank)
        for (auto& [tick, tickRank] : ticks) {
            if (tickRank != rank) continue;
            const std::string label = HertzLabel(tick.value);
            const double centre = widthPixels * decades.FractionOf(std::log10(tick.value));
            const double half = 0.5 * (labelWidth(label) + kLeastLabelGap);
            const bool free = std::none_of(taken.begin(), taken.end(), [&](const Extent& other) {
                return centre - half < other.right && centre + half > other.left;
            });
            if (!free) continue;
            tick.label = label;
            taken.push_back({centre - half, centre + half});
        }
}

// The finest equal steps whose labels all fit.
std::vector<RankedTick> LabelledEqualTicks(PlotRange decades, double widthPixels,
                                           const LabelWidth& labelWidth) {
    const PlotRange hertz{std::pow(10.0, decades.low), std::pow(10.0, decades.high)};
    for (double step = RoundStep(hertz.Span() / 10.0);; step = RoundStep(1.5 * step)) {
        std::vector<RankedTick> ticks = EqualTicks(hertz, step);
        AddLabels(ticks, decades, widthPixels, labelWidth);
        const bool complete = std::none_of(ticks.begin(), ticks.end(),
                                           [](const RankedTick& r) { return r.tick.label.empty(); });
        if (complete || ticks.size() < 3) return ticks;
    }
}

}  // namespace

std::vector<PlotTick> FrequencyTicks(PlotRange decades, double widthPixels, const LabelWidth& labelWidth) {
    std::vector<RankedTick> ranked;
    if (decades.Span() < 0.7) {
        ranked = LabelledEqualTicks(decades, widthPixels, labelWidth);
    } else {
        ranked = DecadeTicks(decades);
        AddLabels(ranked, decades, widthPixels, labelWidth);
    }
    std::vector<PlotTick> ticks;
    ticks.reserve(ranked.size());
    for (RankedTick& tick : ranked) ticks.push_back(std::move(tick.tick));
    return ticks;
}

std::vector<PlotTick> LevelTicks(PlotRange decibels, double heightPixels, double labelHeight,
                                 std::optional<double> flag) {
    const double pixelsPerDb = heightPixels / decibels.Span();
    const double step = std::max(1.0, RoundStep(1.8 * labelHeight / pixelsPerDb));
    std::vector<PlotTick> ticks;
    for (double i = std::ceil(decibels.low / step); i * step <= decibels.high; ++i) {
        const double level = i * step + 0.0;
        const bool hidden = flag && std::fabs(level - *flag) * pixelsPerDb < 1.2 * labelHeight;
        ticks.push_back({level, hidden ? "" : WithDecimals(level, 0), false});
    }
    return ticks;
}

std::vector<PlotTick> TimeTicks(double seconds) {
    const bool milli = seconds >= 1e-3;
    const double unit = milli ? 1e-3 : 1e-6;
    const double step = RoundStep(seconds / unit / 4.2);
    const auto last = static_cast<int>(seconds / unit / step + 1e-6);
    std::vector<PlotTick> ticks;
    for (int i = 0; i <= last; ++i) {
        const bool labelled = i % 2 == 0;
        const std::string suffix = i + 2 > last ? (milli ? " ms" : " µs") : "";
        ticks.push_back(
            {i * step * unit, labelled ? WithoutTrailingZeros(i * step, 3) + suffix : "", !labelled});
    }
    return ticks;
}

}  // namespace sonavex
