#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/ReferenceMath.h"
#include "unit/dsp/SideBySide.h"

namespace sonavex {
namespace {

TEST(ReferenceMath, FastTransformIsTheNaiveOne) {
    std::vector<double> re;
    std::vector<double> im;
    std::vector<reference::Complex> joined;
    for (int t = 0; t < 256; ++t) {
        re.push_back(std::sin(0.3 * t * t));
        im.push_back(std::cos(1.7 * t));
        joined.emplace_back(re.back(), im.back());
    }
    const auto naive = reference::NaiveDft(re, im);
    const auto fast = reference::Dft(joined);
    const auto back = reference::InverseDft(fast);
    for (std::size_t k = 0; k < 256; ++k) {
        EXPECT_LT(std::abs(naive[k] - fast[k]), 1e-16L) << k;
        EXPECT_LT(std::abs(joined[k] - back[k]), 1e-17L) << k;
    }
}

TEST(Reference, SineOnItsBinMuted) {
    SideBySide both(32000, 25);
    both.Automatic(true);
    both.Mute(true);
    both.Feed(Sine(32000, 1000, 8191.75), 20);
    EXPECT_EQ(both.PeakBin(), 128);
    EXPECT_EQ(both.Shown().txtFreq.Text(), "1000");
}

TEST(Reference, SineOffItsBinPassedThrough) {
    SideBySide both(48000, 20);
    both.Automatic(true);
    both.Feed(Sine(48000, 1003.7, 20000, 0.6), 38);
    EXPECT_NE(both.Shown().lblThd.Caption(), "");
}

TEST(Reference, BothSamplesDifferent) {
    SideBySide both(44100, 25);
    both.Automatic(true);
    both.Feed(Pair(Sine(44100, 1500, 12000), Sine(44100, 410, 7000, 1.0)), 20);
    both.Mute(true);
    both.Feed(Pair(Sine(44100, 300, 9000), Silence()), 20);
}

TEST(Reference, NoiseWithAndWithoutLock) {
    SideBySide both(22050, 20);
    both.Automatic(true);
    both.Feed(Noise(30000, 1), 10);
    both.Automatic(false);
    both.Feed(Noise(300, 2), 10);
    both.Feed(Sum(Noise(100, 3), Sine(22050, 1001, 9000)), 18);
}

TEST(Reference, FullScaleSineIsLimited) {
    SideBySide both(32000, 25);
    both.Automatic(true);
    both.Feed(Sine(32000, 5000, 32767), 20);
    EXPECT_EQ(both.Shown().lblDACLevel.Caption(), "Ovr");
}

TEST(Reference, SilenceAfterASignal) {
    SideBySide both(16000, 25);
    both.Automatic(true);
    both.Feed(Sine(16000, 777, 15000), 3);
    both.Feed(Silence(), 4);
    EXPECT_EQ(both.Shown().LblLevel.Caption(), "Ovr");
    EXPECT_EQ(both.PeakBin(), 0);
}

TEST(Reference, GeneratorOverThePassedSignal) {
    SideBySide both(32000, 25);
    both.Automatic(true);
    both.Feed(Sine(32000, 440, 4000), 2);
    both.Play(wave::kSine, 1234.5);
    both.Feed(Sine(32000, 440, 4000), 2);
    both.Play(wave::kSquare, 97.0);
    both.Play(wave::kTriangle, 3000.0);
    both.Play(wave::kSawtooth, 555.0);
    both.Feed(Sine(32000, 440, 30000), 4);
    both.Mute(true);
    both.Feed(Sine(32000, 440, 30000), 4);
}

TEST(Reference, EveryWaveform) {
    for (const std::int16_t waveType : {wave::kSine, wave::kSquare, wave::kTriangle, wave::kSawtooth}) {
        SCOPED_TRACE(kWaveNames[static_cast<std::size_t>(waveType)]);
        SideBySide both(48000, 25);
        both.Automatic(true);
        both.Mute(true);
        for (int i = 0; i < 9; ++i) {
            both.Play(waveType, 440.0 + 317.0 * i);
            both.Feed(Sine(48000, 1003.7, 9000), 1);
        }
        both.Mute(false);
        both.Feed(Sine(48000, 1003.7, 9000), 3);
    }
}

TEST(Reference, FixedFrequencyAndBaseline) {
    SideBySide both(32000, 20);
    both.Frequency("1000");
    both.Baseline(0.3);
    const StereoSignal distorted = Sum(Sine(32000, 1000, 9000), Sine(32000, 3000, 90, 0.4));
    both.Feed(distorted, 20);
    both.Frequency("1200");
    both.Feed(distorted, 10);
    both.Frequency("990");
    both.Feed(distorted, 8);
}

TEST(Reference, EveryRate) {
    for (const std::int32_t rate : {48000, 44100, 32000, 22050, 16000, 8000, 4000}) {
        SCOPED_TRACE(rate);
        SideBySide both(rate, 25);
        both.Automatic(true);
        const double frequency = rate / 61.7;
        both.Feed(Sum(Sine(rate, frequency, 10000), Sine(rate, 2 * frequency, 700, 2.0)), 19);
    }
}

}  // namespace
}  // namespace sonavex
