#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "platform/simulated/MixerPath.h"
#include "platform/simulated/SimulatedMixer.h"
#include "unit/platform/simulated/SimulatedRig.h"

namespace sonavex {
namespace {

constexpr std::int32_t kMixerRateHz = 48000;
constexpr std::size_t kFrames = 4096;

// Sends a sine through the stepped card with its mixer and measures the captured levels.
class MixerLoop : public SimulatedRig {
public:
    MixerLoop() : SimulatedRig(SimulatedSoundSystem::Pace::kStepped) { Open(kMixerRateHz); }

    // Captured peak of each channel for a sine with a peak of 4000, after settling.
    std::array<int, 2> Peaks(double frequencyHz) {
        std::vector<std::int16_t> played(32768);
        for (std::size_t i = 0; i < played.size(); ++i)
            played[i] = static_cast<std::int16_t>(
                std::lround(4000.0 * std::sin(2.0 * std::numbers::pi * frequencyHz *
                                              static_cast<double>(i / 2) / kMixerRateHz)));
        playback->WriteBuffer(0, played);
        playback->SetCurrentPosition(0);
        Start();
        system.Card().Step(8192 + kFrames);
        std::vector<std::int16_t> captured(2 * kFrames);
        capture->ReadBuffer(0, captured);
        capture->Stop();
        playback->Stop();
        std::array<int, 2> peaks{};
        for (std::size_t i = 0; i < captured.size(); ++i)
            peaks[i % 2] = std::max(peaks[i % 2], std::abs(int{captured[i]}));
        return peaks;
    }
    double GainDb(double frequencyHz) { return 20.0 * std::log10(Peaks(frequencyHz)[0] / 4000.0); }
    void Set(MixerFunction function, const std::vector<std::int32_t>& values) {
        mixer.SetValues(function, values);
    }

