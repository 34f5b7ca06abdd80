#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

// A literal implementation of the fill: sample by sample, and tone by tone within a sample.
class Reference {
public:
    explicit Reference(const Generator& generator) : tones_(generator.Tones), count_(generator.NumTones) {}

    void SetFrequency(std::size_t index, double frequencyHz, std::int32_t rateHz) {
        ToneRecord& tone = tones_[index];
        tone.PhaseIncrement = 6.28318530717958 / (rateHz / frequencyHz);
        tone.Period = rateHz / frequencyHz;
    }

    void Fill(std::vector<double>& first, std::vector<double>& second) {
        for (std::size_t i = 0; i < kBlock; ++i) {
            for (std::int32_t j = 0; j < count_; ++j) {
                const double sample = Next(tones_[static_cast<std::size_t>(j)]);
                first[i] += sample;
                second[i] += sample;
            }
        }
        double peak = second[0];
        for (std::size_t i = 1; i < kBlock; ++i) peak = second[i] > peak ? second[i] : peak;
        if (!(peak > 32760.0)) return;
        for (std::size_t i = 0; i < kBlock; ++i) {
            first[i] *= 32760.0 / peak;
            second[i] *= 32760.0 / peak;
        }
    }

private:
    double Next(ToneRecord& tone) const {
        switch (tone.WaveType) {
            case 0:
                tone.Phase += tone.PhaseIncrement;
                if (tone.Phase > 3.14159265358979) tone.Phase -= 6.28318530717958;
                return 32767.0 / 2.0 / (count_ + 1) * std::sin(tone.Phase);
            case 1:
                tone.Phase = tone.Period / 2.0 < tone.SampleCount ? 6.28318530717958 - 3.14159265358979 / 2.0
                                                                  : 3.14159265358979 / 2.0;
                Count(tone);
                return 32767.0 / 2.0 / (count_ + 1) * std::sin(tone.Phase);
            case 2: {
                const double c = tone.SampleCount;
                const double v = tone.Period / 2.0 < c ? tone.Period - c : c;
                tone.Phase = (v + v) / tone.Period;
                Count(tone);
                break;
            }
            case 3:
                tone.Phase = tone.SampleCount / tone.Period;
                Count(tone);
                break;
            default:
                break;
        }
        return 32767.0 / (count_ + 1) * tone.Phase;
    }

    static void Count(ToneRecord& tone) {
        if (tone.SampleCount < tone.Period)
            tone.SampleCount += 1.0;
        else
            tone.SampleCount = 0.0;
    }

    ToneTable tones_;
    std::int32_t count_;
};

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
    }

    // Both arrays start with noise of this peak.
    void Compare(Reference& reference, double noisePeak) {
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
    std::vector<double> first = std::vector<double>(4097);
    std::vector<double> second = std::vector<double>(4097);
};

INSTANTIATE_TEST_SUITE_P(Mixes, AgainstReference,
                         testing::Values(Mix{1, 0}, Mix{1, 1}, Mix{1, 2}, Mix{1, 3}, Mix{1, 4}, Mix{9, 0},
                                         Mix{9, 1}, Mix{9, 2}, Mix{9, 3}, Mix{9, -1}, Mix{5, -1}));

TEST_P(AgainstReference, TheFillIsTheSameBlockAfterBlock) {
    Reference reference(bench.generator);
    for (int block = 0; block < 12; ++block) {
        SCOPED_TRACE(block);
        Compare(reference, 0.0);
    }
}

TEST_P(AgainstReference, TheGuardIsTheSame) {
    Reference reference(bench.generator);
    for (int block = 0; block < 4; ++block) {
        SCOPED_TRACE(block);
        Compare(reference, 40000.0);
    }
}

TEST_P(AgainstReference, AChangingFrequencyIsTheSame) {
    Reference reference(bench.generator);
    for (int block = 0; block < 8; ++block) {
        SCOPED_TRACE(block);
        for (std::size_t i = 0; i < static_cast<std::size_t>(bench.generator.NumTones); ++i) {
            ToneRecord& tone = bench.generator.Tones[i];
            tone.Frequency = tone.SweepFrequency = frequencyHz(random);
            reference.SetFrequency(i, tone.Frequency, 44100);
        }
        Compare(reference, 100.0);
    }
}

}  // namespace
}  // namespace sonavex
