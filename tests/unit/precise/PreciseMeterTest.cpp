#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "core/precise/PathBurst.h"
#include "core/precise/PreciseMeter.h"
#include "support/EngineBench.h"
#include "unit/precise/HeldBackground.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kRecord = 8192;  // at 8000 Hz
constexpr double kRateHz = 8000.0;
constexpr std::size_t kTick = 1024;

auto LimitedBy16Bits() {
    return testing::Field(&Warning::code, WarningCode::kLimitedBy16Bit);
}

// On fakes: the test delivers captured frames.
class PreciseMeterTest : public testing::Test {
protected:
    PreciseMeterTest() {
        bench.shared.SampleRate = 8000;
        bench.Start();
        bench.sound.inputBits = 24;
        bench.engine.SilentBlocks = 100;
        meter.OnReading = [this](const LinesReading& values) { readings.push_back(values.reading); };
        meter.OnBurstEnded = [this] { ++burstsEnded; };
    }

    void StartMeter(std::size_t averages = 1) {
        PreciseSettings settings;
        settings.rateHz = kRateHz;
        settings.averages = averages;
        meter.Start(settings);
    }

    // Captures a second harmonic of -40 dB.
    void Capture(std::size_t frames, double amplitude = 0.5) {
        std::vector<std::int32_t> samples;
        for (std::size_t i = 0; i < frames; ++i) {
            const double turns = 0.0832 * static_cast<double>(captured + i);
            const double sample = amplitude * (std::sin(2.0 * std::numbers::pi * turns) +
                                               0.01 * std::sin(4.0 * std::numbers::pi * turns));
            const double codes = std::clamp(sample * 8388608.0, -8388608.0, 8388607.0);
            const auto word = static_cast<std::int32_t>(std::lround(codes) * 256) & wordMask;
            samples.insert(samples.end(), {word, 0});
        }
        Deliver(std::move(samples));
    }
    void Deliver(std::vector<std::int32_t> samples) {
        bench.sound.fineFirstFrame = captured;
        captured += samples.size() / 2;
        bench.sound.statistics.framesCaptured = captured;
        bench.sound.fineCaptured = std::move(samples);
        bench.loop.Advance(40ms);
        if (completing) background.Complete();
    }
    // In blocks of kTick frames or more, as far as the frame.
    void CaptureUpTo(std::uint64_t frame) {
        while (captured < frame) Capture(std::min<std::uint64_t>(kTick, frame - captured));
    }
    void Lose(std::uint64_t frames) { captured += frames; }

    EngineBench bench;
    FineStream fine{bench.loop, bench.engine};
    HeldBackground background;
    UsedBits usedBits{bench.loop, bench.engine, fine};
    PreciseMeter meter{{bench.engine, fine, usedBits, background}};
    std::vector<Reading> readings;
    std::uint64_t captured = 0;
    bool completing = true;
    std::int32_t wordMask = -1;
    int burstsEnded = 0;
};

TEST_F(PreciseMeterTest, ReportsAReadingForEachQuarterOfARecord) {
    StartMeter();
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    EXPECT_EQ(meter.Length(), kRecord);
    CaptureUpTo(kRecord - 1);
    EXPECT_EQ(meter.Collected(), kRecord - 1);
    EXPECT_TRUE(readings.empty());
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    CaptureUpTo(kRecord);
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_EQ(meter.State(), PreciseState::kValid);
    EXPECT_NEAR(*readings[0].frequencyHz.value, 0.0832 * kRateHz, 1e-6);
    EXPECT_NEAR(*readings[0].thdDb.value, -40.0, 1e-3);
    EXPECT_EQ(readings[0].bits, 24);
    CaptureUpTo(kRecord + kRecord / 2);
    EXPECT_EQ(readings.size(), 3U);
    EXPECT_EQ(readings[2].blocks, 1U);
    EXPECT_EQ(meter.Residual().size(), kRecord);
}

TEST_F(PreciseMeterTest, Averages) {
    StartMeter(4);
    CaptureUpTo(3 * kRecord);
    EXPECT_EQ(readings.back().blocks, 4U);
    meter.StimulusChanged();
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    const std::size_t before = readings.size();
    CaptureUpTo(captured + 2 * kRecord);
    ASSERT_GT(readings.size(), before);
    EXPECT_EQ(readings[before].blocks, 1U);
}

