// No line above -80 dBc next to a sine of 8191.75 steps peak in the 16-bit samples that a block hands to
// playback, from 20 Hz to 0.45 of the sampling rate, at every rate. Some frequencies by default; every whole
// frequency at the seven indexed rates, which takes half a minute, where SONAVEX_EVERY_FREQUENCY is set.
//
// A sine of f whole hertz repeats after N = rate / gcd(rate, f) samples. All frequencies of one N visit the
// same N values in another order, which permutes the lines of the spectrum and keeps their heights. One
// transform per N therefore gives the largest line of the ideal rounded sine. The samples of the block are
// compared with that sine one by one, and every difference counts against the mask.

#include <fftw3.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <numbers>
#include <numeric>
#include <vector>

#include "core/dsp/modDSP.h"
#include "core/generator/Generator.h"
#include "core/settings/SampleRates.h"

namespace sonavex {
namespace {

constexpr double kPeak = 8191.75;
constexpr std::int32_t kLowestHz = 20;

// Heights of the fundamental and of the largest other line, 16-bit steps.
struct Lines {
    double fundamental;
    double spur;
};

// Of one period of samples with this number of cycles of the fundamental.
Lines LinesOf(const std::vector<int>& period, int cycles) {
    const int count = static_cast<int>(period.size());
    std::vector<double> in(period.begin(), period.end());
    std::vector<double> out(2 * (period.size() / 2 + 1));
    auto* lines = reinterpret_cast<fftw_complex*>(out.data());
    const std::unique_ptr<fftw_plan_s, decltype(&fftw_destroy_plan)> plan(
        fftw_plan_dft_r2c_1d(count, in.data(), lines, FFTW_ESTIMATE), &fftw_destroy_plan);
    fftw_execute(plan.get());
    Lines result{0.0, 0.0};
    for (int line = 0; line <= count / 2; ++line) {
        const double height = 2.0 * std::hypot(lines[line][0], lines[line][1]) / count;
        if (line == cycles)
            result.fundamental = height;
        else
            result.spur = std::max(result.spur, height);
    }
    return result;
}

// One second of the sine of 1 Hz, rounded to 16 bit.
std::vector<int> RoundedSine(std::int32_t rateHz) {
    std::vector<int> sine(static_cast<std::size_t>(rateHz));
    for (std::size_t i = 0; i < sine.size(); ++i) {
        const double turn = static_cast<double>(i) / rateHz;
        sine[i] = static_cast<int>(std::lrint(kPeak * std::sin(2.0 * std::numbers::pi * turn)));
    }
    return sine;
}

class EveryFrequency : public testing::TestWithParam<std::int32_t> {
protected:
    EveryFrequency() { shared_.SampleRate = GetParam(); }

    void Start(std::int32_t frequencyHz) {
        generator_.NumTones = 1;
        generator_.Tones[0] = ToneRecord{};
        generator_.Tones[0].Frequency = frequencyHz;
        generator_.Tones[0].SweepFrequency = frequencyHz;
        generator_.ResetTonePhases();
        generator_.SetGeneratorRunning(true);
    }
    // Sum of the differences between the played samples and the rounded sine, over one period.
    double Differences(std::int32_t frequencyHz, std::size_t period) {
        Start(frequencyHz);
        double sum = 0.0;
        std::size_t place = 0;
        for (std::size_t first = 0; first < period; first += kBlockFrames) {
            modDSP::MakeOutput(*analysis_, true, readings_, generator_, played_);
            const std::size_t count = std::min<std::size_t>(kBlockFrames, period - first);
            for (std::size_t i = 0; i < count; ++i) {
                place += static_cast<std::size_t>(frequencyHz);
                if (place >= sine_.size()) place -= sine_.size();
                sum += std::abs(played_[2 * i] - sine_[place]);
            }
        }
        return sum;
    }
    // The lines of all frequencies with this period.
    const Lines& LinesOfPeriod(std::size_t period) {
        const auto known = lines_.find(period);
        if (known != lines_.end()) return known->second;
        std::vector<int> samples(period);
        for (std::size_t i = 0; i < period; ++i) samples[i] = sine_[i * (sine_.size() / period)];
        return lines_.emplace(period, LinesOf(samples, 1)).first->second;
    }

