#include <gtest/gtest.h>

#include <random>

#include "support/GeneratorBench.h"
#include "support/ReferenceGenerator.h"

namespace sonavex {
namespace {

struct Mix {
    std::int32_t tones;
    std::int16_t firstType;  // -1: all types in turn
};

class AgainstReference : public testing::TestWithParam<Mix> {
protected:
    AgainstReference() {
        for (std::int32_t i = 0; i < GetParam().tones; ++i) {
            const auto type =
                GetParam().firstType < 0 ? static_cast<std::int16_t>(i % 5) : GetParam().firstType;
            bench.Add(type, frequencyHz(random));
        }
        bench.Run();
        reference.tones = bench.generator.Tones;
        reference.count = bench.generator.NumTones;
        reference.rateHz = bench.shared.SampleRate;
    }

    // Both arrays start with noise of this peak.
    void Compare(double noisePeak) {
        std::uniform_real_distribution<double> noise(-noisePeak, noisePeak);
        for (std::size_t i = 0; i < bench.first.size(); ++i) {
            first[i] = bench.first[i] = noise(random);
            second[i] = bench.second[i] = noise(random);
        }
        bench.generator.FillGeneratorBlock(bench.first, bench.second, kBlock);
        reference.Fill(first, second);
        for (std::size_t i = 0; i < bench.first.size(); ++i) {
            ASSERT_NEAR(bench.first[i], first[i], 1e-9) << i;
            ASSERT_NEAR(bench.second[i], second[i], 1e-9) << i;
        }
    }

    std::mt19937 random{20260101};
    std::uniform_real_distribution<double> frequencyHz{20.0, 20000.0};
    GeneratorBench bench{44100};
    reference::Generator reference;
    std::vector<double> first = std::vector<double>(4097);
    std::vector<double> second = std::vector<double>(4097);
};

INSTANTIATE_TEST_SUITE_P(Mixes, AgainstReference,
                         testing::Values(Mix{1, 0}, Mix{1, 1}, Mix{1, 2}, Mix{1, 3}, Mix{1, 4}, Mix{9, 0},
                                         Mix{9, 1}, Mix{9, 2}, Mix{9, 3}, Mix{9, -1}, Mix{5, -1}));

TEST_P(AgainstReference, TheFillIsTheSameBlockAfterBlock) {
    for (int block = 0; block < 12; ++block) {
        SCOPED_TRACE(block);
        Compare(0.0);
    }
}

TEST_P(AgainstReference, TheGuardIsTheSame) {
    for (int block = 0; block < 4; ++block) {
        SCOPED_TRACE(block);
        Compare(40000.0);
    }
}

TEST_P(AgainstReference, AChangingFrequencyIsTheSame) {
    for (int block = 0; block < 8; ++block) {
        SCOPED_TRACE(block);
        for (std::size_t i = 0; i < static_cast<std::size_t>(bench.generator.NumTones); ++i) {
            const double changedHz = frequencyHz(random);
            for (ToneRecord* tone : {&bench.generator.Tones[i], &reference.tones[i]})
                tone->Frequency = tone->SweepFrequency = changedHz;
        }
        Compare(100.0);
    }
}

}  // namespace
}  // namespace sonavex
