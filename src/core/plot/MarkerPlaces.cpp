#include "core/plot/MarkerPlaces.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace sonavex {
namespace {

constexpr double kGapAboveMark = 5.0;  // pixels, from the centre of the mark
constexpr double kGapAboveCurve = 2.0;

double HalfWidth(int order, PlotSize size) {
    return 0.5 * size.digitWidth * static_cast<double>(std::to_string(order).size());
}

double HighestIn(std::span<const double> curve, double fromFraction, double toFraction) {
    const auto count = static_cast<double>(curve.size());
    const auto first = static_cast<std::size_t>(std::clamp(std::floor(fromFraction * count), 0.0, count));
    const auto end = static_cast<std::size_t>(std::clamp(std::ceil(toFraction * count), 0.0, count));
    double highest = 1e9;
    for (std::size_t i = first; i < end; ++i) highest = std::fmin(highest, curve[i]);
    return highest;
}

bool Touch(const MarkerPlace& a, const MarkerPlace& b, PlotSize size) {
    return std::fabs(a.x - b.x) < HalfWidth(a.order, size) + HalfWidth(b.order, size) &&
           std::fabs(a.numberBottom - b.numberBottom) < size.textHeight;
}

}  // namespace

std::vector<double> HighestCurve(std::span<const TraceColumn> first, std::span<const TraceColumn> second,
                                 PlotRange decibels, double height) {
    std::vector<double> highest(std::max(first.size(), second.size()), std::nan(""));
    for (const std::span<const TraceColumn> columns : {first, second})
        for (std::size_t i = 0; i < columns.size(); ++i)
            highest[i] = std::fmin(highest[i], height * (1.0 - decibels.FractionOf(columns[i].Line())));
    return highest;
}

std::vector<MarkerPlace> PlaceMarkers(std::span<const PlotMark> marks, const PlotView& view, PlotSize size,
                                      std::span<const double> highestCurve) {
    std::vector<MarkerPlace> places;
    for (const PlotMark& mark : marks) {
        const double fraction = view.FractionOfHertz(mark.hertz);
        const double height = view.decibels.FractionOf(mark.level);
        if (fraction < 0 || fraction > 1 || height < 0 || height > 1) continue;
        MarkerPlace place{mark.order, fraction * size.width, (1.0 - height) * size.height};
        const double half = HalfWidth(mark.order, size) / size.width;
        const double curve = HighestIn(highestCurve, fraction - half, fraction + half);
        place.numberBottom =
            std::max(std::min(place.y - kGapAboveMark, curve - kGapAboveCurve), size.textHeight);
        place.numbered = std::none_of(places.begin(), places.end(), [&](const MarkerPlace& other) {
            return other.numbered && Touch(other, place, size);
        });
        places.push_back(place);
    }
    return places;
}

}  // namespace sonavex
