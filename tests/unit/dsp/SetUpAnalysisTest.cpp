#include <gtest/gtest.h>

#include <cmath>

#include "core/dsp/modDSP.h"
#include "core/settings/SampleRates.h"
#include "support/AnalysisRig.h"
#include "support/Errors.h"
#include "support/ReferenceMath.h"

namespace sonavex {
namespace {

// Frequency response at one bin, in dB.
double GainDb(const modDSP::State& state, double hz) {
    const auto bin = static_cast<std::size_t>(std::lround(hz / static_cast<double>(state.BinWidth)));
    return 20.0 * std::log10(std::hypot(state.FilterRe[bin], state.FilterIm[bin]));
}

TEST(SetUpAnalysis, ValuesOfEveryRate) {
    struct Expected {
        std::int32_t rate;
        float binWidth;
        std::int32_t cutoffBin;
    };
    // The upper edge is half the rate less 100 Hz.
    for (const Expected& expected :
         {Expected{48000, 11.71875F, 2039}, Expected{44100, 10.76660156F, 2039},
          Expected{32000, 7.8125F, 2035}, Expected{22050, 5.38330078F, 2029}, Expected{16000, 3.90625F, 2022},
          Expected{8000, 1.953125F, 1997}, Expected{4000, 0.9765625F, 1946}}) {
        for (const std::int32_t lowHz : {25, 20}) {
            const AnalysisRig rig(expected.rate, lowHz);
            const double highHz = expected.rate / 2 - 100;
            EXPECT_EQ(rig.state->BinWidth, expected.binWidth) << expected.rate;
            EXPECT_EQ(rig.state->CutoffBin, expected.cutoffBin) << expected.rate;
            EXPECT_EQ(rig.state->FftOrder, 12) << expected.rate;
            EXPECT_EQ(rig.state->LowFraction, static_cast<double>(lowHz) / expected.rate) << expected.rate;
            EXPECT_EQ(rig.state->HighFraction, highHz / expected.rate) << expected.rate;
        }
    }
}

TEST(SetUpAnalysis, CutoffBinRoundsHalvesToEven) {
    AnalysisRig rig(4096);                              // bins of 1 Hz
    modDSP::SetUpAnalysis(*rig.state, 8192, 20, 2001);  // bin 1000.5
    EXPECT_EQ(rig.state->CutoffBin, 1000);
    modDSP::SetUpAnalysis(*rig.state, 8192, 20, 2003);  // bin 1001.5
    EXPECT_EQ(rig.state->CutoffBin, 1002);
}

TEST(SetUpAnalysis, TapsAreTheWindowedSinc) {
    for (const std::int32_t rate : SampleRateTable) {
        for (const std::int32_t lowHz : {25, 20}) {
            const AnalysisRig rig(rate, lowHz);
            const auto taps = reference::Bandpass(static_cast<long double>(lowHz) / rate,
                                                  static_cast<long double>(rate / 2 - 100) / rate, 2048);
            for (std::size_t n = 0; n < taps.size(); ++n)
                ASSERT_NEAR(rig.state->FilterTaps[n], taps[n], 1e-13) << rate << ' ' << lowHz << ' ' << n;
            for (std::size_t n = taps.size(); n < modDSP::kVectorSize; ++n)
                ASSERT_EQ(rig.state->FilterTaps[n], 0.0) << n;
        }
    }
}

TEST(SetUpAnalysis, ResponseIsTheTransformOfTheTaps) {
    const AnalysisRig rig(32000);
    const std::span<const double> taps(rig.state->FilterTaps);
    for (const std::size_t bin : {0U, 1U, 3U, 128U, 1000U, 2035U, 2048U, 2500U, 4095U}) {
        const auto expected = reference::DftAt(taps.first(2048), static_cast<long double>(bin) / 4096.0L);
        EXPECT_NEAR(rig.state->FilterRe[bin], static_cast<double>(expected.real()), 1e-14) << bin;
        EXPECT_NEAR(rig.state->FilterIm[bin], static_cast<double>(expected.imag()), 1e-14) << bin;
    }
}

TEST(SetUpAnalysis, BandPassesAndStops) {
    for (const std::int32_t rate : SampleRateTable) {
        const AnalysisRig rig(rate);
        EXPECT_NEAR(GainDb(*rig.state, rate / 4.0), 0.0, 0.001) << rate;
        EXPECT_NEAR(GainDb(*rig.state, rate / 10.0), 0.0, 0.001) << rate;
        EXPECT_LT(GainDb(*rig.state, rate / 2.0), -5.0) << rate;
    }
    const AnalysisRig narrow(4000);
    EXPECT_LT(GainDb(*narrow.state, 15.0), -20.0);
    EXPECT_LT(GainDb(*narrow.state, 1950.0), -70.0);
}

TEST(SetUpAnalysis, LowEdgeMovesTheResponse) {
    const AnalysisRig start(4000, 25);
    const AnalysisRig restarted(4000, 20);
    EXPECT_NEAR(GainDb(*start.state, 25.39), -5.5, 1.0);
    EXPECT_GT(GainDb(*restarted.state, 25.39), -0.6);
}

TEST(SetUpAnalysis, FollowsAChangedRate) {
    AnalysisRig rig(48000);
    const AnalysisRig other(8000, 20);
    modDSP::SetUpAnalysis(*rig.state, 8000, 20, 3900);
    EXPECT_EQ(rig.state->BinWidth, other.state->BinWidth);
    EXPECT_EQ(rig.state->FilterTaps, other.state->FilterTaps);
    EXPECT_EQ(rig.state->FilterRe, other.state->FilterRe);
    EXPECT_EQ(rig.state->FilterIm, other.state->FilterIm);
}

TEST(SetUpAnalysis, KeepsHistoryAndTails) {
    AnalysisRig rig(32000);
    rig.Feed(Sine(32000, 1000, 9000), 5);
    const auto tail = rig.state->TailA;
    modDSP::SetUpAnalysis(*rig.state, 32000, 20, 15900);
    EXPECT_EQ(rig.state->HistIndex, 5);
    EXPECT_EQ(rig.state->TailA, tail);
    EXPECT_NE(rig.state->TailA[0], 0.0);
}

TEST(SetUpAnalysis, NeedsARate) {
    AnalysisRig rig(32000);
    EXPECT_EQ(ErrorOf([&] { return modDSP::SetUpAnalysis(*rig.state, 0, 20, 100), 0; }), 11);
    const auto errorAt = [&](std::int32_t rateHz) {
        return ErrorOf([&] { return modDSP::SetUpAnalysis(*rig.state, rateHz, 0, 1), 0; });
    };
    EXPECT_EQ(errorAt(0), 11);
    EXPECT_EQ(errorAt(-1), 11);
    EXPECT_EQ(errorAt(1), 0);
}

}  // namespace
}  // namespace sonavex