TEST_F(PreciseMeterTest, ALossMakesTheReadingsVoidUntilTheNextRecord) {
    StartMeter(4);
    CaptureUpTo(2 * kRecord);
    readings.clear();
    Lose(512);
    Capture(100);
    ASSERT_EQ(readings.size(), 1U);
    ASSERT_EQ(readings[0].voids.size(), 1U);
    EXPECT_EQ(readings[0].voids[0].code, VoidCode::kDisturbed);
    EXPECT_EQ(readings[0].voids[0].sentence, "512 frames lost");
    EXPECT_EQ(meter.State(), PreciseState::kVoid);
    EXPECT_EQ(meter.Interruption(), "512 frames lost");
    EXPECT_EQ(meter.Collected(), 100U);
    EXPECT_TRUE(meter.Residual().empty());
    CaptureUpTo(captured + kRecord);
    ASSERT_EQ(readings.size(), 2U);
    EXPECT_TRUE(readings[1].Valid());
    EXPECT_EQ(readings[1].blocks, 1U);
    EXPECT_EQ(meter.State(), PreciseState::kValid);
}

TEST_F(PreciseMeterTest, ALossWhileItSettlesIsNoReading) {
    StartMeter();
    CaptureUpTo(kRecord - 1);
    Lose(1);
    Capture(10);
    EXPECT_TRUE(readings.empty());
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    EXPECT_EQ(meter.Interruption(), "1 frame lost");
    EXPECT_EQ(meter.Collected(), 10U);
}

TEST_F(PreciseMeterTest, ARestartOfTheCaptureIsAnInterruption) {
    StartMeter();
    CaptureUpTo(kRecord);
    readings.clear();
    bench.engine.StartCapture();
    Capture(10);
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_EQ(readings[0].voids[0].sentence, "the capture was started again");
    EXPECT_EQ(meter.Collected(), 10U);
}

// What the background is busy with is not reported after an interruption.
TEST_F(PreciseMeterTest, ALateResultOfAnInterruptedRecordIsDropped) {
    StartMeter(4);
    completing = false;
    CaptureUpTo(kRecord);
    EXPECT_EQ(background.tasks, 1);
    Lose(5);
    Capture(10);
    background.Complete();
    EXPECT_TRUE(readings.empty());
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    // The average does not contain it either.
    completing = true;
    CaptureUpTo(captured + kRecord);
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_EQ(readings[0].blocks, 1U);
}

// A record that was collected with other settings is not a reading of the new ones.
TEST_F(PreciseMeterTest, ALateResultOfOlderSettingsIsDropped) {
    StartMeter();
    completing = false;
    CaptureUpTo(kRecord);
    ASSERT_EQ(background.tasks, 1);
    PreciseSettings rightChannel;
    rightChannel.rateHz = kRateHz;
    rightChannel.channel = 1;
    meter.Start(rightChannel);
    background.Complete();
    EXPECT_TRUE(readings.empty());
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    EXPECT_TRUE(meter.Samples().empty());
    // The same when the stimulus has changed before and after.
    meter.StimulusChanged();
    CaptureUpTo(captured + 2 * kRecord);
    ASSERT_GT(background.tasks, 1);
    StartMeter();
    meter.StimulusChanged();
    background.Complete();
    EXPECT_TRUE(readings.empty());
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    completing = true;
    CaptureUpTo(captured + 2 * kRecord);
    ASSERT_FALSE(readings.empty());
    EXPECT_TRUE(readings[0].Valid());
}

class SilentSource : public FineSource {
public:
    explicit SilentSource(int ditherBits = 0) : ditherBits_(ditherBits) {}
    void FillFine(std::span<std::int32_t> block) override { std::fill(block.begin(), block.end(), 0); }
    int DitherBits() const override { return ditherBits_; }

private:
    int ditherBits_;
};

// A path of 16 bits to an input of 24 bits.
TEST_F(PreciseMeterTest, WordsWhoseLowerBitsAreZeroWarn) {
    StartMeter();
    CaptureUpTo(kRecord);
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_THAT(readings[0].warnings, IsEmpty());
    wordMask = ~0xFFFF;
    CaptureUpTo(captured + 2 * kRecord);
    ASSERT_TRUE(readings.back().Valid());
    EXPECT_THAT(readings.back().warnings, ElementsAre(LimitedBy16Bits()));
}