    SharedState shared_;
    Generator generator_{shared_};
    Readings readings_;
    std::unique_ptr<modDSP::State> analysis_ = std::make_unique<modDSP::State>();
    std::vector<std::int16_t> played_ = std::vector<std::int16_t>(kBlockSamples);
    std::vector<int> sine_ = RoundedSine(GetParam());
    std::map<std::size_t, Lines> lines_;
};

INSTANTIATE_TEST_SUITE_P(Rates, EveryFrequency, testing::ValuesIn(SampleRateTable));
INSTANTIATE_TEST_SUITE_P(ExtendedRates, EveryFrequency, testing::ValuesIn(kExtendedRates));

std::vector<std::int32_t> Frequencies(std::int32_t rateHz) {
    const std::int32_t highestHz = rateHz * 9 / 20;
    std::vector<std::int32_t> frequencies;
    if (std::getenv("SONAVEX_EVERY_FREQUENCY") != nullptr && SampleRateIndex(rateHz)) {
        for (std::int32_t hertz = kLowestHz; hertz <= highestHz; ++hertz) frequencies.push_back(hertz);
    } else {
        for (const std::int32_t hertz :
             {kLowestHz, 440, 997, 1000, rateHz / 8, rateHz / 14 * 3, rateHz / 4, highestHz})
            if (hertz <= highestHz) frequencies.push_back(hertz);
    }
    return frequencies;
}

TEST_P(EveryFrequency, HasNoLineAboveMinus80Dbc) {
    const std::int32_t rateHz = GetParam();
    double largestDbc = -999.0;
    std::int32_t largestAt = 0;
    for (const std::int32_t hertz : Frequencies(rateHz)) {
        const auto period = static_cast<std::size_t>(rateHz / std::gcd(rateHz, hertz));
        const Lines& lines = LinesOfPeriod(period);
        const double added = 2.0 * Differences(hertz, period) / static_cast<double>(period);
        const double dbc = 20.0 * std::log10((lines.spur + added) / (lines.fundamental - added));
        ASSERT_NEAR(lines.fundamental, kPeak, 1.0) << hertz << " Hz";
        ASSERT_LT(dbc, -80.0) << hertz << " Hz, period " << period;
        if (dbc <= largestDbc) continue;
        largestDbc = dbc;
        largestAt = hertz;
    }
    RecordProperty("LargestLineDbc", std::to_string(largestDbc));
    RecordProperty("AtHz", largestAt);
}

// The assumption above: the transform of what was played has lines of the same heights.
TEST_P(EveryFrequency, HasTheLinesOfItsPeriod) {
    const std::int32_t rateHz = GetParam();
    for (const std::int32_t hertz : {20, 441, 997, 1000, 1777}) {
        const auto period = static_cast<std::size_t>(rateHz / std::gcd(rateHz, hertz));
        Start(hertz);
        std::vector<int> samples;
        while (samples.size() < period) {
            modDSP::MakeOutput(*analysis_, true, readings_, generator_, played_);
            for (std::size_t i = 0; i < kBlockSamples; i += 2) samples.push_back(played_[i]);
        }
        samples.resize(period);
        const Lines played = LinesOf(samples, hertz / std::gcd(rateHz, hertz));
        const Lines& ideal = LinesOfPeriod(period);
        EXPECT_NEAR(played.fundamental, ideal.fundamental, 1e-3) << hertz;
        EXPECT_NEAR(played.spur, ideal.spur, 1e-3) << hertz;
    }
}

TEST(PurityOfAPeriod, SeesALineOfMinus79Dbc) {
    std::vector<int> period(48000);
    const double level = std::pow(10.0, -79.0 / 20.0);
    for (std::size_t i = 0; i < period.size(); ++i) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(i) / 48000.0;
        period[i] = static_cast<int>(std::lrint(kPeak * (std::sin(angle) + level * std::sin(7.0 * angle))));
    }
    const Lines lines = LinesOf(period, 1);
    EXPECT_NEAR(20.0 * std::log10(lines.spur / lines.fundamental), -79.0, 0.5);
}

}  // namespace
}  // namespace sonavex
