#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/plot/PlotRange.h"

namespace sonavex {

// A grid line of an axis. A minor one is drawn weaker.
struct PlotTick {
    double value = 0;   // Hz, dB or seconds
    std::string label;  // empty: none
    bool minor = false;
};

// Width of a label in pixels.
using LabelWidth = std::function<double(const std::string& label)>;

// Grid lines and labels of a logarithmic frequency axis: 10, 20, 50, 100 ... 10k, 20k; equal steps where less
// than a decade is magnified. Labels that would touch are left out.
std::vector<PlotTick> FrequencyTicks(PlotRange decades, double widthPixels, const LabelWidth& labelWidth);

// Grid lines and labels of a level axis in dB. flag: a level at the axis whose text takes the place of
// labels.
std::vector<PlotTick> LevelTicks(PlotRange decibels, double heightPixels, double labelHeight,
                                 std::optional<double> flag = std::nullopt);

// Grid lines and labels of a time axis from 0; the last label has the unit: "0", "1", "2 ms".
std::vector<PlotTick> TimeTicks(double seconds);

}  // namespace sonavex
