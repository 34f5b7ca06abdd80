// Uncertainties contain the truth in 95 % of many runs with independent noise, and bounds lie above it.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <numbers>
#include <span>
#include <string>

#include "core/analyzer/ToneAverage.h"
#include "unit/analyzer/Score.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

constexpr std::size_t kCoverageLength = 4096;
constexpr double kCoverageRateHz = 8000.0;
constexpr double kToneHz = 403.7;

const RecordPlan& CoveragePlan() {
    static const RecordPlan plan(kCoverageLength, kCoverageRateHz);
    return plan;
}

constexpr int kRuns = 1000;
constexpr double kAmplitude = 0.5;
constexpr double kFirstPhase = 0.4;

// Standard deviation of each part of a line's amplitude in white noise of this rms.
double SigmaOfLine(double noiseRms) {
    return noiseRms * std::sqrt(2.0 * CoveragePlan().Window().EnbwBins() / kCoverageLength);
}

enum class NoiseKind { kWhite, kDither24 };

struct Case {
    NoiseKind kind;
    std::size_t records;
};

// A tone with harmonics 2 to 6 at 200, 20, 6.5, 2.5 and 1 sigma, none above, in noise.
class Coverage : public testing::TestWithParam<Case> {
protected:
    Coverage() : f_(kToneHz, kCoverageRateHz) {
        noiseRms_ = GetParam().kind == NoiseKind::kWhite ? 1e-4 : std::ldexp(0.5, -23);
        const double sigma = SigmaOfLine(noiseRms_) / kAmplitude;
        ratios_ = {{2, 200 * sigma}, {3, 20 * sigma}, {4, 6.5 * sigma}, {5, 2.5 * sigma}, {6, sigma}};
        const std::size_t length = kCoverageLength + (GetParam().records - 1) * kCoverageLength / 4;
        clean_ = signals::Sine(length, f_, kAmplitude, kFirstPhase);
        for (const auto& [order, ratio] : ratios_)
            signals::AddSine(clean_, f_.Times(static_cast<std::uint64_t>(order)), ratio * kAmplitude,
                             order * kFirstPhase + 1.0);
        for (std::uint32_t run = 0; run < kRuns; ++run) Count(ReadingOf(run));
    }

    void ExpectCovered(const std::string& name) {
        const Score& score = scores_[name];
        ASSERT_GE(score.values, kRuns - 5) << name;
        EXPECT_NEAR(score.Hits(), 0.95, 0.02) << name;
    }

    void ExpectBounds(const std::string& name, int atLeast) {
        const Score& score = scores_[name];
        ASSERT_GE(score.bounds, atLeast) << name;
        EXPECT_GE(score.BoundsAbove(), 0.95) << name;
    }

    int restarts_ = 0;

private:
    void AddNoise(signals::Samples& x, std::uint32_t seed) const {
        if (GetParam().kind == NoiseKind::kWhite)
            signals::AddWhiteNoise(x, noiseRms_, seed);
        else
            signals::QuantiseWithDither(x, 24, seed);
    }

    Reading ReadingOf(std::uint32_t seed) {
        signals::Samples x = clean_;
        AddNoise(x, seed);
        ToneAverage average(CoveragePlan(), 0);
        Reading reading;
        for (std::size_t record = 0; record < GetParam().records; ++record) {
            const std::span<const double> samples(x.data() + record * kCoverageLength / 4, kCoverageLength);
            const ToneMeasurement& mean =
                average.Add(MeasureTone(CoveragePlan(), {samples, kCoverageRateHz}, ToneSettings{}));
            if (record + 1 == GetParam().records) reading = MakeReading(CoveragePlan(), mean, ToneSettings{});
        }
        if (reading.blocks != GetParam().records) ++restarts_;
        return reading;
    }

