#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace sonavex {

// A power spectrum as it is plotted.
struct SpectrumTrace {
    std::string name;  // for the legend: "Left, live"
    // By bin, from 0 Hz to half the rate. A full-scale sine on a bin gives 1 there. From
    // RecordPlan::PowerSpectrum: times 2 AnalysisWindow::EnbwBins.
    std::vector<float> power;
    double binHz = 1;
    double records = 1;  // independent spectra that `power` is the mean of

    double LastHz() const noexcept {
        return power.empty() ? 0 : binHz * static_cast<double>(power.size() - 1);
    }
};

// dB of a power; -400 for 0.
double PowerDecibels(double power);

// The bin nearest to a frequency; 0 for an empty trace.
std::size_t NearestBin(const SpectrumTrace& trace, double hertz);
// Level of that bin; -400 outside the trace.
double LevelAt(const SpectrumTrace& trace, double hertz);

}  // namespace sonavex
