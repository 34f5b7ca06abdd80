#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <random>
#include <span>
#include <utility>

#include "core/analyzer/MeasureTone.h"
#include "core/preview/PreviewAnalysis.h"
#include "platform/simulated/DeviceUnderTest.h"

namespace sonavex {
namespace {

constexpr double kPreviewAmplitude = 0.5;

double PreviewDb(double ratio) {
    return 20 * std::log10(ratio);
}

std::vector<double> SixPerOctave(double fromHz, double toHz) {
    std::vector<double> frequencies;
    for (int i = 0; fromHz * std::exp2(i / 6.0) <= toHz; ++i)
        frequencies.push_back(fromHz * std::exp2(i / 6.0));
    return frequencies;
}

// The period that follows a first one, through a device that keeps its state between both.
template <class Device>
std::vector<double> SecondPeriod(const PreviewSweep& sweep, Device device) {
    std::vector<double> captured;
    for (int period = 0; period < 2; ++period) {
        captured.clear();
        for (const double sample : sweep.samples) captured.push_back(device(kPreviewAmplitude * sample));
    }
    return captured;
}

TEST(PreviewSweep, IsSynchronisedAndCoversTheRange) {
    for (const double rateHz : {8000.0, 44100.0, 48000.0, 192000.0}) {
        const PreviewSweep sweep = MakePreviewSweep(20, rateHz);
        EXPECT_EQ(sweep.lowHz, 10);
        EXPECT_EQ(sweep.highHz, 0.48 * rateHz);
        const double turns = sweep.lowHz * sweep.timeConstant;
        EXPECT_NEAR(turns, std::round(turns), 1e-9);
        const double seconds = sweep.timeConstant * std::log(sweep.highHz / sweep.lowHz);
        EXPECT_GT(seconds, 6);
        EXPECT_LT(seconds, 15);
        EXPECT_LT(seconds, 0.95 * static_cast<double>(sweep.samples.size()) / rateHz);
        EXPECT_EQ(sweep.samples.front(), 0);
        EXPECT_EQ(sweep.samples.back(), 0);
        for (const double sample : sweep.samples) EXPECT_LE(std::abs(sample), 1);
    }
    EXPECT_EQ(MakePreviewSweep(1, 48000).lowHz, 5);
    EXPECT_THROW(MakePreviewSweep(5000, 48000), std::invalid_argument);
}

// High pass of 30 Hz and low pass of 10 kHz, of first order, and a delay.
TEST(Preview, ShowsTheResponseOfAFilter) {
    const PreviewSweep sweep = MakePreviewSweep(20, 48000);
    const PreviewAnalysis analysis(sweep);
    const double low = std::exp(-2 * std::numbers::pi * 30 / 48000);
    const double high = std::exp(-2 * std::numbers::pi * 10000 / 48000);
    std::vector<double> delayed(700, 0.0);
    std::size_t at = 0;
    double before = 0;
    double passed = 0;
    double smooth = 0;
    const std::vector<double> captured = SecondPeriod(sweep, [&](double sample) {
        passed = low * (passed + sample - before);
        before = sample;
        smooth = (1 - high) * passed + high * smooth;
        const double result = std::exchange(delayed[at], smooth);
        at = (at + 1) % delayed.size();
        return result;
    });
    for (const PreviewPoint& point : analysis.Analyze(captured, kPreviewAmplitude, SixPerOctave(20, 21600))) {
        const double w = 2 * std::numbers::pi * point.hertz / 48000;
        const std::complex<double> z = std::polar(1.0, -w);
        const double expected = std::abs(low * (1.0 - z) / (1.0 - low * z) * (1 - high) / (1.0 - high * z));
        EXPECT_NEAR(point.gainDb, PreviewDb(expected), 0.1) << point.hertz;
    }
}

// The device of the simulated card: 24 bits, harmonics to the 9th, noise.
class PreviewDevice {
public:
    PreviewDevice() : device_(Model()) {}

    // What it captures while `frames` frames are played, full scale 1.
    template <class Signal>
    std::vector<double> Capture(std::size_t frames, const Signal& signal) {
        std::vector<std::int32_t> played;
        for (std::size_t n = 0; n < frames; ++n) {
            const std::int32_t sample = Quantized(32768 * signal(n), 24);
            played.insert(played.end(), {sample, sample});
        }
        std::vector<std::int32_t> captured(played.size());
        device_.Process(played, captured);
        std::vector<double> left;
        for (std::size_t n = 0; n < frames; ++n) left.push_back(captured[2 * n] / 2147483648.0);
        return left;
    }

private:
    static DeviceUnderTestModel Model() {
        DeviceUnderTestModel model;
        model.bits = 24;
        model.delayFrames = 300;
        model.polynomial = {0, 0.9, 0.004, 0.003, 0.003, 0.002, 0.002, 0.002, 0.001, 0.002};
        model.noiseRms = 0.02;
        return model;
    }
    DeviceUnderTest device_;
};

TEST(Preview, NoiseAloneIsNoHarmonic) {
    const PreviewAnalysis analysis(MakePreviewSweep(20, 8000));
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0, 1e-4);
    const std::vector<double> captured =
        SecondPeriod(analysis.Sweep(), [&](double sample) { return sample + noise(random); });
    int harmonics = 0;
    for (const PreviewPoint& point : analysis.Analyze(captured, kPreviewAmplitude, SixPerOctave(20, 3600)))
        for (const PreviewHarmonic& harmonic : point.harmonics) {
            ++harmonics;
            EXPECT_LT(harmonic.dbc, harmonic.noiseDbc - 12) << point.hertz;
            EXPECT_LT(harmonic.noiseDbc, -30) << point.hertz;
        }
    EXPECT_GT(harmonics, 100);
}

// As the stepped run measures it.
TEST(Preview, AgreesWithSteppedTones) {
    const PreviewAnalysis analysis(MakePreviewSweep(20, 48000));
    const std::vector<double>& sweep = analysis.Sweep().samples;
    PreviewDevice device;
    const auto played = [&](std::size_t n) { return kPreviewAmplitude * sweep[n]; };
    device.Capture(sweep.size(), played);
    const std::vector<double> captured = device.Capture(sweep.size(), played);

    const RecordPlan plan(32768, 48000);
    int compared = 0;
    for (const PreviewPoint& point : analysis.Analyze(captured, kPreviewAmplitude, SixPerOctave(20, 21600))) {
        const double step = 2 * std::numbers::pi * point.hertz / 48000;
        const std::vector<double> samples = device.Capture(40000, [&](std::size_t n) {
            return kPreviewAmplitude * std::sin(step * static_cast<double>(n));
        });
        ToneSettings settings;
        settings.highestOrder = kPreviewHighestOrder;
        const Reading reading = AnalyzeTone(plan, {std::span(samples).last(32768), 24}, settings);
        ASSERT_TRUE(reading.Valid()) << point.hertz;
        EXPECT_NEAR(point.gainDb, *reading.levelDbfs.value - PreviewDb(kPreviewAmplitude), 0.1)
            << point.hertz;
        for (std::size_t i = 0; i < point.harmonics.size(); ++i) {
            const PreviewHarmonic& harmonic = point.harmonics[i];
            if (harmonic.dbc < harmonic.noiseDbc + 20) continue;
            ++compared;
            EXPECT_NEAR(harmonic.dbc, *reading.harmonics[i].levelDbc.value, 0.1)
                << point.hertz << " Hz, order " << i + 2;
        }
    }
    EXPECT_GT(compared, 80);
}

}  // namespace
}  // namespace sonavex
