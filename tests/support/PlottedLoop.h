#pragma once

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "core/plot/SpectrumPlot.h"
#include "core/plot/WavePlot.h"

namespace sonavex {

// A simulated loop: a tone on bin 1365 at -1 dBFS with harmonics over noise, 65536 points at 48 kHz, eight
// averages.
class PlottedLoop {
public:
    static constexpr double kBinHz = 48000.0 / 65536;

    explicit PlottedLoop(double noiseDb = -140.6, double gainDb = 0) : random_(1) {
        trace_ = {"Left, live", std::vector<float>(32769), kBinHz, 6.0};
        std::gamma_distribution<double> noise(6.0, std::pow(10.0, noiseDb / 10) / 6.0);
        for (float& bin : trace_.power) bin = static_cast<float>(noise(random_));
        AddLine(1365, -1.0);
        for (std::size_t i = 0; i < kLevels.size(); ++i)
            AddLine(1365 * (static_cast<int>(i) + 2), kLevels[i] - 1 + gainDb);
        AddLine(68, -117 + gainDb);
        AddLine(205, -119.2 + gainDb);
    }

    std::shared_ptr<const SpectrumTrace> Trace(const std::string& name = "Left, live") const {
        auto trace = std::make_shared<SpectrumTrace>(trace_);
        trace->name = name;
        return trace;
    }
    SpectrumPlot::Data Data() const {
        SpectrumPlot::Data data;
        data.live = Trace();
        for (std::size_t i = 0; i < kLevels.size(); ++i)
            data.markers.push_back({static_cast<int>(i) + 2, 1365 * kBinHz * static_cast<double>(i + 2),
                                    kLevels[i] - 1, i == 6});
        data.noisePerBinDbfs = -140.6;
        data.fundamental = PlotTone{1365 * kBinHz, -1.0};
        data.conditions = "65536 points, BH7 window, 8 averages; shaded: outside the band";
        return data;
    }
    std::shared_ptr<const WaveRecord> Wave() {
        const double hertz = 1365 * kBinHz;
        std::vector<double> samples(4096);
        std::vector<double> residual(4096);
        std::vector<WaveHarmonic> harmonics;
        for (std::size_t i = 0; i < kLevels.size(); ++i)
            harmonics.push_back({static_cast<int>(i) + 2, 0.89 * std::pow(10.0, kLevels[i] / 20),
                                 0.7 * static_cast<double>(i)});
        std::normal_distribution<double> noise(0, 7e-6);
        for (std::size_t n = 0; n < samples.size(); ++n) {
            residual[n] = noise(random_);
            samples[n] = 0.89 * std::sin(6.283185307 * hertz / 48000 * static_cast<double>(n)) + residual[n];
        }
        return EndOfRecord(48000, hertz, harmonics, samples, residual);
    }

private:
    // Spread over the main lobe of the window, roughly.
    void AddLine(int bin, double decibels) {
        for (int offset = -6; offset <= 6; ++offset)
            trace_.power[static_cast<std::size_t>(bin + offset)] +=
                static_cast<float>(std::pow(10.0, (decibels - 2.2 * offset * offset) / 10));
    }

    inline static const std::vector<double> kLevels{-104.01, -109.05, -121.15, -116.94,
                                                    -132.77, -125.72, -140.7,  -132.57};
    std::mt19937 random_;
    SpectrumTrace trace_;
};

}  // namespace sonavex
