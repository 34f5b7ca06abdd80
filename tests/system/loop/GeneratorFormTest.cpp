// The generator, operated through the main form and captured from the simulated card.

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <numbers>

#include "support/CaptureTap.h"
#include "support/FormRig.h"
#include "support/PhaseTrack.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr double kRateHz = 32000.0;
constexpr auto kBlockTime = 64ms;
constexpr double kRounding = 1.5;  // rounding of generator and volume, in 16-bit steps
constexpr double kSmallestJump = 0.002;

class GeneratorForm : public testing::Test, protected World {
protected:
    void SetUp() override {
        form.Form_Load();
        // Playback starts after seven blocks.
        Step(10);
        tap.Forget();
    }
    void Step(int blocks) {
        for (int i = 0; i < blocks; ++i) {
            card.Card().Step(2048);
            loop.Advance(kBlockTime);
        }
    }
    static void MoveTo(Slider& slider, std::int32_t value) {
        slider.UserMoves(value);
        slider.UserReleases();
    }
    void SetSweep(std::int32_t startHz, std::int32_t endHz, std::int32_t timeMs) {
        MoveTo(signal.sldSweepTime, timeMs);
        MoveTo(signal.sldStartFreq, startHz);
        MoveTo(signal.sldEndFreq, endHz);
    }
    void ExpectContinuous(std::size_t changes) {
        const PhaseTrack track(tap.Samples());
        EXPECT_LT(track.LargestJump(), kSmallestJump);
        EXPECT_LT(track.LargestResidue(), kRounding);
        EXPECT_GE(track.Changes(), changes);
    }
    // Peak of one spectral line of the last second; its frequencies are whole hertz.
    double Peak(double frequencyHz) const {
        const auto& samples = tap.Samples();
        const auto second = static_cast<std::size_t>(kRateHz);
        double re = 0.0;
        double im = 0.0;
        for (std::size_t i = 0; i < second; ++i) {
            const double angle = 2.0 * std::numbers::pi * frequencyHz * static_cast<double>(i) / kRateHz;
            const double sample = samples[samples.size() - second + i];
            re += sample * std::cos(angle);
            im += sample * std::sin(angle);
        }
        return 2.0 * std::hypot(re, im) / kRateHz;
    }

    SimulatedSoundSystem card{loop, SimulatedSoundSystem::Pace::kStepped};
    CaptureTap tap{card};
    frmMain form{On(tap)};
    SignalControls& signal = form.GeneratorPanel.Controls;
    MemoryControls& memory = form.GeneratorPanel.MemoryControls;
};

TEST_F(GeneratorForm, PlaysEightSinesWithoutClipping) {
    MoveTo(signal.sldLevel, 0);
    for (std::int32_t i = 1; i <= 8; ++i) {
        MoveTo(signal.sldStartFreq, 250 * i);
        memory.cmdGenAdd.Press();
        memory.ToneList.UserSelects(i - 1, true);
    }
    memory.cmdStartMemory.Press();
    Step(60);
    const double peak = 32767.0 / 2.0 / 9.0;
    for (int i = 1; i <= 8; ++i) EXPECT_NEAR(Peak(250 * i), peak, 0.1) << i;
    EXPECT_LT(Peak(2250), 0.1);
    EXPECT_LT(LargestMagnitude(tap.Samples()), 32767);
    EXPECT_LE(LargestMagnitude(tap.Samples()), 8.0 * peak + 0.5);
    EXPECT_GT(LargestMagnitude(tap.Samples()), 6.0 * peak);
}

TEST_F(GeneratorForm, KeepsThePhaseWhileTheFrequencyMoves) {
    MoveTo(signal.sldStartFreq, 400);
    signal.Command1.Press();
    const std::int32_t stops[] = {500, 450, 1000, 2000, 1000, 101, 15000, 3000, 3001, 440};
    for (const std::int32_t hertz : stops) {
        Step(3);
        signal.sldStartFreq.UserMoves(hertz);
        Step(2);
        signal.sldStartFreq.UserReleases();
    }
    Step(8);
    ExpectContinuous(std::size(stops));
}

TEST_F(GeneratorForm, KeepsThePhaseWhileTypedInto) {
    signal.Command1.Press();
    for (const char* text : {"2", "25", "250", "250x", "2500"}) {
        Step(2);
        signal.txtGenFreq.UserTypes(text);
    }
    signal.txtGenFreq.UserLeaves();
    Step(8);
    // At a few hertz a block holds only part of a cycle, so no sine can be fitted. No step may exceed the
    // largest one of the highest frequency.
    EXPECT_LE(LargestStep(tap.Samples()), 8191.75 * 2.0 * std::numbers::pi * 2500.0 / kRateHz + 1.0);
}

