#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "core/run/RunMeasurement.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/InlineBackground.h"
#include "support/World.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t kRunRateHz = 8000;
constexpr std::size_t kRunRecord = 4096;
constexpr double kRunSecond = 2e-3;
constexpr double kRunThird = -5e-4;

// A device of 24 bits with harmonics of closed form.
DeviceUnderTestModel RunDevice() {
    DeviceUnderTestModel model;
    model.bits = 24;
    model.delayFrames = 900;
    model.polynomial = {0.0, 1.0, kRunSecond, kRunThird};
    return model;
}

double RunDb(double ratio) {
    return 20.0 * std::log10(ratio);
}

struct PolynomialTruth {
    explicit PolynomialTruth(double levelDbfs) {
        const double peak = std::pow(10.0, levelDbfs / 20.0);
        const double first = peak + 0.75 * kRunThird * std::pow(peak, 3);
        const double second = 0.5 * kRunSecond * peak * peak;
        const double third = 0.25 * std::abs(kRunThird) * std::pow(peak, 3);
        levelDb = RunDb(first);
        secondDbc = RunDb(second / first);
        thdDb = RunDb(std::hypot(second, third) / first);
    }
    double levelDb;
    double secondDbc;
    double thdDb;
};

// An instrument on the stepped card, whose playback has started.
class RunMeasurementTest : public testing::Test {
protected:
    RunMeasurementTest() {
        instrument.Shared.SampleRate = kRunRateHz;
        sound.Card().SetDeviceUnderTest(RunDevice());
        EXPECT_TRUE(instrument.Engine.CreateDevices());
        EXPECT_TRUE(instrument.Engine.SetEvents());
        instrument.Engine.ResetStream();
        instrument.StartCapture();
        Run(2500ms);
        EXPECT_EQ(instrument.Engine.PlaybackStarts, 1U);
        run.OnPoint = [this](const RunPointResult& result) {
            notified.push_back(result);
            if (onPoint) onPoint();
        };
    }

    static RunPlan Plan(std::vector<double> frequencies) {
        RunPlan plan;
        plan.frequenciesHz = std::move(frequencies);
        plan.length = kRunRecord;
        return plan;
    }
    static RunPlan LevelPlan(std::vector<double> levels) {
        RunPlan plan = Plan({997.3});
        plan.over = RunAxis::kLevel;
        plan.levelsDbfs = std::move(levels);
        return plan;
    }

    void Run(std::chrono::milliseconds time) {
        for (auto passed = 0ms; passed < time; passed += 20ms) {
            sound.Card().Step(kRunRateHz / 50);
            world.loop.Advance(20ms);
        }
    }
    // Returns the time it took.
    template <class Condition>
    std::chrono::milliseconds RunUntil(Condition condition, std::chrono::milliseconds limit = 60s) {
        auto time = 0ms;
        for (; !condition() && time < limit; time += 20ms) Run(20ms);
        EXPECT_TRUE(condition());
        return time;
    }
    std::chrono::milliseconds RunToEnd(const RunPlan& plan) {
        notified.clear();
        run.Start(plan);
        return RunUntil([&] { return !run.Active(); });
    }
    void SetDevice(const std::function<void(DeviceUnderTestModel&)>& change) {
        DeviceUnderTestModel model = RunDevice();
        change(model);
        sound.Card().SetDeviceUnderTest(model);
    }

    World world;
    SimulatedSoundSystem sound{world.loop, SimulatedSoundSystem::Pace::kStepped};
    Instrument instrument{{world.store, sound, world.loop, world.dialogs, world.errorLog, world.mixers}};
    InlineBackground background{world.loop};
    PreciseMeasurement measurement{{world.loop, instrument, background}};
    RunMeasurement run{{world.loop, instrument, measurement, background}};
    std::vector<RunPointResult> notified;
    std::function<void()> onPoint;
};