TEST_F(PreciseMeterTest, NoWarningFollowsFromWordsThatTheProgramMayHaveRounded) {
    wordMask = ~0xFFFF;
    bench.engine.SilentBlocks = 16 + kRecord / kBlockFrames;
    StartMeter();
    CaptureUpTo(kRecord);
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_THAT(readings[0].warnings, IsEmpty());
    ++bench.engine.SilentBlocks;
    CaptureUpTo(kRecord + kRecord / 4);
    EXPECT_THAT(readings.back().warnings, ElementsAre(LimitedBy16Bits()));
    SilentSource dithersTo16Bits(16);
    bench.sound.outputBits = 24;
    fine.SetSource(&dithersTo16Bits);
    meter.StimulusChanged();
    CaptureUpTo(captured + 2 * kRecord);
    ASSERT_TRUE(readings.back().Valid());
    EXPECT_THAT(readings.back().warnings, IsEmpty());
    fine.SetSource(nullptr);
}

TEST_F(PreciseMeterTest, AnOutputOf16BitsWarnsWhileItPlays) {
    SilentSource source;
    fine.SetSource(&source);
    bench.sound.outputBits = 17;
    StartMeter();
    CaptureUpTo(kRecord);
    ASSERT_EQ(readings.size(), 1U);
    EXPECT_THAT(readings[0].warnings, IsEmpty());
    bench.sound.outputBits = 16;
    CaptureUpTo(kRecord + kRecord / 4);
    ASSERT_EQ(readings.size(), 2U);
    EXPECT_THAT(readings[1].warnings, ElementsAre(LimitedBy16Bits()));
    fine.SetSource(nullptr);
}

TEST_F(PreciseMeterTest, FramesMissingInTheStimulusInterrupt) {
    SilentSource source;
    fine.SetSource(&source);
    StartMeter();
    CaptureUpTo(kRecord);
    ASSERT_EQ(readings.size(), 1U);
    bench.sound.fineMissing = 480;
    const std::uint64_t noticed = captured + 8;
    Capture(8);
    ASSERT_EQ(readings.size(), 2U);
    EXPECT_EQ(readings[1].voids[0].sentence, "480 frames missing in the stimulus");
    // 200 ms for the path, 50 ms to settle.
    const std::uint64_t begin = noticed + 1600 + 400;
    CaptureUpTo(begin);
    EXPECT_EQ(meter.Collected(), 0U);
    CaptureUpTo(begin + kRecord);
    EXPECT_EQ(readings.size(), 3U);
    fine.SetSource(nullptr);
}

TEST_F(PreciseMeterTest, TheSentenceNamesWhatInterruptedTheOutput) {
    bench.engine.SilentBlocks = 0;
    StartMeter();
    CaptureUpTo(kRecord);
    const auto sentence = [this] {
        readings.clear();
        Capture(8);
        return readings.size() == 1 && !readings[0].Valid() ? readings[0].voids[0].sentence : "";
    };
    EXPECT_EQ(sentence(), "");
    ++bench.sound.underruns;
    EXPECT_EQ(sentence(), "the output device ran out of samples");
    ++bench.engine.Overruns;
    EXPECT_EQ(sentence(), "the output was overrun");
    ++bench.engine.PlaybackStarts;
    EXPECT_EQ(sentence(), "playback was started again");
    EXPECT_EQ(sentence(), "");
}

// An overrun concerns the block meter's output, which a stimulus replaces.
TEST_F(PreciseMeterTest, AnOverrunDoesNotInterruptAStimulus) {
    SilentSource source;
    fine.SetSource(&source);
    StartMeter();
    CaptureUpTo(kRecord);
    ++bench.engine.Overruns;
    Capture(8);
    EXPECT_EQ(readings.size(), 1U);
    fine.SetSource(nullptr);
}