TEST_F(GeneratorForm, KeepsThePhaseWhileSweeping) {
    SetSweep(100, 1000, 2000);
    signal.Command1.Press();
    Step(45);
    EXPECT_NEAR(form.Instrument.Meter.Generator.Tones[0].Frequency, 1000.0, 0.45);
    ExpectContinuous(30);
}

TEST_F(GeneratorForm, KeepsThePhaseOverTheRestartsOfALoop) {
    SetSweep(4000, 200, 500);
    signal.chkLoop.UserSets(true);
    signal.Command1.Press();
    Step(60);
    ExpectContinuous(50);
}

TEST_F(GeneratorForm, KeepsThePhaseWhileASweepIsChanged) {
    SetSweep(300, 3000, 1000);
    signal.chkLoop.UserSets(true);
    signal.Command1.Press();
    for (const std::int32_t value : {1000, 6000, 300, 2000}) {
        Step(4);
        signal.sldEndFreq.UserMoves(value);
        Step(4);
        signal.sldEndFreq.UserReleases();
        MoveTo(signal.sldSweepTime, value);
        Step(4);
        MoveTo(signal.sldStartFreq, value / 3);
    }
    Step(8);
    ExpectContinuous(40);
}

TEST_F(GeneratorForm, ChangesTheLevelWithoutAJump) {
    MoveTo(signal.sldLevel, 0);
    MoveTo(signal.sldStartFreq, 100);
    signal.Command1.Press();
    Step(12);
    EXPECT_EQ(LargestMagnitude(tap.Samples()), 8192);
    for (const std::int32_t level : {-2000, 0, -9600, -600, -610, 0, -40, -6000}) {
        MoveTo(signal.sldLevel, level);
        card.Card().Step(700);  // a third of a cycle further, so that the changes meet all parts of it
        Step(3);
    }
    // The steepest step of the sine, plus full scale within 5 ms.
    const double sine = 8191.75 * 2.0 * std::numbers::pi * 100.0 / kRateHz;
    EXPECT_LE(LargestStep(tap.Samples()), sine + 8191.75 / (0.005 * kRateHz) + 2.0);
    tap.Forget();
    Step(2);
    EXPECT_EQ(LargestMagnitude(tap.Samples()), 8);  // -60 dB
}

TEST_F(GeneratorForm, SweepsForExactlyItsTime) {
    // Time passes here without blocks, which the watch would report as a loss.
    form.Instrument.Watch.Stop();
    SetSweep(100, 1000, 2000);
    signal.Command1.Press();
    const ToneRecord& tone = form.Instrument.Meter.Generator.Tones[0];
    loop.Advance(1999ms);
    EXPECT_TRUE(Generator::UnderWay(tone));
    EXPECT_NEAR(tone.Frequency, 1000.0 - 0.45, 1e-6);
    loop.Advance(1ms);
    EXPECT_FALSE(Generator::UnderWay(tone));
    EXPECT_NEAR(tone.Frequency, 1000.0, 1e-6);
}

// Checks the measurement of the phase itself.
std::vector<std::int16_t> Recording(double jumpRadians) {
    std::vector<std::int16_t> samples(777);
    double phase = 0.0;
    for (int block = 0; block < 12; ++block) {
        const double radians = 2.0 * std::numbers::pi * (400.0 + 30.0 * block) / kRateHz;
        if (block == 7) phase += jumpRadians;
        for (int i = 0; i < 2048; ++i) {
            phase += radians;
            samples.push_back(static_cast<std::int16_t>(std::lrint(8191.75 * std::sin(phase))));
        }
    }
    return samples;
}

TEST(PhaseMeasurement, SeesAJumpOfAHundredthOfARadian) {
    for (const double jump : {0.01, -0.01, 0.5, 3.0})
        EXPECT_NEAR(PhaseTrack(Recording(jump)).LargestJump(), std::abs(jump), kSmallestJump / 2);
}

TEST(PhaseMeasurement, SeesNoneWhereThereIsNone) {
    const PhaseTrack track(Recording(0.0));
    EXPECT_LT(track.LargestJump(), kSmallestJump / 2);
    EXPECT_EQ(track.Blocks().size(), 12U);
    EXPECT_EQ(track.Changes(), 11U);
    EXPECT_LT(track.LargestResidue(), 0.7);
}

}  // namespace
}  // namespace sonavex
