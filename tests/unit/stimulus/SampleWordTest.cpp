#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/stimulus/SampleWord.h"

namespace sonavex {
namespace {

constexpr SampleWord kPlain16{16, std::nullopt};

template <class Check>
std::string SentenceOf(Check check) {
    try {
        check();
    } catch (const StimulusError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(SampleWord, RoundsHalvesToEvenAndClearsTheLowerBits) {
    const SampleRounder rounder(kPlain16);
    const double step = std::ldexp(1.0, -15);
    EXPECT_EQ(rounder.Round(0.5, 0, 0), 0x40000000);
    EXPECT_EQ(rounder.Round(-0.5, 0, 0), -0x40000000);
    EXPECT_EQ(rounder.Round(1.5 * step, 0, 0), 2 << 16);
    EXPECT_EQ(rounder.Round(2.5 * step, 0, 0), 2 << 16);
    EXPECT_EQ(rounder.Round(-0.6 * step, 0, 0), -(1 << 16));
    EXPECT_EQ(SampleRounder({24, std::nullopt}).Round(3 * std::ldexp(1.0, -23), 0, 0), 3 << 8);
    EXPECT_EQ(SampleRounder({32, std::nullopt}).Round(3 * std::ldexp(1.0, -31), 0, 0), 3);
}

TEST(SampleWord, LimitsToTheWords) {
    EXPECT_EQ(SampleRounder(kPlain16).Round(1.0, 0, 0), 0x7FFF0000);
    EXPECT_EQ(SampleRounder(kPlain16).Round(-1.5, 0, 0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(SampleRounder({32, std::nullopt}).Round(2.0, 0, 0), std::numeric_limits<std::int32_t>::max());
}

// The error of dithered words has the mean 0 and the power of 3/12 of a step squared, independent of the
// sample; triangular dither of one step alone reaches from -1 to 1 step with the power of 2/12.
TEST(SampleWord, DitherIsTriangular) {
    constexpr std::uint64_t kFrames = 200000;
    for (const double part : {0.0, 0.3, 0.5}) {
        const SampleRounder rounder(DitheredWord(16));
        double sum = 0;
        double squares = 0;
        for (std::uint64_t frame = 0; frame < kFrames; ++frame) {
            const double error = std::ldexp(rounder.Round(std::ldexp(part, -15), frame, 0), -16) - part;
            ASSERT_LT(std::abs(error), 1.5);
            sum += error;
            squares += error * error;
        }
        EXPECT_NEAR(sum / kFrames, 0.0, 0.005) << part;
        EXPECT_NEAR(squares / kFrames, 3.0 / 12.0, 0.003) << part;
    }
}

// Silence, dithered at 16 bits in words of 32 bits.
TEST(SampleWord, DitherMayBeNarrowerThanTheOutput) {
    constexpr std::uint64_t kFrames = 200000;
    const SampleRounder rounder({32, 16});
    double squares = 0;
    double largest = 0;
    int outer = 0;
    for (std::uint64_t frame = 0; frame < kFrames; ++frame) {
        const double steps = std::ldexp(rounder.Round(0.0, frame, 0), -16);
        squares += steps * steps;
        largest = std::max(largest, std::abs(steps));
        if (std::abs(steps) > 0.5) ++outer;
    }
    EXPECT_NEAR(squares / kFrames, 2.0 / 12.0, 0.002);
    EXPECT_LT(largest, 1.0);
    EXPECT_GT(largest, 0.99);
    EXPECT_NEAR(outer / static_cast<double>(kFrames), 0.25, 0.005);
}

TEST(SampleWord, DithersOfFramesAndChannelsAreIndependent) {
    constexpr std::uint64_t kFrames = 100000;
    const SampleRounder rounder({32, 16});
    double channels = 0;
    double neighbours = 0;
    for (std::uint64_t frame = 0; frame < kFrames; ++frame) {
        const double left = std::ldexp(rounder.Round(0.0, frame, 0), -16);
        channels += left * std::ldexp(rounder.Round(0.0, frame, 1), -16);
        neighbours += left * std::ldexp(rounder.Round(0.0, frame + 1, 0), -16);
    }
    EXPECT_NEAR(channels / kFrames, 0.0, 0.003);
    EXPECT_NEAR(neighbours / kFrames, 0.0, 0.003);
    EXPECT_EQ(rounder.Round(0.1, 5, 1), rounder.Round(0.1, 5, 1));
}

TEST(SampleWord, AtTheLargestLevelNothingIsClipped) {
    for (const int bits : {8, 16, 24}) {
        const SampleWord word = DitheredWord(bits);
        const double level = LargestLevelDbfs(StimulusShape::kSine, word);
        EXPECT_DOUBLE_EQ(level, 20.0 * std::log10(1.0 - 2.0 / std::ldexp(1.0, bits - 1)));
        const double peak = std::pow(10.0, level / 20.0);
        const SampleRounder rounder(word);
        const std::int32_t largest = std::numeric_limits<std::int32_t>::max() - ((1 << (32 - bits)) - 1);
        bool reached = false;
        for (std::uint64_t frame = 0; frame < 50000; ++frame) {
            ASSERT_LE(rounder.Round(peak, frame, 0), largest);
            ASSERT_GE(rounder.Round(-peak, frame, 0), -largest);
            reached = reached || rounder.Round(peak, frame, 0) == largest;
        }
        EXPECT_TRUE(reached) << bits;
    }
}

TEST(SampleWord, LargestLevels) {
    const auto check = [](StimulusShape shape, const SampleWord& word, double level) {
        return SentenceOf([&] { CheckLevel(shape, word, level); });
    };
    EXPECT_EQ(check(StimulusShape::kSine, DitheredWord(16), -0.00054), "accepted");
    EXPECT_EQ(check(StimulusShape::kSine, DitheredWord(16), 0.0),
              "The level 0 dBFS is outside -200 to -0.000531 dBFS.");
    EXPECT_EQ(check(StimulusShape::kSine, {24, 16}, -0.00025),
              "The level -0.00025 dBFS is outside -200 to -0.000531 dBFS.");
    EXPECT_EQ(check(StimulusShape::kSquare, {24, std::nullopt}, 1.5),
              "The level 1.5 dBFS is outside -200 to -0.000003 dBFS.");
    EXPECT_EQ(check(StimulusShape::kWhiteNoise, DitheredWord(24), -8.98),
              "The level -8.98 dBFS is outside -200 to -8.989703 dBFS.");
    EXPECT_EQ(check(StimulusShape::kPinkNoise, DitheredWord(24), -8.99), "accepted");
    EXPECT_EQ(check(StimulusShape::kSine, DitheredWord(24), -200.5),
              "The level -200.5 dBFS is outside -200 to -0.000003 dBFS.");
    EXPECT_NE(check(StimulusShape::kSine, DitheredWord(24), std::nan("")), "accepted");
}

TEST(SampleWord, RefusesADitherWiderThanTheOutput) {
    EXPECT_EQ(SentenceOf([] { CheckDither({16, 16}); }), "accepted");
    EXPECT_EQ(SentenceOf([] { CheckDither({24, std::nullopt}); }), "accepted");
    EXPECT_EQ(SentenceOf([] {
                  CheckDither({16, 24});
              }),
              "A dither of 24 bits has no effect: the output takes 16 bits.");
    EXPECT_EQ(SentenceOf([] {
                  CheckDither({16, 7});
              }),
              "A dither of 7 bits is not possible; it takes 8 bits or more.");
}

}  // namespace
}  // namespace sonavex
