#include <gtest/gtest.h>

#include <limits>

#include "support/Errors.h"
#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

std::int32_t ErrorOfFill(GeneratorBench& bench, std::int32_t count = kBlock) {
    return ErrorOf([&] {
        bench.generator.FillGeneratorBlock(bench.first, bench.second, count);
        return 0;
    });
}

TEST(FillErrors, OfArraysThatAreTooShort) {
    for (const auto& [firstSize, secondSize, count] :
         {std::tuple{2047, 4096, 2048}, std::tuple{4096, 2047, 2048}, std::tuple{2047, 2047, 1},
          std::tuple{2047, 4096, 1}, std::tuple{2048, 4096, 2049}, std::tuple{4096, 2048, 2049},
          std::tuple{0, 0, 0}}) {
        GeneratorBench bench;
        bench.Add(wave::kSine, 1000.0);
        bench.Run();
        bench.first.resize(static_cast<std::size_t>(firstSize));
        bench.second.resize(static_cast<std::size_t>(secondSize));
        EXPECT_EQ(ErrorOfFill(bench, count), 9) << firstSize << ' ' << secondSize << ' ' << count;
    }
}

TEST(FillErrors, OfTooManyTones) {
    GeneratorBench bench;
    for (int i = 0; i < 9; ++i) bench.Add(wave::kSine, 1000.0);
    bench.Run();
    EXPECT_EQ(ErrorOfFill(bench), 0);
    for (const std::int32_t tones : {10, 11, 100000, std::numeric_limits<std::int32_t>::max() - 1}) {
        bench.generator.NumTones = tones;
        EXPECT_EQ(ErrorOfFill(bench), 9) << tones;
        EXPECT_FALSE(bench.generator.ToneUpdateBusy);
    }
    bench.generator.NumTones = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(ErrorOfFill(bench), 6);
}

TEST(FillErrors, OfAFrequencyOfZero) {
    for (const std::int16_t type : {wave::kSine, wave::kSquare, wave::kTriangle, wave::kSawtooth}) {
        GeneratorBench bench;
        ToneRecord& tone = bench.Add(type, 1000.0);
        bench.Run();
        tone.Frequency = 0.0;
        EXPECT_EQ(ErrorOfFill(bench), 11) << type;
        EXPECT_FALSE(bench.generator.ToneUpdateBusy);
    }
}

TEST(FillErrors, OfARampWhoseFrequencyWasNeverSet) {
    for (const std::int16_t type : {wave::kTriangle, wave::kSawtooth}) {
        GeneratorBench bench;
        bench.Add(type, 0.0);
        bench.Run();
        EXPECT_EQ(ErrorOfFill(bench), 11) << type;
    }
}

}  // namespace
}  // namespace sonavex