TEST_F(RunMeasurementTest, MeasuresEveryPointOverFrequency) {
    RunPlan plan = Plan({50, 300, 1000.5});
    plan.levelsDbfs = std::vector<double>{-1, -20};
    RunToEnd(plan);
    EXPECT_EQ(run.Trouble(), "");
    ASSERT_EQ(run.Results().size(), 6U);
    EXPECT_EQ(notified.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        const RunPointResult& result = run.Results()[i];
        ASSERT_TRUE(result.Valid()) << result.fault.code;
        EXPECT_EQ(result.point.requestedHz, run.Points()[i].requestedHz);
        EXPECT_EQ(result.attempts, 1);
        EXPECT_EQ(result.reading.blocks, 2U);
        EXPECT_GE(result.reading.harmonics.size(), 2U);
        EXPECT_NEAR(*result.reading.frequencyHz.value, result.point.playedHz, 1e-4);
        const PolynomialTruth truth(result.point.levelDbfs);
        EXPECT_NEAR(*result.reading.levelDbfs.value, truth.levelDb, 1e-4);
        EXPECT_NEAR(*result.gainDb.value, truth.levelDb - result.point.levelDbfs, 1e-4);
        EXPECT_EQ(result.gainDb.uncertainty, result.reading.levelDbfs.uncertainty);
        EXPECT_NEAR(*result.reading.harmonics[0].levelDbc.value, truth.secondDbc, 0.02);
    }
}

// Two records of 512 ms that do not overlap, the path of 112 ms, what was written before and settling of
// 50 ms each, and the blocks that the devices deliver.
TEST_F(RunMeasurementTest, APointTakesTwoRecordsAndThePath) {
    std::vector<std::chrono::nanoseconds> ends;
    onPoint = [&] { ends.push_back(world.loop.Now()); };
    RunToEnd(Plan({300, 500, 700, 900}));
    ASSERT_EQ(ends.size(), 4U);
    for (std::size_t i = 1; i < ends.size(); ++i) {
        EXPECT_GE(ends[i] - ends[i - 1], 1024ms + 112ms);
        EXPECT_LE(ends[i] - ends[i - 1], 1024ms * 13 / 10 + 112ms);
    }
}

TEST_F(RunMeasurementTest, PlaysSnappedFrequenciesAndStoresBoth) {
    RunPlan plan = Plan({300, 500, 1000});
    plan.snap = true;
    RunToEnd(plan);
    ASSERT_EQ(run.Results().size(), 3U);
    const double binHz = static_cast<double>(kRunRateHz) / kRunRecord;
    for (const RunPointResult& result : run.Results()) {
        const double bins = result.point.playedHz / binHz;
        EXPECT_EQ(std::fmod(bins, 2.0), 1.0);
        EXPECT_NEAR(*result.reading.frequencyHz.value, result.point.playedHz, 1e-6);
    }
    EXPECT_EQ(run.Results()[1].point.requestedHz, 500.0);
    EXPECT_EQ(run.Results()[1].point.playedHz, 257 * binHz);
}

TEST_F(RunMeasurementTest, EndsWithARampAndStopsMeasuring) {
    run.Start(Plan({300, 500}));
    RunUntil([&] { return notified.size() == 2; });
    EXPECT_EQ(run.Now(), RunMeasurement::State::kEnding);
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kEnding);
    RunUntil([&] { return !run.Active(); }, 2s);
    EXPECT_FALSE(measurement.Player.Active());
    EXPECT_FALSE(measurement.Meter.OnReading);
}

TEST_F(RunMeasurementTest, CancelKeepsWhatWasMeasured) {
    run.Start(Plan({300, 500, 700}));
    RunUntil([&] { return notified.size() == 1; });
    Run(300ms);
    run.Cancel();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kEnding);
    RunUntil([&] { return !run.Active(); }, 2s);
    EXPECT_EQ(run.Trouble(), "");
    ASSERT_EQ(run.Results().size(), 1U);
    EXPECT_TRUE(run.Results()[0].Valid());
    EXPECT_EQ(run.Points().size(), 3U);
    // It can start again.
    RunToEnd(Plan({300}));
    EXPECT_EQ(run.Results().size(), 1U);
}

TEST_F(RunMeasurementTest, CancelAtAPointIsPossible) {
    onPoint = [&] { run.Cancel(); };
    RunToEnd(Plan({300, 500, 700}));
    EXPECT_EQ(run.Results().size(), 1U);
}

TEST_F(RunMeasurementTest, RefusesWhatCannotBePlayedBeforeItSounds) {
    EXPECT_THROW(run.Start(Plan({300, 3700})), RunError);
    EXPECT_THROW(run.Start(LevelPlan({-10, 0})), StimulusError);
    RunPlan dither = Plan({300});
    dither.ditherBits = 32;
    EXPECT_THROW(run.Start(dither), StimulusError);
    EXPECT_FALSE(run.Active());
    EXPECT_FALSE(measurement.Player.Active());
    EXPECT_FALSE(measurement.Meter.OnReading);
}

