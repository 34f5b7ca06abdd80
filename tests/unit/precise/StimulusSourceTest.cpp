#include <gtest/gtest.h>

#include <cmath>

#include "core/precise/StimulusSource.h"

namespace sonavex {
namespace {

using WordList = std::vector<std::int32_t>;

constexpr std::int32_t kSourceRateHz = 48000;
constexpr std::size_t kRamp = 240;
constexpr SampleWord kPlain24{24, std::nullopt};

StimulusSource::Sound SourceTone(double hertz, double amplitude = 0.5,
                                 StimulusSide side = StimulusSide::kBoth, SampleWord word = kPlain24) {
    const auto step = static_cast<std::uint64_t>(std::ldexp(hertz / kSourceRateHz, 64));
    return {StimulusSignal({{step, hertz, amplitude}}), side, word};
}

class StimulusSourceTest : public testing::Test {
protected:
    StimulusSourceTest() { source.Reset(kSourceRateHz); }

    WordList Filled(std::size_t frames) {
        WordList words(2 * frames, 1);
        source.FillFine(words);
        return words;
    }

    StimulusSource source;
};

// The samples of one channel, full scale 1.
std::vector<double> ChannelOf(const WordList& words, std::size_t channel) {
    std::vector<double> samples;
    for (std::size_t i = channel; i < words.size(); i += 2) samples.push_back(std::ldexp(words[i], -31));
    return samples;
}

double LargestStep(const std::vector<double>& samples) {
    double largest = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        largest = std::max(largest, std::abs(samples[i] - samples[i - 1]));
    return largest;
}

bool Silent(const WordList& words) {
    return std::all_of(words.begin(), words.end(), [](std::int32_t word) { return word == 0; });
}

TEST_F(StimulusSourceTest, IsSilentAtFirst) {
    EXPECT_TRUE(Silent(Filled(5000)));
    EXPECT_TRUE(source.Ended(0));
}

TEST_F(StimulusSourceTest, PlaysTheSignalAfterARampOfFiveMilliseconds) {
    const StimulusSource::Sound sound = SourceTone(997.0);
    source.Play(sound);
    const WordList words = Filled(5000);
    std::vector<double> signal(5000);
    sound.signal.Fill(0, signal);
    const SampleRounder rounder(kPlain24);
    for (std::size_t n = kRamp; n < signal.size(); ++n) {
        ASSERT_EQ(words[2 * n], rounder.Round(signal[n], n, 0)) << n;
        ASSERT_EQ(words[2 * n + 1], words[2 * n]) << n;
    }
    for (std::size_t n = 0; n < kRamp; ++n) {
        const double gain = 0.5 - 0.5 * std::cos(M_PI * static_cast<double>(n) / kRamp);
        ASSERT_NEAR(std::ldexp(words[2 * n], -31), gain * signal[n], 1e-7) << n;
    }
    EXPECT_FALSE(source.Ended(0));
}

TEST_F(StimulusSourceTest, PlaysOneSide) {
    source.Play(SourceTone(997.0, 0.5, StimulusSide::kLeft));
    WordList words = Filled(1000);
    EXPECT_GT(LargestStep(ChannelOf(words, 0)), 0.01);
    EXPECT_EQ(LargestStep(ChannelOf(words, 1)), 0.0);
    source.Reset(kSourceRateHz);
    source.Play(SourceTone(997.0, 0.5, StimulusSide::kRight, DitheredWord(16)));
    words = Filled(1000);
    EXPECT_EQ(LargestStep(ChannelOf(words, 0)), 0.0);
    EXPECT_GT(LargestStep(ChannelOf(words, 1)), 0.01);
    for (const std::int32_t word : words) ASSERT_EQ(word & 0xFFFF, 0);
}

TEST_F(StimulusSourceTest, EndsWithARampAndIsThenSilent) {
    source.Play(SourceTone(100.0));
    WordList words = Filled(3000);
    source.End();
    EXPECT_FALSE(source.Ended(0));
    const WordList rest = Filled(1000);
    EXPECT_FALSE(Silent(WordList(rest.begin() + 2 * 200, rest.begin() + 2 * 240)));
    EXPECT_TRUE(Silent(WordList(rest.begin() + 2 * 240, rest.end())));
    words.insert(words.end(), rest.begin(), rest.end());
    // The slope of the tone and that of the ramp.
    EXPECT_LT(LargestStep(ChannelOf(words, 0)), 0.5 * 2 * M_PI * 100 / 48000 + 0.5 * M_PI / 2 / kRamp);
    EXPECT_TRUE(source.Ended(760));
    EXPECT_FALSE(source.Ended(761));
}

TEST_F(StimulusSourceTest, ReplacesOneSoundByAnotherThroughSilence) {
    source.Play(SourceTone(100.0));
    WordList words = Filled(3000);
    source.Play(SourceTone(150.0));
    const WordList next = Filled(3000);
    EXPECT_EQ(next[2 * kRamp], 0);
    words.insert(words.end(), next.begin(), next.end());
    EXPECT_LT(LargestStep(ChannelOf(words, 0)), 0.5 * 2 * M_PI * 150 / 48000 + 0.5 * M_PI / 2 / kRamp);
    std::vector<double> signal(1);
    SourceTone(150.0).signal.Fill(1000, signal);
    EXPECT_NEAR(std::ldexp(next[2 * (kRamp + 1000)], -31), signal[0], 1e-7);
}

TEST_F(StimulusSourceTest, FillsRewoundFramesAgain) {
    source.Play(SourceTone(997.0, 0.5, StimulusSide::kBoth, DitheredWord(24)));
    Filled(1000);
    const WordList first = Filled(4096);
    source.Rewind(4096);
    EXPECT_EQ(Filled(4096), first);
}

// Changes in quick succession, each before the device has taken the one before.
TEST_F(StimulusSourceTest, ChangesBeforeRewoundFramesLeaveNoStep) {
    source.Play(SourceTone(100.0));
    WordList heard = Filled(3000);
    for (int change = 0; change < 20; ++change) {
        source.Rewind(0);
        if (change % 3 == 2)
            source.End();
        else
            source.Play(SourceTone(100.0 + change));
        Filled(8192);
        source.Rewind(8192);
        const WordList kept = Filled(static_cast<std::size_t>(37 * change));
        heard.insert(heard.end(), kept.begin(), kept.end());
    }
    EXPECT_LT(LargestStep(ChannelOf(heard, 0)), 0.5 * 2 * M_PI * 120 / 48000 + 0.5 * M_PI / 2 / kRamp);
    source.End();
    Filled(1000);
    EXPECT_TRUE(Silent(Filled(1000)));
}

}  // namespace
}  // namespace sonavex
