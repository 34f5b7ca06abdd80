#include <gtest/gtest.h>

#include <string>

#include "core/plot/WavePlot.h"

namespace sonavex {
namespace {

// A record whose samples and residual have these peaks.
std::shared_ptr<const WaveRecord> RecordOf(double signalPeak, double residualPeak) {
    std::vector<double> samples(4096, signalPeak);
    std::vector<double> residual(4096, -residualPeak);
    return EndOfRecord(48000, 1000.0, {}, samples, residual);
}

TEST(WavePlot, TheScaleIsWrittenInBothUnits) {
    WavePlot plot;
    plot.Show(RecordOf(0.9, 17e-6));
    EXPECT_EQ(plot.ResidualScaleText(), "±20 µFS = -94.0 dBFS");
    EXPECT_EQ(plot.SignalScaleText(), "±1 FS");
}

TEST(WavePlot, ScalesHaveSteps) {
    const std::pair<double, double> cases[] = {
        {1e-5, 1e-5},   {1.01e-5, 1.5e-5}, {1.6e-5, 2e-5}, {2.1e-5, 3e-5}, {3.5e-5, 4e-5},
        {4.5e-5, 5e-5}, {5.5e-5, 6e-5},    {7e-5, 8e-5},   {9e-5, 1e-4},   {0.0, 1e-8}};
    for (const auto& [peak, scale] : cases) {
        WavePlot plot;
        plot.Show(RecordOf(0.9, peak));
        EXPECT_NEAR(plot.ResidualScale() / scale, 1.0, 1e-6) << peak;
    }
}

TEST(WavePlot, AScaleShrinksOnlyWhenHalfIsEnough) {
    WavePlot plot;
    plot.Show(RecordOf(0.9, 17e-6));
    plot.Show(RecordOf(0.9, 11e-6));
    EXPECT_NEAR(plot.ResidualScale(), 20e-6, 1e-12);
    plot.Show(RecordOf(0.9, 21e-6));
    EXPECT_NEAR(plot.ResidualScale(), 30e-6, 1e-12);
    plot.Show(RecordOf(0.9, 14e-6));
    EXPECT_NEAR(plot.ResidualScale(), 15e-6, 1e-12);
    plot.Show(nullptr);
    EXPECT_NEAR(plot.ResidualScale(), 15e-6, 1e-12);
}

TEST(WavePlot, ASmallSignalHasItsOwnScale) {
    WavePlot plot;
    plot.Show(RecordOf(0.011, 1e-6));
    EXPECT_EQ(plot.SignalScaleText(), "±0.015 FS");
    plot.Show(RecordOf(1.7, 1e-6));
    EXPECT_EQ(plot.SignalScaleText(), "±1 FS");
}

TEST(WavePlot, EveryScaleHasAShortText) {
    for (const double power : {1.0, 0.1, 0.01, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8})
        for (const double step : {1.0, 1.5, 2.0, 3.0, 4.0, 5.0, 6.0, 8.0}) {
            const WavePlot::AxisTexts texts = WavePlot::TextsOf(step * power);
            EXPECT_LE(texts.value.size(), 5U) << texts.value;
            const double unit = std::string(texts.unit) == "FS" ? 1.0 : 1e-6;
            EXPECT_NEAR(std::stod(texts.value) * unit / (step * power), 1.0, 1e-9) << texts.value;
        }
    WavePlot silent;
    silent.Show(RecordOf(0, 0));
    EXPECT_EQ(silent.SignalScaleText(), "±0.01 µFS");
    EXPECT_EQ(silent.ResidualScaleText(), "±0.01 µFS = -160.0 dBFS");
    silent.Show(RecordOf(0.9, 0.14));
    EXPECT_EQ(silent.ResidualScaleText(), "±0.15 FS = -16.5 dBFS");
}

TEST(WavePlot, TheTimeIsThatOfThePeriods) {
    WavePlot plot;
    EXPECT_NEAR(plot.Seconds(), 0.01, 1e-12);
    plot.Show(RecordOf(0.9, 17e-6));
    plot.SetPeriods(5);
    EXPECT_NEAR(plot.Seconds(), 0.005, 1e-12);
    EXPECT_EQ(plot.Description(), "Waveform of 5 ms, ±1 FS. Residual, ±20 µFS = -94.0 dBFS.");
}

}  // namespace
}  // namespace sonavex