// Preview and run agree where the order is 20 dB above the noise of the preview.
TEST_F(RunMeasurementTest, APreviewShowsWhatTheRunThenMeasures) {
    RunPlan plan = Plan({100, 250.5, 500, 800, 1500});
    plan.levelsDbfs = std::vector<double>{-6, -20};
    plan.preview = true;
    run.Start(plan);
    EXPECT_TRUE(run.Preview().Pending());
    const double left = run.SecondsLeft();
    RunUntil([&] { return !run.Preview().Pending(); });
    EXPECT_EQ(run.Results().size(), 0U);
    RunUntil([&] { return !run.Active(); });
    EXPECT_EQ(run.Preview().Trouble(), "");
    ASSERT_EQ(run.Results().size(), 10U);
    ASSERT_EQ(run.Preview().Points().size(), 5U);
    EXPECT_GT(left, run.Preview().Seconds() + 10 * 2 * 0.512);
    int compared = 0;
    for (std::size_t i = 0; i < 5; ++i) {
        const PreviewPoint& preview = run.Preview().Points()[i];
        const RunPointResult& result = run.Results()[i];
        ASSERT_TRUE(result.Valid());
        EXPECT_EQ(preview.hertz, result.point.requestedHz);
        EXPECT_NEAR(preview.gainDb, *result.gainDb.value, 0.1);
        for (std::size_t k = 0; k < std::min<std::size_t>(2, preview.harmonics.size()); ++k) {
            if (preview.harmonics[k].dbc < preview.harmonics[k].noiseDbc + 20) continue;
            ++compared;
            EXPECT_NEAR(preview.harmonics[k].dbc, *result.reading.harmonics[k].levelDbc.value, 0.1);
        }
    }
    EXPECT_GE(compared, 4);
}

TEST_F(RunMeasurementTest, APreviewThatOverloadsTheInputIsGivenUp) {
    SetDevice([](DeviceUnderTestModel& model) { model.gain = 1.5; });
    RunPlan plan = Plan({500});
    plan.preview = true;
    RunToEnd(plan);
    EXPECT_EQ(run.Preview().Trouble(), "The input reaches full scale.");
    EXPECT_TRUE(run.Preview().Points().empty());
    EXPECT_EQ(run.Results().size(), 1U);
}

TEST_F(RunMeasurementTest, APreviewThatIsAlwaysInterruptedIsGivenUp) {
    RunPlan plan = Plan({500});
    plan.preview = true;
    run.Start(plan);
    const auto limit = world.loop.Now() + 60s;
    while (run.Preview().Pending() && world.loop.Now() < limit) {
        Run(3000ms);
        sound.Card().Step(2 * kRunRateHz + 800);  // the queue holds 2 s
    }
    EXPECT_EQ(run.Preview().Trouble(), "The sweep was interrupted again and again.");
    RunUntil([&] { return !run.Active(); });
    EXPECT_EQ(run.Results().size(), 1U);
}

TEST_F(RunMeasurementTest, APreviewBeginsAgainAfterALossOfTheDevice) {
    RunPlan plan = Plan({500});
    plan.preview = true;
    run.Start(plan);
    Run(5000ms);
    sound.Unplug();
    RunUntil([&] { return run.Now() == RunMeasurement::State::kPaused; });
    sound.Plug();
    RunUntil([&] { return !run.Active(); });
    EXPECT_EQ(run.Preview().Points().size(), 1U);
    EXPECT_NEAR(run.Preview().Points()[0].gainDb, 0, 0.1);
    EXPECT_TRUE(run.Results()[0].Valid());
}

TEST_F(RunMeasurementTest, APreviewEndsWithARampWhenTheRunIsCancelled) {
    RunPlan plan = Plan({500});
    plan.preview = true;
    run.Start(plan);
    Run(5000ms);
    run.Cancel();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kEnding);
    RunUntil([&] { return !run.Active(); }, 2s);
    EXPECT_TRUE(run.Preview().Points().empty());
    EXPECT_FALSE(measurement.Meter.OnRecord);
}