    void Count(const Reading& reading) {
        const double halfRateHz = 0.5 * kCoverageRateHz;
        const double noise = noiseRms_ * std::sqrt(2.0 * (halfRateHz - 20.0) / halfRateHz) / kAmplitude;
        double squares = 0.0;
        for (const auto& [order, ratio] : ratios_) squares += ratio * ratio;
        const double thd = std::sqrt(squares);
        const double rest = std::hypot(noise, thd);
        scores_["frequency"].Count(reading.frequencyHz, f_.Hertz());
        scores_["level"].Count(reading.levelDbfs, Decibels(kAmplitude));
        scores_["dc"].Count(reading.dc, 0.0);
        scores_["noise"].Count(reading.noiseDbfs, Decibels(noise * kAmplitude));
        scores_["snr"].Count(reading.snrDb, -Decibels(noise));
        scores_["thdn"].Count(reading.thdnDb, Decibels(rest));
        scores_["sinad"].Count(reading.sinadDb, -Decibels(rest));
        scores_["enob"].Count(reading.enob, std::log2(2.0 / (std::sqrt(6.0) * kAmplitude * rest)));
        scores_["thd"].Count(reading.thdDb, Decibels(thd));
        scores_["thd percent"].Count(reading.thdPercent, 100.0 * thd);
        scores_["thd_r percent"].Count(reading.thdRPercent, 100.0 * thd / std::hypot(1.0, thd));
        for (const Harmonic& harmonic : reading.harmonics) {
            const auto known = ratios_.find(harmonic.order);
            const double ratio = known == ratios_.end() ? 0.0 : known->second;
            const std::string order = std::to_string(harmonic.order);
            scores_["harmonic " + order].Count(harmonic.levelDbc, Decibels(ratio));
            scores_["phase " + order].Count(harmonic.phaseDegrees, 180.0 / std::numbers::pi);
        }
    }

    signals::ExactFrequency f_;
    double noiseRms_ = 0.0;
    std::map<int, double> ratios_;
    signals::Samples clean_;
    std::map<std::string, Score> scores_;
};

TEST_P(Coverage, IntervalsContainTheTruthIn95PercentOfTheRuns) {
    for (const char* const name :
         {"frequency", "level", "dc", "noise", "snr", "thdn", "sinad", "enob", "thd", "thd percent",
          "thd_r percent", "harmonic 2", "harmonic 3", "harmonic 4", "phase 2", "phase 3", "phase 4"})
        ExpectCovered(name);
    // Averages rarely take noise for a change of frequency.
    EXPECT_LE(restarts_, kRuns / 200);
    const bool averaged = GetParam().records > 1;
    if (!averaged) ExpectBounds("harmonic 5", kRuns / 3);
    ExpectBounds("harmonic 6", kRuns / 2);
    ExpectBounds("harmonic 7", kRuns - 50);
}

INSTANTIATE_TEST_SUITE_P(WhiteNoise, Coverage,
                         testing::Values(Case{NoiseKind::kWhite, 1}, Case{NoiseKind::kWhite, 8}));
INSTANTIATE_TEST_SUITE_P(Dither, Coverage,
                         testing::Values(Case{NoiseKind::kDither24, 1}, Case{NoiseKind::kDither24, 8}));

// Only noise beside the tone, or harmonics of half a sigma: the bound of THD must not lie below it.
TEST(CoverageOfBounds, TheBoundOfThdLiesAboveTheTruth) {
    const signals::ExactFrequency f(kToneHz, kCoverageRateHz);
    constexpr double kNoiseRms = 1e-4;
    const double ratio = 1.2 * SigmaOfLine(kNoiseRms) / kAmplitude;
    signals::Samples clean = signals::Sine(kCoverageLength, f, kAmplitude);
    for (std::uint64_t order = 2; order <= 9; ++order)
        signals::AddSine(clean, f.Times(order), ratio * kAmplitude, 1.0);
    const double truth = Decibels(ratio * std::sqrt(8.0));
    Score score;
    for (std::uint32_t run = 0; run < 300; ++run) {
        signals::Samples x = clean;
        signals::AddWhiteNoise(x, kNoiseRms, run);
        score.Count(AnalyzeTone(CoveragePlan(), {x, kCoverageRateHz}, ToneSettings{}).thdDb, truth);
    }
    ASSERT_GE(score.bounds, 290);
    EXPECT_GE(score.BoundsAbove(), 0.95);
}

}  // namespace
}  // namespace sonavex
