#include <gtest/gtest.h>

#include "core/audio/Instrument.h"
#include "core/precise/PreciseMeasurement.h"
#include "core/stimulus/ParseStimulus.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/InlineBackground.h"
#include "support/World.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t kMeasuredRateHz = 8000;
constexpr std::size_t kMeasuredRecord = 8192;

// An instrument on the stepped card, whose playback has started.
class PreciseMeasurementTest : public testing::Test {
protected:
    PreciseMeasurementTest() {
        instrument.Shared.SampleRate = kMeasuredRateHz;
        DeviceUnderTestModel model;
        model.bits = 24;
        model.delayFrames = 900;
        sound.Card().SetDeviceUnderTest(model);
        EXPECT_TRUE(instrument.Engine.CreateDevices());
        EXPECT_TRUE(instrument.Engine.SetEvents());
        instrument.Engine.ResetStream();
        instrument.Engine.StartCapture();
        Run(2500ms);
        EXPECT_EQ(instrument.Engine.PlaybackStarts, 1U);
        measurement.Meter.OnReading = [this](const LinesReading& reading) { readings.push_back(reading); };
    }

    void Start(std::string_view text, PreciseMode mode = PreciseMode::kTone, double levelDbfs = -1.0) {
        PreciseSettings settings;
        settings.rateHz = kMeasuredRateHz;
        settings.mode = mode;
        StimulusChoice choice;
        choice.stimulus = ParseStimulus(text);
        choice.recordLength = kMeasuredRecord;
        choice.levelDbfs = levelDbfs;
        measurement.Start(settings, choice);
    }
    void Run(std::chrono::milliseconds time) {
        for (auto passed = 0ms; passed < time; passed += 20ms) {
            sound.Card().Step(kMeasuredRateHz / 50);
            world.loop.Advance(20ms);
        }
    }
    // Runs until there is a reading and returns the time it took.
    std::chrono::milliseconds RunToReading() {
        readings.clear();
        auto time = 0ms;
        for (; readings.empty() && time < 10s; time += 20ms) Run(20ms);
        return time;
    }

    World world;
    SimulatedSoundSystem sound{world.loop, SimulatedSoundSystem::Pace::kStepped};
    Instrument instrument{{world.store, sound, world.loop, world.dialogs, world.errorLog, world.mixers}};
    InlineBackground background{world.loop};
    PreciseMeasurement measurement{{world.loop, instrument, background}};
    std::vector<LinesReading> readings;
};

TEST_F(PreciseMeasurementTest, OtherSettingsDuringTheBurstDoNotHoldTheStimulusBack) {
    Start("sine:997.3");
    world.loop.DeliverSignals();
    ASSERT_EQ(measurement.Player.Now(), StimulusPlayer::State::kFirstSignal);
    PreciseSettings settings;
    settings.rateHz = kMeasuredRateHz;
    settings.averages = 4;
    measurement.Start(settings, std::nullopt);
    RunToReading();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kPlaying);
    ASSERT_FALSE(readings.empty());
    EXPECT_TRUE(readings[0].reading.Valid());
}

TEST_F(PreciseMeasurementTest, MeasuresTheDelayBeforeTheFirstStimulusOnly) {
    Start("sine:997.3");
    world.loop.DeliverSignals();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kFirstSignal);
    EXPECT_EQ(measurement.Meter.State(), PreciseState::kSettling);
    const auto first = RunToReading();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kPlaying);
    EXPECT_TRUE(measurement.Meter.DelayKnown());
    ASSERT_FALSE(readings.empty());
    ASSERT_TRUE(readings[0].reading.Valid());
    EXPECT_NEAR(*readings[0].reading.frequencyHz.value, 997.3, 1e-6);

    Start("sine:1500.7");
    const auto second = RunToReading();
    ASSERT_TRUE(readings[0].reading.Valid());
    EXPECT_NEAR(*readings[0].reading.frequencyHz.value, 1500.7, 1e-6);
    // The path (112 ms), what was written before (50 ms), settling (50 ms), the record (1024 ms).
    EXPECT_GE(second, 1230ms);
    EXPECT_LE(second, 1300ms);
    EXPECT_GT(first, second);
}