TEST_F(RunMeasurementTest, ARunOverLevelHasNoPreview) {
    RunPlan plan = LevelPlan({-10});
    plan.preview = true;
    EXPECT_THROW(run.Start(plan), RunError);
}

// Its level falls by 0.2 dB in each record.
TEST_F(RunMeasurementTest, ADeviceThatNeverSettlesIsRepeatedOnceAndVoid) {
    RunPlan plan = Plan({500});
    plan.settling.records = 3;
    run.Start(plan);
    double gain = 1.0;
    RunUntil([&] {
        gain *= 0.999;
        SetDevice([&](DeviceUnderTestModel& model) {
            model.gain = gain;
            model.delayFrames = 0;
        });
        return !run.Active();
    });
    ASSERT_EQ(run.Results().size(), 1U);
    const RunPointResult& result = run.Results()[0];
    EXPECT_FALSE(result.Valid());
    EXPECT_EQ(result.attempts, 2);
    EXPECT_EQ(result.fault.code, "not settled");
    EXPECT_FALSE(result.reading.thdDb.value);
    EXPECT_FALSE(result.reading.levelDbfs.value);
    EXPECT_FALSE(result.gainDb.value);
}

TEST_F(RunMeasurementTest, AnOverloadedPointIsVoidAndTheNextOneIsNot) {
    SetDevice([](DeviceUnderTestModel& model) { model.gain = 1.5; });
    RunToEnd(LevelPlan({-1, -20}));
    ASSERT_EQ(run.Results().size(), 2U);
    EXPECT_EQ(run.Results()[0].fault.code, "overload");
    EXPECT_NE(run.Results()[0].fault.sentence, "");
    EXPECT_EQ(run.Results()[0].attempts, 2);
    EXPECT_TRUE(run.Results()[1].Valid());
    EXPECT_EQ(run.Results()[1].attempts, 1);
}

TEST_F(RunMeasurementTest, LostFramesRepeatAPoint) {
    run.Start(Plan({500.3, 700.3}));
    RunUntil([&] { return run.Records() == 1; });
    // The queue holds 2 s.
    sound.Card().Step(2 * kRunRateHz + 800);
    RunUntil([&] { return !run.Active(); });
    ASSERT_EQ(run.Results().size(), 2U);
    EXPECT_TRUE(run.Results()[0].Valid());
    EXPECT_EQ(run.Results()[0].attempts, 2);
    EXPECT_FALSE(run.Results()[0].afterLoss);
    EXPECT_EQ(run.Results()[1].attempts, 1);
}

TEST_F(RunMeasurementTest, PausesWhileTheDeviceIsLostAndMarksTheLaterPoints) {
    run.Start(Plan({500.3, 700.3, 900.3}));
    RunUntil([&] { return notified.size() == 1 && run.Records() == 1; });
    sound.Unplug();
    RunUntil([&] { return run.Now() == RunMeasurement::State::kPaused; }, 5s);
    Run(60s);
    EXPECT_EQ(run.Now(), RunMeasurement::State::kPaused);
    EXPECT_EQ(notified.size(), 1U);
    sound.Plug();
    RunUntil([&] { return !run.Active(); });
    EXPECT_EQ(run.Trouble(), "");
    ASSERT_EQ(run.Results().size(), 3U);
    for (const RunPointResult& result : run.Results()) EXPECT_TRUE(result.Valid()) << result.fault.code;
    EXPECT_FALSE(run.Results()[0].afterLoss);
    EXPECT_TRUE(run.Results()[1].afterLoss);
    EXPECT_TRUE(run.Results()[2].afterLoss);
}

TEST_F(RunMeasurementTest, APausedRunCanBeEnded) {
    run.Start(Plan({500.3, 700.3}));
    RunUntil([&] { return notified.size() == 1; });
    sound.Unplug();
    RunUntil([&] { return run.Now() == RunMeasurement::State::kPaused; }, 5s);
    run.Cancel();
    RunUntil([&] { return !run.Active(); }, 2s);
    EXPECT_EQ(run.Results().size(), 1U);
}

TEST_F(RunMeasurementTest, AStimulusThatOthersStopEndsTheRun) {
    run.Start(Plan({500.3, 700.3}));
    RunUntil([&] { return notified.size() == 1; });
    measurement.Player.StopAtOnce();
    RunUntil([&] { return !run.Active(); }, 2s);
    EXPECT_EQ(run.Trouble(), "The stimulus was stopped.");
    EXPECT_EQ(run.Results().size(), 1U);
}