// The counts may grow while the background works.
TEST_F(PreciseMeterTest, AnOutputThatFailedMeanwhileDropsTheResult) {
    SilentSource source;
    fine.SetSource(&source);
    StartMeter();
    completing = false;
    CaptureUpTo(kRecord);
    bench.sound.fineMissing = 1;
    background.Complete();
    EXPECT_TRUE(readings.empty());
    EXPECT_EQ(meter.Interruption(), "1 frame missing in the stimulus");
    fine.SetSource(nullptr);
}

TEST_F(PreciseMeterTest, WithoutAStimulusTheOutputDoesNotMatter) {
    StartMeter();
    CaptureUpTo(kRecord);
    bench.sound.fineMissing = 480;
    Capture(8);
    EXPECT_EQ(readings.size(), 1U);
}

// 50 ms that may be written before the change, 200 ms for the path, 50 ms to settle.
TEST_F(PreciseMeterTest, ARecordBeginsWhenTheChangeHasArrived) {
    StartMeter();
    CaptureUpTo(kRecord);
    const std::uint64_t begin = captured + 400 + 1600 + 400;
    meter.StimulusChanged();
    EXPECT_EQ(meter.State(), PreciseState::kSettling);
    CaptureUpTo(begin);
    EXPECT_EQ(meter.Collected(), 0U);
    Capture(1);
    EXPECT_EQ(meter.Collected(), 1U);
}

std::vector<std::int32_t> CapturedBurst(std::size_t before, std::size_t frames) {
    std::vector<std::int32_t> samples(2 * frames);
    const std::vector<double> burst = PathBurst(kRateHz);
    for (std::size_t i = 0; i < burst.size(); ++i)
        samples[2 * (before + i)] = static_cast<std::int32_t>(0.1 * 0x7FFFFFFF * burst[i]);
    return samples;
}

TEST_F(PreciseMeterTest, ABurstMeasuresTheDelayOfThePath) {
    StartMeter();
    Capture(100);
    EXPECT_FALSE(meter.DelayKnown());
    meter.BurstStarted();
    Deliver(CapturedBurst(720, 1024));
    EXPECT_EQ(burstsEnded, 1);
    EXPECT_TRUE(meter.DelayKnown());
    EXPECT_EQ(meter.Collected(), 0U);
    const std::uint64_t begin = captured + 400 + 720 + 400;
    meter.StimulusChanged();
    CaptureUpTo(begin - 8);
    EXPECT_EQ(meter.Collected(), 0U);
    CaptureUpTo(begin + 8);
    EXPECT_GT(meter.Collected(), 0U);
    bench.engine.StartCapture();
    EXPECT_FALSE(meter.DelayKnown());
}

TEST_F(PreciseMeterTest, ABurstThatDoesNotArriveEnds) {
    StartMeter();
    meter.BurstStarted();
    // The unknown delay and a second.
    CaptureUpTo(1600 + 8000 - 1);
    EXPECT_EQ(burstsEnded, 0);
    CaptureUpTo(1600 + 8000);
    EXPECT_EQ(burstsEnded, 1);
    EXPECT_FALSE(meter.DelayKnown());
    EXPECT_EQ(meter.Collected(), 0U);
}

TEST_F(PreciseMeterTest, ALossEndsTheSearchForABurst) {
    StartMeter();
    meter.BurstStarted();
    Capture(100);
    Lose(10);
    Capture(100);
    EXPECT_EQ(burstsEnded, 1);
    EXPECT_FALSE(meter.DelayKnown());
}

TEST_F(PreciseMeterTest, StatesOfAReading) {
    StartMeter();
    while (readings.empty()) Capture(kTick, 1.1);
    EXPECT_EQ(meter.State(), PreciseState::kOverload);
    while (meter.State() == PreciseState::kOverload) Capture(kTick, 1e-12);
    EXPECT_EQ(meter.State(), PreciseState::kVoid);
}

TEST_F(PreciseMeterTest, StopEndsTheCapture) {
    StartMeter();
    meter.OnReading = [this](const LinesReading&) { meter.Stop(); };
    CaptureUpTo(2 * kRecord);
    EXPECT_FALSE(bench.sound.fineCaptureOn);
    EXPECT_EQ(meter.Length(), 0U);
    EXPECT_EQ(background.tasks, 1);
    meter.StimulusChanged();
    meter.BurstStarted();
}

}  // namespace
}  // namespace sonavex
