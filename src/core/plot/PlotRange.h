#pragma once

#include <cmath>

namespace sonavex {

// The visible part of an axis: levels in dB, or frequencies as decadic logarithms of Hz.
struct PlotRange {
    double low = 0;
    double high = 1;

    double Span() const noexcept { return high - low; }
    // 0 at the low end, 1 at the high end.
    double FractionOf(double value) const noexcept { return (value - low) / Span(); }
    double At(double fraction) const noexcept { return low + fraction * Span(); }
    friend bool operator==(const PlotRange&, const PlotRange&) = default;
};

// What a plot of a spectrum shows.
struct PlotView {
    PlotRange decades;   // log10 of Hz
    PlotRange decibels;  // in the unit of the plot

    double HertzAt(double fraction) const { return std::pow(10.0, decades.At(fraction)); }
    // hertz: above 0.
    double FractionOfHertz(double hertz) const { return decades.FractionOf(std::log10(hertz)); }
    friend bool operator==(const PlotView&, const PlotView&) = default;
};

// The range with its span divided by `factor`, with the value at `fraction` in place, as far as the limits
// and the least span allow.
PlotRange Zoomed(PlotRange range, double fraction, double factor, PlotRange limits, double leastSpan);
// The range moved up by a part of its span, as far as the limits allow.
PlotRange Moved(PlotRange range, double fraction, PlotRange limits);

}  // namespace sonavex
