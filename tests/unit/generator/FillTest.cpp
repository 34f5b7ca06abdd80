#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

double LargestMagnitude(const std::vector<double>& samples) {
    double largest = 0.0;
    for (const double sample : samples) largest = std::max(largest, std::abs(sample));
    return largest;
}

TEST(Fill, LeavesTheArraysWhileStopped) {
    GeneratorBench bench;
    bench.Add(wave::kSine, 1000.0);
    std::fill(bench.first.begin(), bench.first.end(), 12.5);
    std::fill(bench.second.begin(), bench.second.end(), 40000.0);
    bench.generator.FillGeneratorBlock(bench.first, bench.second, kBlock);
    for (const double sample : bench.first) ASSERT_EQ(sample, 12.5);
    for (const double sample : bench.second) ASSERT_EQ(sample, 40000.0);
    EXPECT_EQ(bench.generator.Tones[0].Phase, 0.0);
    EXPECT_EQ(bench.generator.Tones[0].LastFrequency, 0.0);
}

TEST(Fill, OfNoToneOnlyGuards) {
    GeneratorBench bench;
    bench.Run();
    bench.second[7] = 65520.0;
    bench.first[3] = 100.0;
    bench.generator.FillGeneratorBlock(bench.first, bench.second, kBlock);
    EXPECT_EQ(bench.second[7], 32760.0);
    EXPECT_EQ(bench.first[3], 50.0);
}

TEST(Fill, DividesByTheNumberOfTonesAndOne) {
    for (std::int32_t tones = 1; tones <= 9; ++tones) {
        for (const std::int16_t type : {wave::kSquare, wave::kSawtooth}) {
            GeneratorBench bench(48000);
            for (std::int32_t i = 0; i < tones; ++i) bench.Add(type, 480.0);
            bench.Run();
            const double each = (type == wave::kSquare ? 32767.0 / 2 : 32767.0) / (tones + 1);
            EXPECT_NEAR(LargestMagnitude(bench.Fill()), tones * each, 1e-8) << tones;
        }
    }
}

TEST(Fill, AddsToWhatTheArraysHold) {
    GeneratorBench bench;
    bench.Add(wave::kSine, 1000.0);
    bench.Run();
    const auto alone = bench.Fill();
    GeneratorBench second;
    second.Add(wave::kSine, 1000.0);
    second.Run();
    std::fill(second.first.begin(), second.first.end(), 1000.0);
    std::fill(second.second.begin(), second.second.end(), -500.0);
    second.generator.FillGeneratorBlock(second.first, second.second, kBlock);
    for (std::size_t i = 0; i < alone.size(); ++i) {
        ASSERT_EQ(second.first[i], 1000.0 + alone[i]);
        ASSERT_EQ(second.second[i], -500.0 + alone[i]);
    }
    EXPECT_EQ(second.first[kBlock], 1000.0);
    EXPECT_EQ(second.second[kBlock], -500.0);
}

TEST(Fill, FillsTheRequestedNumberOfSamples) {
    for (const std::int32_t count : {0, 1, 100, 2047, 2048, 2049, 4096, 4097}) {
        GeneratorBench bench;
        bench.Add(wave::kTriangle, 997.0);
        bench.Add(wave::kSine, 997.0);
        bench.Run();
        const auto samples = bench.Fill(count);
        for (std::size_t i = static_cast<std::size_t>(count); i < bench.first.size(); ++i)
            ASSERT_EQ(bench.first[i], 0.0) << count;
        GeneratorBench whole;
        whole.Add(wave::kTriangle, 997.0);
        whole.Add(wave::kSine, 997.0);
        whole.Run();
        const auto reference = whole.Samples(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < samples.size(); ++i) ASSERT_NEAR(samples[i], reference[i], 1e-9) << i;
    }
}

TEST(Guard, ScalesBothArraysByTheSecondOnesPeak) {
    GeneratorBench bench(48000);
    bench.Add(wave::kSine, 1000.0);
    bench.Run();
    const std::size_t crest = 11;  // a quarter of 48 samples, advanced before use
    bench.first[crest] = 20000.0;
    bench.second[crest] = 30000.0;
    bench.generator.FillGeneratorBlock(bench.first, bench.second, kBlock);
    const double scale = 32760.0 / 38191.75;
    EXPECT_NEAR(bench.second[crest], 32760.0, 1e-6);
    EXPECT_NEAR(bench.first[crest], 28191.75 * scale, 1e-6);
    EXPECT_NEAR(bench.first[0], 8191.75 * std::sin(0.1308996938995746) * scale, 1e-6);
}

TEST(Guard, LooksAtTheSecondArrayOnly) {
    GeneratorBench bench;
    bench.Run();
    bench.first[5] = 60000.0;
    bench.second[5] = 32760.0;  // not above the threshold
    bench.generator.FillGeneratorBlock(bench.first, bench.second, kBlock);
    EXPECT_EQ(bench.first[5], 60000.0);
    EXPECT_EQ(bench.second[5], 32760.0);
}

TEST(Guard, LooksAtTheSignedMaximum) {
    GeneratorBench bench;
    bench.Run();
    bench.second[5] = -60000.0;
    bench.generator.FillGeneratorBlock(bench.first, bench.second, kBlock);
    EXPECT_EQ(bench.second[5], -60000.0);
}

TEST(Guard, AlwaysCovers2048Elements) {
    GeneratorBench bench;
    bench.Run();
    bench.second[2047] = 65520.0;
    bench.second[2048] = 1000000.0;
    bench.first[2047] = 20.0;
    bench.first[2048] = 20.0;
    bench.generator.FillGeneratorBlock(bench.first, bench.second, 1);
    EXPECT_EQ(bench.second[2047], 32760.0);
    EXPECT_EQ(bench.first[2047], 10.0);
    EXPECT_EQ(bench.second[2048], 1000000.0);
    EXPECT_EQ(bench.first[2048], 20.0);
}

TEST(Guard, IsNeverNeededByThreeTonesAlone) {
    for (const std::int16_t type : {wave::kSine, wave::kSquare, wave::kTriangle, wave::kSawtooth}) {
        GeneratorBench bench(48000);
        for (int i = 0; i < 3; ++i) bench.Add(type, 480.0);
        bench.Run();
        const double most = type <= wave::kSquare ? 3 * 32767.0 / 8 : 3 * 32767.0 / 4;
        EXPECT_NEAR(LargestMagnitude(bench.Samples(8192)), most, 1e-8) << type;
    }
}

}  // namespace
}  // namespace sonavex