TEST_F(RunMeasurementTest, EstimatesTheTimeThatIsLeft) {
    const RunPlan plan = Plan({300, 500, 700, 900});
    EXPECT_NEAR(EstimatedSeconds(plan, 4, kRunRateHz), 4 * 1.4, 0.2);
    run.Start(plan);
    EXPECT_NEAR(run.SecondsLeft(), 4 * 1.4, 0.2);
    RunUntil([&] { return notified.size() == 3; });
    EXPECT_NEAR(run.SecondsLeft(), 1.4, 0.3);
}

// The second point is void at first.
TEST_F(RunMeasurementTest, ContinuesWithVoidAndMissingPoints) {
    const RunPlan plan = LevelPlan({-20, -1, -10, -15});
    SetDevice([](DeviceUnderTestModel& model) { model.gain = 1.5; });
    onPoint = [&] {
        if (notified.size() == 3) run.Cancel();
    };
    RunToEnd(plan);
    onPoint = {};
    ASSERT_EQ(run.Results().size(), 3U);
    ASSERT_FALSE(run.Results()[1].Valid());
    const double first = *run.Results()[0].reading.levelDbfs.value;

    SetDevice([](DeviceUnderTestModel&) {});
    notified.clear();
    run.Continue({{plan, {}}, run.Points(), run.Results(), {kRunRateHz, 4, {}}, "", 0});
    EXPECT_EQ(run.Current(), 1U);
    EXPECT_EQ(run.PointsLeft(), 2U);
    EXPECT_EQ(run.Results().size(), 3U);
    RunUntil([&] { return !run.Active(); });
    ASSERT_EQ(notified.size(), 2U);
    EXPECT_EQ(notified[0].point.levelDbfs, -1);
    EXPECT_EQ(notified[1].point.levelDbfs, -15);
    ASSERT_EQ(run.Results().size(), 4U);
    EXPECT_EQ(run.Current(), 4U);
    EXPECT_EQ(*run.Results()[0].reading.levelDbfs.value, first);
    for (const RunPointResult& result : run.Results()) {
        EXPECT_TRUE(result.Valid()) << result.fault.code;
        EXPECT_FALSE(result.afterLoss);
    }
    run.Continue({{plan, {}}, run.Points(), run.Results(), {kRunRateHz, 4, {}}, "", 0});
    EXPECT_FALSE(run.Active());
}

TEST_F(RunMeasurementTest, MarksThePointsThatContinueAnotherProgramsRun) {
    const RunPlan plan = Plan({300, 500});
    RunPointResult measured;
    measured.point = PointsOf(plan, kRunRateHz)[0];
    run.Continue({{plan, {}}, {}, {measured}, {kRunRateHz, 2, {}}, "", 0});
    RunUntil([&] { return !run.Active(); });
    ASSERT_EQ(run.Results().size(), 2U);
    EXPECT_FALSE(run.Results()[0].afterLoss);
    EXPECT_TRUE(run.Results()[1].afterLoss);
}

TEST_F(RunMeasurementTest, RefusesToContinueAnotherRun) {
    const RunPlan plan = Plan({300, 500});
    RunPointResult other;
    other.point = PointsOf(Plan({400}), kRunRateHz)[0];
    EXPECT_THROW(run.Continue({{plan, {}}, {}, {other}, {kRunRateHz, 2, {}}, "", 0}), RunError);
    EXPECT_THROW(run.Continue({{plan, {}}, {}, {}, {48000, 2, {}}, "", 0}), RunError);
    EXPECT_FALSE(run.Active());
}

// The card delays by whole frames, and a curve turns no phase.
TEST_F(RunMeasurementTest, ThePhaseOfACurveIsZeroAndTheDelayAWholeNumberOfFrames) {
    RunToEnd(Plan({50, 110, 240, 530, 1000.5, 2100.7, 3300.3}));
    ASSERT_EQ(run.Results().size(), 7U);
    for (const RunPointResult& result : run.Results()) {
        ASSERT_TRUE(result.phaseDegrees.value);
        EXPECT_NEAR(*result.phaseDegrees.value, 0.0, 0.005) << result.point.playedHz;
        EXPECT_GT(*result.phaseDegrees.uncertainty, 0.0);
        EXPECT_LT(*result.phaseDegrees.uncertainty, 0.01);
        const double frames = *result.delaySeconds * kRunRateHz;
        EXPECT_NEAR(frames, std::round(frames), 1e-4);
        EXPECT_GE(frames, 900.0);
        EXPECT_LE(frames, 900.0 + 0.3 * kRunRateHz);
    }
}