    SimulatedMixer mixer{system, loop};
};

constexpr double kToneHz = 1125.0;  // whole periods in the buffer

TEST(SimulatedMixer, PassesSamplesUnchangedAtFirst) {
    MixerPath path;
    MixerLoop untouched;
    EXPECT_EQ(untouched.Peaks(kToneHz), (std::array{4000, 4000}));
    std::vector<std::int32_t> samples{1, -1, 32767, -32768, 12345, 0, 0x7FFFFFFF, -0x7FFFFFFF - 1};
    const std::vector<std::int32_t> before = samples;
    path.ProcessOutput(samples, 16);
    path.ProcessInput(samples, 16);
    EXPECT_EQ(samples, before);
}

struct Effect {
    const char* name;
    MixerFunction function;
    std::vector<std::int32_t> values;
    int left;
    int right;
};
class Effects : public testing::TestWithParam<Effect> {};
INSTANTIATE_TEST_SUITE_P(
    Controls, Effects,
    testing::Values(Effect{"master", MixerFunction::kMasterVolume, {32768, 16384}, 2000, 1000},
                    Effect{"master mute", MixerFunction::kMasterMute, {1}, 0, 0},
                    Effect{"wave", MixerFunction::kWaveVolume, {0, 65535}, 0, 4000},
                    Effect{"wave mute", MixerFunction::kWaveMute, {1}, 0, 0},
                    Effect{"line record", MixerFunction::kLineRecord, {6554, 65535}, 400, 4000},
                    Effect{"mic record, not selected", MixerFunction::kMicRecord, {0, 0}, 4000, 4000},
                    Effect{"boost, not selected", MixerFunction::kMicBoost, {1}, 4000, 4000},
                    Effect{"microphone", MixerFunction::kMicSource, {1}, 4000, 4000},
                    Effect{"line volume, muted", MixerFunction::kLineVolume, {65535, 65535}, 4000, 4000}));

TEST_P(Effects, AreHeardInTheLoop) {
    MixerLoop loop;
    loop.Set(GetParam().function, GetParam().values);
    const auto peaks = loop.Peaks(kToneHz);
    EXPECT_NEAR(peaks[0], GetParam().left, 2) << GetParam().name;
    EXPECT_NEAR(peaks[1], GetParam().right, 2) << GetParam().name;
}

TEST(SimulatedMixer, BoostsTheMicrophoneTenfold) {
    MixerLoop loop;
    loop.Set(MixerFunction::kMicSource, {1});
    loop.Set(MixerFunction::kMicRecord, {6554, 3277});
    loop.Set(MixerFunction::kMicBoost, {1});
    const auto peaks = loop.Peaks(kToneHz);
    EXPECT_NEAR(peaks[0], 4000, 6);
    EXPECT_NEAR(peaks[1], 2000, 6);
}

TEST(SimulatedMixer, SelectsOneSource) {
    MixerLoop loop;
    loop.Set(MixerFunction::kMicSource, {1});
    EXPECT_THAT(loop.mixer.Values(MixerFunction::kLineSource), testing::ElementsAre(0));
    loop.Set(MixerFunction::kMicSource, {0});
    EXPECT_THAT(loop.mixer.Values(MixerFunction::kMicSource), testing::ElementsAre(1));
}

// The return path delays by one device period of 256 frames, so the loop adds an endless echo.
TEST(SimulatedMixer, MonitoringAndPlayThroughAreHeard) {
    for (const MixerFunction path :
         {MixerFunction::kMonitorOff, MixerFunction::kLineMute, MixerFunction::kMicMute}) {
        MixerLoop loop;
        loop.Set(MixerFunction::kLineVolume, {65535, 65535});
        loop.Set(MixerFunction::kMicVolume, {65535, 65535});
        loop.Set(path, {0});
        // 187.5 Hz has a period of 256 frames, so all returns add in phase: 1 / (1 - 1/4).
        EXPECT_NEAR(loop.GainDb(187.5), 20.0 * std::log10(4.0 / 3.0), 0.1) << static_cast<int>(path);
    }
}

struct Tone {
    MixerFunction function;
    double actsAtHz;
    double leavesHz;
};
class TonesOfTheCard : public testing::TestWithParam<Tone> {};
INSTANTIATE_TEST_SUITE_P(Controls, TonesOfTheCard,
                         testing::Values(Tone{MixerFunction::kBass, 46.875, 9000.0},
                                         Tone{MixerFunction::kMidRange, 984.375, 15000.0},
                                         Tone{MixerFunction::kTreble, 15000.0, 187.5}));

TEST_P(TonesOfTheCard, ActOnTheirPartOfTheBand) {
    for (const int gainDb : {-12, -6, 6, 12}) {
        MixerLoop loop;
        loop.Set(GetParam().function, {gainDb});
        EXPECT_NEAR(loop.GainDb(GetParam().actsAtHz), gainDb, 0.5);
        EXPECT_NEAR(loop.GainDb(GetParam().leavesHz), 0.0, 0.5);
        loop.Set(GetParam().function, {0});
        EXPECT_EQ(loop.Peaks(kToneHz), (std::array{4000, 4000})) << "bit-exact again";
    }
}

TEST(SimulatedMixer, ReportsChangesThroughTheEventLoop) {
    MixerLoop loop;
    int changes = 0;
    loop.mixer.OnChange([&] { ++changes; });
    loop.loop.Yield();
    changes = 0;
    loop.Set(MixerFunction::kBass, {3});
    EXPECT_EQ(changes, 0);
    loop.loop.Yield();
    EXPECT_EQ(changes, 1);
}

TEST(SimulatedMixer, LimitsRawValues) {
    MixerLoop loop;
    loop.Set(MixerFunction::kMasterVolume, {-5, 70000});
    EXPECT_THAT(loop.mixer.Values(MixerFunction::kMasterVolume), testing::ElementsAre(0, 65535));
}

}  // namespace
}  // namespace sonavex
