#pragma once

#include <span>
#include <vector>

#include "core/plot/PlotRange.h"
#include "core/plot/TraceColumns.h"

namespace sonavex {

// A mark in the plot at a frequency and a level in the unit of the plot.
struct PlotMark {
    int order = 0;
    double hertz = 0;
    double level = 0;
};

// Size of the plot and of its texts, in pixels.
struct PlotSize {
    double width = 0;
    double height = 0;
    double digitWidth = 0;
    double textHeight = 0;
};

// Pixels from the upper left corner of the plot.
struct MarkerPlace {
    int order = 0;
    double x = 0;
    double y = 0;
    double numberBottom = 0;  // the number is centred on x above this line
    bool numbered = true;     // false where the number would touch that of a lower order
};

// For each column the y of the higher of two lines, in a plot of this height; NaN where there is none. Both
// have as many columns, or none.
std::vector<double> HighestCurve(std::span<const TraceColumn> first, std::span<const TraceColumn> second,
                                 PlotRange decibels, double height);

// Places the visible marks. Their numbers are above the mark and above the curves. highestCurve: by column.
std::vector<MarkerPlace> PlaceMarkers(std::span<const PlotMark> marks, const PlotView& view, PlotSize size,
                                      std::span<const double> highestCurve);

}  // namespace sonavex