TEST_F(PreciseMeasurementTest, StopEndsTheStimulusWithARampAndTheCapture) {
    Start("sine:997.3");
    RunToReading();
    measurement.Stop();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kEnding);
    Run(300ms);
    EXPECT_FALSE(measurement.Player.Active());
    readings.clear();
    Run(3s);
    EXPECT_TRUE(readings.empty());
    // Playback still runs: the delay is known.
    Start("sine:1500.7");
    world.loop.DeliverSignals();
    EXPECT_EQ(measurement.Player.Now(), StimulusPlayer::State::kPlaying);
}

// The input has a strong tone at twice the frequency that is played, and nothing where it is played.
TEST_F(PreciseMeasurementTest, ATonePlayedByOthersIsNoFundamental) {
    DeviceUnderTestModel squaring;
    squaring.bits = 24;
    squaring.polynomial = {0.0, 0.0, 1.0};
    squaring.noiseRms = 1.0;
    sound.Card().SetDeviceUnderTest(squaring);
    Start("sine:997.3");
    RunToReading();
    ASSERT_FALSE(readings.empty());
    ASSERT_FALSE(readings[0].reading.Valid());
    EXPECT_EQ(readings[0].reading.voids[0].code, VoidCode::kNoTone);
}

TEST_F(PreciseMeasurementTest, ThePlayedTonesAreThoseOfThePair) {
    Start("pair:300,3000,4", PreciseMode::kPair);
    RunToReading();
    ASSERT_FALSE(readings.empty());
    EXPECT_TRUE(readings[0].reading.Valid());
    ASSERT_EQ(readings[0].tones.size(), 2U);
    EXPECT_NEAR(*readings[0].tones[0].frequencyHz.value, 300.0, 1e-4);
    EXPECT_NEAR(*readings[0].tones[1].frequencyHz.value, 3000.0, 1e-4);
    EXPECT_LT(*readings[0].intermodulation.modDb.value, -100.0);
}

// The device squares: products 10 Hz beside both tones are much stronger than the tones.
TEST_F(PreciseMeasurementTest, AStrongerLineBesideAPlayedToneIsNotThatTone) {
    DeviceUnderTestModel squaring;
    squaring.bits = 24;
    squaring.polynomial = {0.0, 0.01, 1.0};
    sound.Card().SetDeviceUnderTest(squaring);
    Start("pair:1000,2010", PreciseMode::kPair);
    RunToReading();
    ASSERT_FALSE(readings.empty());
    ASSERT_EQ(readings[0].tones.size(), 2U);
    EXPECT_NEAR(*readings[0].tones[0].frequencyHz.value, 1000.0, 1e-3);
    EXPECT_NEAR(*readings[0].tones[1].frequencyHz.value, 2010.0, 1e-3);
}

TEST_F(PreciseMeasurementTest, MeasuresMultitonesAndNoise) {
    Start("multitone:300@0,700@-6,1500@0", PreciseMode::kMultitone);
    RunToReading();
    ASSERT_FALSE(readings.empty());
    EXPECT_TRUE(readings[0].reading.Valid());
    EXPECT_EQ(readings[0].tones.size(), 3U);
    EXPECT_LT(*readings[0].tdnDb.value, -110.0);
    Start("white", PreciseMode::kNoise, -12.0);
    RunToReading();
    EXPECT_TRUE(readings[0].reading.Valid());
    EXPECT_NEAR(*readings[0].reading.levelDbfs.value, -12.0, 0.2);
}

TEST_F(PreciseMeasurementTest, ARestartOfTheEngineSettlesAgain) {
    Start("sine:997.3");
    RunToReading();
    ASSERT_TRUE(instrument.Engine.ReStart());
    EXPECT_FALSE(measurement.Meter.DelayKnown());
    Run(100ms);
    EXPECT_NE(measurement.Meter.State(), PreciseState::kValid);
    Run(6s);
    EXPECT_EQ(measurement.Meter.State(), PreciseState::kValid);
}

}  // namespace
}  // namespace sonavex
