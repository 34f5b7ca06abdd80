// The whole way: stimulus, simulated card, readings.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "core/precise/PreciseMeter.h"
#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/RenderStimulus.h"
#include "core/stimulus/SampleWord.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/EngineBench.h"
#include "unit/precise/HeldBackground.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t kCardRateHz = 8000;

// Plays a signal on both channels, without ramps.
class SignalSource : public FineSource {
public:
    SignalSource(const char* stimulus, double levelDbfs, const SampleWord& word)
        : signal_(RenderStimulus(PlanStimulus({.stimulus = ParseStimulus(stimulus),
                                               .rateHz = kCardRateHz,
                                               .length = DefaultRecordLength(kCardRateHz),
                                               .levelDbfs = levelDbfs}))),
          rounder_(word) {}

    void FillFine(std::span<std::int32_t> block) override {
        std::vector<double> samples(block.size() / 2);
        signal_.Fill(frame_, samples);
        for (std::size_t i = 0; i < samples.size(); ++i, ++frame_) {
            block[2 * i] = rounder_.Round(samples[i], frame_, 0);
            block[2 * i + 1] = rounder_.Round(samples[i], frame_, 1);
        }
    }
    void Rewind(std::uint64_t frames) override { frame_ -= frames; }

private:
    StimulusSignal signal_;
    SampleRounder rounder_;
    std::uint64_t frame_ = 0;
};

class PreciseCardTest : public testing::Test {
protected:
    PreciseCardTest() {
        bench.shared.SampleRate = kCardRateHz;
        bench.store.Save("Signal Generator", "Level", "0");
        meter.OnReading = [this](const LinesReading& values) { readings.push_back(values.reading); };
    }

    void Play(FineSource& source, const DeviceUnderTestModel& model, std::size_t averages = 1) {
        bench.sound.Card().SetDeviceUnderTest(model);
        bench.Start();
        Run(2500ms);
        ASSERT_GT(bench.engine.PlaybackStarts, 0U);
        PreciseSettings settings;
        settings.rateHz = kCardRateHz;
        settings.averages = averages;
        fine.SetSource(&source);
        meter.Start(settings);
        meter.StimulusChanged();
    }
    void Run(std::chrono::milliseconds time) {
        for (auto passed = 0ms; passed < time; passed += 20ms) {
            bench.sound.Card().Step(kCardRateHz / 50);
            bench.loop.Advance(20ms);
            background.Complete();
        }
    }

    EngineOn<SimulatedSoundSystem> bench;
    FineStream fine{bench.loop, bench.engine};
    HeldBackground background;
    UsedBits usedBits{bench.loop, bench.engine, fine};
    PreciseMeter meter{{bench.engine, fine, usedBits, background}};
    std::vector<Reading> readings;
};

double Db(double ratio) {
    return 20.0 * std::log10(ratio);
}

TEST_F(PreciseCardTest, ReadsThePolynomialOfTheDevice) {
    constexpr double kSecond = 2e-3;
    constexpr double kThird = -5e-4;
    DeviceUnderTestModel model;
    model.bits = 32;
    model.polynomial = {0.0, 1.0, kSecond, kThird};
    model.delayFrames = 700;
    SignalSource source("sine:997.3", -1.0, {32, std::nullopt});
    Play(source, model);
    Run(1300ms);
    EXPECT_TRUE(readings.empty());
    Run(2s);
    ASSERT_GE(readings.size(), 4U);
    const double peak = std::pow(10.0, -0.05);
    const double fundamental = peak + 0.75 * kThird * peak * peak * peak;
    for (const Reading& reading : readings) {
        ASSERT_TRUE(reading.Valid());
        EXPECT_NEAR(*reading.frequencyHz.value, 997.3, 1e-6);
        EXPECT_NEAR(*reading.levelDbfs.value, Db(fundamental), 1e-4);
        EXPECT_NEAR(*reading.harmonics[0].levelDbc.value, Db(0.5 * kSecond * peak * peak / fundamental),
                    1e-4);
        EXPECT_NEAR(*reading.harmonics[1].levelDbc.value,
                    Db(0.25 * -kThird * peak * peak * peak / fundamental), 1e-4);
        EXPECT_LT(*reading.harmonics[2].levelDbc.value, -160.0);
    }
}

// The noise of the dither: two steps peak to peak, in the band from 20 Hz.
TEST_F(PreciseCardTest, ReadsTheDitherOfALoopOf24Bits) {
    DeviceUnderTestModel model;
    model.bits = 24;
    SignalSource source("sine:997.3", -1.0, DitheredWord(24));
    Play(source, model, 0);
    Run(6s);
    ASSERT_GE(readings.size(), 10U);
    const double band = (0.5 * kCardRateHz - 20.0) / (0.5 * kCardRateHz);
    const double noise = Db(std::ldexp(1.0, -23) / std::sqrt(2.0)) + 10.0 * std::log10(band);
    EXPECT_TRUE(readings.back().Valid());
    EXPECT_NEAR(*readings.back().noiseDbfs.value, noise, 0.2);
    EXPECT_NEAR(*readings.back().thdnDb.value, noise + 1.0, 0.3);
}

// Found by the capture, not by the shape of the residual: the tone has whole periods in what is lost.
TEST_F(PreciseCardTest, AStalledUserInterfaceLosesFramesAndVoids) {
    DeviceUnderTestModel model;
    model.bits = 24;
    SignalSource source("sine:1000", -1.0, DitheredWord(24));
    Play(source, model);
    Run(3s);
    ASSERT_FALSE(readings.empty());
    readings.clear();
    // The queue holds 2 s.
    bench.sound.Card().Step(2 * kCardRateHz + 800);
    Run(100ms);
    ASSERT_FALSE(readings.empty());
    EXPECT_FALSE(readings.back().Valid());
    EXPECT_EQ(meter.State(), PreciseState::kVoid);
    Run(4s);
    EXPECT_EQ(meter.State(), PreciseState::kValid);
}

}  // namespace
}  // namespace sonavex
