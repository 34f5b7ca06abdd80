#include <cmath>

#include "support/PanelRig.h"
#include "support/SweepBench.h"

namespace sonavex {
namespace {

struct Span {
    double startHz;
    double endHz;
};

class ShortSweep : public SweepBench, public testing::WithParamInterface<Span> {
protected:
    // The last tick left the tone within one step of its end.
    void ExpectWithinOneStep(const ToneRecord& tone) const {
        const double step = std::abs(tone.LoopIncrement);
        EXPECT_GE(tone.Frequency, std::min(tone.StartFrequency, tone.EndFrequency) - step);
        EXPECT_LE(tone.Frequency, std::max(tone.StartFrequency, tone.EndFrequency) + step);
        EXPECT_GT(tone.Frequency, 0.0);
    }
};

INSTANTIATE_TEST_SUITE_P(Spans, ShortSweep,
                         testing::Values(Span{22050, 20}, Span{20, 22050}, Span{24000, 20}, Span{20, 24000},
                                         Span{1000, 20}, Span{100, 1000}, Span{1000, 999}, Span{1, 2000},
                                         Span{2000, 1}));

TEST_P(ShortSweep, EndsAtItsEndAfterAsManyTicksAsMilliseconds) {
    for (std::int32_t timeMs = 1; timeMs <= 50; ++timeMs) {
        generator.NumTones = 0;
        const ToneRecord& tone = Sweep(GetParam().startHz, GetParam().endHz, timeMs);
        const double tolerance = 1e-9 * std::abs(tone.EndFrequency - tone.StartFrequency);
        for (std::int32_t tick = 1; tick < timeMs; ++tick) {
            Tick();
            ExpectWithinOneStep(tone);
            EXPECT_TRUE(Generator::UnderWay(tone)) << timeMs << " ms, tick " << tick;
        }
        Tick();
        EXPECT_NEAR(tone.Frequency, tone.EndFrequency, tolerance) << timeMs << " ms";
        EXPECT_FALSE(Generator::UnderWay(tone)) << timeMs << " ms";
        Tick(3);
        EXPECT_NEAR(tone.Frequency, tone.EndFrequency, tolerance) << timeMs << " ms";
    }
}

TEST_P(ShortSweep, LoopsAfterOneTickMore) {
    for (std::int32_t timeMs = 1; timeMs <= 50; ++timeMs) {
        generator.NumTones = 0;
        ToneRecord& tone = Sweep(GetParam().startHz, GetParam().endHz, timeMs);
        tone.Loop = true;
        for (int cycle = 0; cycle < 3; ++cycle) {
            Tick(timeMs);
            EXPECT_NEAR(tone.Frequency, tone.EndFrequency,
                        1e-9 * std::abs(tone.EndFrequency - tone.StartFrequency));
            Tick();
            EXPECT_EQ(tone.Frequency, tone.StartFrequency) << timeMs << " ms";
        }
    }
}

// The end is moved while the old step still applies.
TEST_P(ShortSweep, NeverStepsToZeroOrBelow) {
    for (const double step : {-1.0, -2.0, -7.5, -5000.0, -1e6}) {
        generator.NumTones = 0;
        ToneRecord& tone = Sweep(GetParam().startHz, 1.0, 100);
        tone.LoopIncrement = step;
        for (int tick = 0; tick < 25000 && Generator::UnderWay(tone); ++tick) {
            Tick();
            ASSERT_GT(tone.Frequency, 0.0) << "step " << step;
        }
        EXPECT_EQ(tone.Frequency, 1.0) << "step " << step;
    }
}

// A whole second in whole blocks through the form: no error for a frequency of 0.
class ShortSweepOnTheForm : public PanelRig {};

TEST_F(ShortSweepOnTheForm, PlaysEveryTimeInBothDirections) {
    Init();
    for (std::int32_t timeMs = 1; timeMs <= 50; ++timeMs) {
        for (const bool down : {true, false}) {
            SetSweep(down ? 22050 : 20, down ? 20 : 22050, timeMs);
            signal.chkLoop.UserSets(timeMs % 2 == 0);
            signal.Command1.Press();
            for (int ms = 0; ms < 60; ++ms) {
                loop.Advance(std::chrono::milliseconds(1));
                ASSERT_GE(Tone().Frequency, 20.0 - 1e-4) << timeMs << " ms";
                ASSERT_LE(Tone().Frequency, 22050.0 + 1e-4) << timeMs << " ms";
                if (ms % 20 == 0) {
                    ASSERT_NO_THROW(bench.Fill());
                }
            }
            signal.Command1.Press();
        }
    }
}

TEST_F(ShortSweepOnTheForm, ReachesAnEndThatOnlyExtendedRatesHave) {
    bench.shared.SampleRate = 192000;
    Init();
    // As the form does when the rate changes.
    for (Slider* const slider : {&signal.sldStartFreq, &signal.sldEndFreq}) slider->SetRange(20, 96000);
    SetSweep(20, 48000, 50);
    signal.Command1.Press();
    loop.Advance(std::chrono::milliseconds(50));
    EXPECT_NEAR(Tone().Frequency, 48000.0, 1e-3);
    bench.Fill();
    // A quarter of the rate: every sample is the opposite of the last but one.
    const std::vector<double> samples = bench.Fill();
    for (std::size_t i = 2; i < samples.size(); ++i) ASSERT_NEAR(samples[i], -samples[i - 2], 1.0) << i;
    EXPECT_GT(std::hypot(samples[0], samples[1]), 4000.0);
}

}  // namespace
}  // namespace sonavex
