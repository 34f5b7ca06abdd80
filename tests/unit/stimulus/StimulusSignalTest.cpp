#include <fftw3.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <string_view>

#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/PeriodTransform.h"
#include "core/stimulus/RenderStimulus.h"
#include "core/stimulus/SampleWord.h"
#include "core/stimulus/StimulusSignal.h"

namespace sonavex {
namespace {

using SampleList = std::vector<double>;

constexpr std::size_t kRecord = 16384;
constexpr double kPure = 1e-14;  // -280 dB

StimulusPlan PlanOf(std::string_view text, double levelDbfs = 0.0, double rateHz = 48000.0,
                    std::size_t length = kRecord) {
    StimulusRequest request;
    request.stimulus = ParseStimulus(text);
    request.rateHz = rateHz;
    request.length = length;
    request.levelDbfs = levelDbfs;
    return PlanStimulus(request);
}

SampleList Played(const StimulusSignal& signal, std::size_t count = kRecord, std::uint64_t frame = 0) {
    SampleList samples(count);
    signal.Fill(frame, samples);
    return samples;
}

double Peak(const SampleList& samples) {
    double peak = 0;
    for (const double sample : samples) peak = std::max(peak, std::abs(sample));
    return peak;
}

double Rms(const SampleList& samples) {
    long double sum = 0;
    for (const double sample : samples) sum += static_cast<long double>(sample) * sample;
    return static_cast<double>(std::sqrt(sum / static_cast<long double>(samples.size())));
}

// sin(2 pi step n) in the precision of long double.
long double ExactSine(std::uint64_t step, std::uint64_t n) {
    const auto turns = static_cast<std::int64_t>(step * n);
    return std::sin(std::ldexp(static_cast<long double>(turns), -63) * std::numbers::pi_v<long double>);
}

void Subtract(SampleList& samples, std::uint64_t step, long double amplitude, std::uint64_t first = 0) {
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = static_cast<double>(samples[n] - amplitude * ExactSine(step, first + n));
}

// |X[k]| of sum x exp(-2 pi i k n / N), scaled so that a line reads its amplitude.
SampleList Amplitudes(SampleList samples) {
    const std::size_t length = samples.size();
    std::vector<std::complex<double>> bins(length / 2 + 1);
    fftw_plan plan = fftw_plan_dft_r2c_1d(static_cast<int>(length), samples.data(),
                                          reinterpret_cast<fftw_complex*>(bins.data()), FFTW_ESTIMATE);
    fftw_execute(plan);
    fftw_destroy_plan(plan);
    SampleList amplitudes;
    for (const auto& bin : bins) amplitudes.push_back(2.0 * std::abs(bin) / static_cast<double>(length));
    return amplitudes;
}

TEST(StimulusSignal, SilenceAtFirst) {
    EXPECT_EQ(Peak(Played(StimulusSignal())), 0.0);
}

TEST(StimulusSignal, TheSineIsPreciseAtEveryPhase) {
    double worst = 0;
    for (std::uint64_t i = 0; i < 100000; ++i) {
        const std::uint64_t phase = i * 0x123456789ABCDEFU;
        worst = std::max(worst, static_cast<double>(std::abs(SineOfPhase(phase) - ExactSine(phase, 1))));
    }
    EXPECT_LT(worst, 2.3e-16);
    EXPECT_EQ(SineOfPhase(0), 0.0);
    EXPECT_EQ(SineOfPhase(std::uint64_t{1} << 62U), 1.0);
    EXPECT_EQ(SineOfPhase(std::uint64_t{1} << 63U), 0.0);
    EXPECT_EQ(SineOfPhase(std::uint64_t{3} << 62U), -1.0);
}

// Also after a month at 192 kHz.
TEST(StimulusSignal, SineAndPairsArePureAndDoNotDrift) {
    for (const char* const text : {"sine:24.37", "sine:1000.366", "sine:23000.1", "smpte", "ccif"}) {
        const StimulusSignal signal = RenderStimulus(PlanOf(text, -1.0));
        for (const std::uint64_t frame : {std::uint64_t{0}, std::uint64_t{500'000'000'000}}) {
            SampleList samples = Played(signal, kRecord, frame);
            for (const StimulusLine& line : signal.Lines())
                Subtract(samples, line.step, line.amplitude, frame);
            EXPECT_LT(Peak(samples), 5e-16) << text;
        }
    }
}

TEST(StimulusSignal, TheTonesOfAPairTogetherHaveTheLevel) {
    const auto lines = RenderStimulus(PlanOf("smpte", -6.0)).Lines();
    ASSERT_EQ(lines.size(), 2U);
    const double peak = std::pow(10.0, -6.0 / 20.0);
    EXPECT_DOUBLE_EQ(lines[0].amplitude, 0.8 * peak);
    EXPECT_DOUBLE_EQ(lines[1].amplitude, 0.2 * peak);
    EXPECT_EQ(lines[1].hertz, 7000.0);
}

// Every part has the samples of the whole.
TEST(StimulusSignal, AnyFrameCanBeComputedAgain) {
    for (const char* const text : {"din", "square:100", "pink"}) {
        const StimulusSignal signal = RenderStimulus(PlanOf(text));
        const SampleList whole = Played(signal, 3 * kRecord);
        const SampleList part = Played(signal, 1000, kRecord + 77);
        EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + kRecord + 77)) << text;
    }
}

// The amplitude of harmonic k relative to the fundamental.
double TheoryOf(StimulusShape shape, int k) {
    if (shape == StimulusShape::kSawtooth) return (k % 2 == 0 ? -1.0 : 1.0) / k;
    if (k % 2 == 0) return 0.0;
    if (shape == StimulusShape::kSquare) return 1.0 / k;
    return (k % 4 == 1 ? 1.0 : -1.0) / (static_cast<double>(k) * k);
}

TEST(StimulusSignal, SquareTriangleAndSawtoothHaveTheirHarmonicsAndNothingElse) {
    for (const char* const text : {"square:997", "triangle:440.1", "sawtooth:1234.5", "sawtooth:23.5"}) {
        const StimulusPlan plan = PlanOf(text, -3.0);
        const StimulusSignal signal = RenderStimulus(plan);
        ASSERT_EQ(signal.Lines().size(), 1U);
        const StimulusLine line = signal.Lines()[0];
        SampleList samples = Played(signal);
        EXPECT_DOUBLE_EQ(Peak(samples), std::pow(10.0, -3.0 / 20.0));
        int orders = 0;
        for (int k = 1; k * line.hertz <= 0.45 * 48000.0; ++k, ++orders)
            Subtract(samples, line.step * static_cast<unsigned>(k),
                     static_cast<long double>(line.amplitude) * TheoryOf(plan.shape, k));
        EXPECT_GE(orders, 17);
        EXPECT_LT(Peak(samples), kPure) << text;
    }
}

TEST(StimulusSignal, ARisingSawtoothAndASquareThatBeginsHigh) {
    EXPECT_GT(Played(RenderStimulus(PlanOf("sawtooth:23.5"))).at(500), 0.3);
    EXPECT_GT(Played(RenderStimulus(PlanOf("square:23.5"))).at(500), 0.8);
    EXPECT_GT(Played(RenderStimulus(PlanOf("triangle:23.5"))).at(500), 0.9);
}

TEST(StimulusSignal, AMultitoneIsPureAndHasTheRatios) {
    const StimulusSignal signal = RenderStimulus(PlanOf("multitone:100@0,1000@-20,5000@-120", -2.0));
    const SampleList samples = Played(signal);
    EXPECT_DOUBLE_EQ(Peak(samples), std::pow(10.0, -2.0 / 20.0));
    SampleList amplitudes = Amplitudes(samples);
    ASSERT_EQ(signal.Lines().size(), 3U);
    EXPECT_DOUBLE_EQ(signal.Lines()[1].amplitude, 0.1 * signal.Lines()[0].amplitude);
    for (const StimulusLine& line : signal.Lines()) {
        double& amplitude = amplitudes[static_cast<std::size_t>(std::lround(line.hertz * kRecord / 48000.0))];
        EXPECT_NEAR(amplitude, line.amplitude, 1e-15);
        amplitude = 0;
    }
    EXPECT_LT(Peak(amplitudes), kPure);
}

double CrestOf(std::string_view text) {
    const SampleList samples = Played(RenderStimulus(PlanOf(text, 0.0, 48000.0, 65536)), 65536);
    return Peak(samples) / Rms(samples);
}

// Equal phases give the square root of twice the number of tones.
TEST(StimulusSignal, AMultitoneHasALowCrestFactor) {
    EXPECT_LT(CrestOf("multitone:1/oct"), 3.5);   // 10 tones, equal phases: 4.47
    EXPECT_LT(CrestOf("multitone:3/oct"), 4.0);   // 29 tones, equal phases: 7.6
    EXPECT_LT(CrestOf("multitone:12/oct"), 4.3);  // 103 tones, equal phases: 14.4
    EXPECT_LT(CrestOf("multitone:1000@0,2000@0,3000@0,4000@0,5000@0,6000@0,7000@0,8000@0"), 2.5);
}

TEST(StimulusSignal, NoiseHasRmsAndCrestFactor) {
    for (const std::string_view text : {"white", "pink"}) {
        for (const std::size_t length : {4096U, 65536U}) {
            const SampleList noise = Played(RenderStimulus(PlanOf(text, -20.0, 48000.0, length)), length);
            EXPECT_NEAR(Rms(noise) * std::sqrt(2.0), 0.1, 1e-12);
            EXPECT_LE(Peak(noise) / Rms(noise), kNoiseCrest + 1e-9);
            EXPECT_GT(Peak(noise) / Rms(noise), 3.0);
            double mean = 0;
            for (const double sample : noise) mean += sample / static_cast<double>(length);
            EXPECT_LT(std::abs(mean), 1e-5);
        }
    }
}

double BandPower(const SampleList& amplitudes, double lowHz, double highHz) {
    double power = 0;
    for (std::size_t k = 0; k < amplitudes.size(); ++k) {
        const double hertz = static_cast<double>(k) * 48000.0 / 65536.0;
        if (hertz >= lowHz && hertz < highHz) power += amplitudes[k] * amplitudes[k] / 2.0;
    }
    return power;
}

TEST(StimulusSignal, WhiteNoiseHasEqualPowerPerHertz) {
    const SampleList amplitudes =
        Amplitudes(Played(RenderStimulus(PlanOf("white", 0.0, 48000.0, 65536)), 65536));
    for (double lowHz = 0.0; lowHz < 24000.0; lowHz += 1000.0)
        EXPECT_NEAR(10.0 * std::log10(BandPower(amplitudes, lowHz, lowHz + 1000.0) * 24.0 / 0.5), 0.0, 0.05);
}

TEST(StimulusSignal, PinkNoiseHasEqualPowerPerOctave) {
    const SampleList amplitudes =
        Amplitudes(Played(RenderStimulus(PlanOf("pink", 0.0, 48000.0, 65536)), 65536));
    const double reference = BandPower(amplitudes, 640.0, 1280.0);
    for (double lowHz = 20.0; lowHz < 12000.0; lowHz *= 2.0)
        EXPECT_NEAR(10.0 * std::log10(BandPower(amplitudes, lowHz, 2.0 * lowHz) / reference), 0.0, 0.2);
    EXPECT_LT(BandPower(amplitudes, 0.0, 9.0), 1e-4 * reference);
}

TEST(PeriodTransform, SumsTheLines) {
    constexpr std::size_t kLength = 512;
    std::vector<std::complex<double>> bins(kLength);
    bins[0] = 0.25;
    bins[1] = {0.5, -0.125};
    bins[100] = {0.0, 1.0};
    bins[255] = {-0.75, 0.0};
    const SampleList samples = PeriodTransform(kLength).Synthesize(bins);
    ASSERT_EQ(samples.size(), kLength);
    for (std::size_t n = 0; n < kLength; ++n) {
        long double sum = 0;
        for (const std::size_t k : {0U, 1U, 100U, 255U}) {
            const auto angle =
                2 * std::numbers::pi_v<long double> * static_cast<long double>(k * n % kLength) / kLength;
            sum += bins[k].real() * std::cos(angle) - bins[k].imag() * std::sin(angle);
        }
        ASSERT_NEAR(samples[n], static_cast<double>(sum), 2e-15) << n;
    }
}

}  // namespace
}  // namespace sonavex
