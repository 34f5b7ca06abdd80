#pragma once

#include <cstddef>
#include <vector>

#include "core/preview/PreviewSweep.h"

namespace sonavex {

// The impulse response of one order, cut out of that of the whole period with smooth edges.
class OrderWindow {
public:
    // peak: place of the linear response.
    static OrderWindow Of(const PreviewSweep& sweep, const std::vector<double>& response, std::size_t peak,
                          int order);
    // From `begin`, which may be negative (the period repeats), with edges of these lengths in samples.
    OrderWindow(const std::vector<double>& response, double begin, double end, double firstEdge,
                double lastEdge);

    // Squared gain at a frequency in turns per sample.
    double PowerAt(double turnsPerSample) const;
    // Sum of the squared weights.
    double Energy() const noexcept { return energy_; }
    std::size_t Length() const noexcept { return samples_.size(); }

private:
    std::vector<double> samples_;
    double energy_ = 0;
};

// The part of the period that no order reaches.
class NoiseWindow {
public:
    NoiseWindow(const PreviewSweep& sweep, const std::vector<double>& response, std::size_t peak);

    // The mean power that noise alone has in the window of an order, within the range of the sweep.
    double PowerIn(const OrderWindow& order, double turnsPerSample) const;

private:
    double lowestTurns_;
    std::vector<double> densities_;  // power for each unit of energy, in steps from the lowest frequency up
};

}  // namespace sonavex