TEST_F(RunMeasurementTest, AnInversionTurnsEveryPhase) {
    SetDevice([](DeviceUnderTestModel& model) { model.gain = -0.5; });
    RunToEnd(Plan({110, 240, 530, 1000.5, 2100.7}));
    for (const RunPointResult& result : run.Results())
        EXPECT_NEAR(std::abs(result.phaseDegrees.value.value()), 180.0, 0.01);
}

TEST_F(RunMeasurementTest, ThePhasesBelongToTheSameDelayAtEveryPoint) {
    std::vector<double> refined;
    onPoint = [&] {
        refined.push_back(*run.Results().back().delaySeconds);
        for (const RunPointResult& result : run.Results()) EXPECT_EQ(*result.delaySeconds, refined.back());
    };
    RunToEnd(Plan({110, 530, 2100.7}));
    EXPECT_EQ(refined.size(), 3U);
}

TEST_F(RunMeasurementTest, PointsOnDifferentClocksHaveNoPhase) {
    SetDevice([](DeviceUnderTestModel& model) { model.clockOffsetPpm = 20; });
    RunToEnd(Plan({500.3, 700.3}));
    ASSERT_EQ(run.Results().size(), 2U);
    for (const RunPointResult& result : run.Results()) {
        EXPECT_TRUE(result.Valid());
        EXPECT_FALSE(result.phaseDegrees.value);
        EXPECT_NEAR(result.delaySeconds.value(), 0.2, 0.1);
    }
}

// The queue runs empty while the loop is blocked, so that a part of the stimulus is missing.
TEST_F(RunMeasurementTest, AGapInTheStimulusMeasuresThePathAgain) {
    run.Start(Plan({240.3, 500.3, 1200.3, 3000.3}));
    RunUntil([&] { return notified.size() == 1 && run.Records() == 1; });
    const double before = *run.Results()[0].delaySeconds;
    const std::uint64_t missing = instrument.Engine.FineFramesMissing();
    sound.Card().Step(3 * kRunRateHz);
    RunUntil([&] { return !run.Active(); });
    ASSERT_GT(instrument.Engine.FineFramesMissing(), missing);
    ASSERT_EQ(run.Results().size(), 4U);
    EXPECT_EQ(*run.Results()[0].delaySeconds, before);
    for (std::size_t i = 1; i < 4; ++i) {
        ASSERT_TRUE(run.Results()[i].Valid());
        EXPECT_NEAR(run.Results()[i].phaseDegrees.value.value(), 0.0, 0.01);
        EXPECT_EQ(*run.Results()[i].delaySeconds, *run.Results()[3].delaySeconds);
    }
}

// THD within its uncertainty of 95 % at 95 +-3 % of the points, and within 0.01 dB.
TEST_F(RunMeasurementTest, ThdAgreesWithTheClosedFormWithinItsUncertainty) {
    RunPlan plan;
    plan.frequenciesHz = RunRange{40, 1000, RunRange::Spacing::kLogarithmicPoints, 20};
    plan.length = kRunRecord;
    const PolynomialTruth truth(-1);
    int within = 0;
    int points = 0;
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        SetDevice([seed](DeviceUnderTestModel& model) {
            model.noiseRms = 0.05;
            model.noiseSeed = seed;
        });
        RunToEnd(plan);
        for (const RunPointResult& result : run.Results()) {
            ASSERT_TRUE(result.Valid()) << result.fault.code;
            const Value& thd = result.reading.thdDb;
            const double error = std::abs(*thd.value - truth.thdDb);
            EXPECT_LT(error, 0.01);
            if (error <= *thd.uncertainty) ++within;
            ++points;
        }
    }
    EXPECT_EQ(points, 400);
    EXPECT_GE(within, 0.92 * points);
    EXPECT_LE(within, 0.98 * points);
}

}  // namespace
}  // namespace sonavex
