#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/text/Numbers.h"
#include "support/AnalysisRig.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using Line = AnalysisRig::Line;

// Caption of one slot's ratio averaged over the 19 of a cycle.
std::string CyclePctText(double pct) {
    return Format(pct / 19.0, Pattern::kPercent);
}
std::string Db(double ratio) {
    return Format(20.0 * std::log10(ratio / 19.0), Pattern::kTwoByTwo);
}

TEST(Harmonics, PercentagesAreCumulativeAndRelativeToTheWhole) {
    AnalysisRig rig(32000);
    std::vector<Line> lines{{100, 1000.0}};
    for (std::int32_t n = 2; n <= 9; ++n) lines.emplace_back(100 * n, 10.0 * n);
    rig.MeasureLines(lines);
    double harm = 0.0;
    for (std::int32_t n = 2; n <= 9; ++n) {
        const auto i = static_cast<std::size_t>(n - 2);
        harm += 100.0 * n * n;
        EXPECT_EQ(rig.controls.lbltest[i].Caption(),
                  CyclePctText(100.0 * std::sqrt(harm) / std::sqrt(1e6 + harm)))
            << n;
        EXPECT_EQ(rig.controls.lblDb[i].Caption(), Db(0.01 * n)) << n;
    }
    EXPECT_EQ(rig.controls.lblThd.Caption(), rig.controls.lbltest[7].Caption());
}

TEST(Harmonics, OnlyTheExactMultiplesCount) {
    AnalysisRig rig(32000);
    rig.MeasureLines({{100, 1000.0}, {199, 500.0}, {201, 500.0}, {299, 500.0}, {301, 500.0}, {50, 900.0}});
    EXPECT_EQ(rig.Percentages(), "N/A N/A N/A N/A N/A N/A N/A N/A");
    EXPECT_EQ(rig.Levels(), "N/A N/A N/A N/A N/A N/A N/A N/A");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "N/A");
}

TEST(Harmonics, HighestUsableBinOfEveryRate) {
    const struct {
        std::int32_t rate;
        std::int32_t maxBin;
    } rates[] = {{48000, 1916}, {44100, 1913}, {32000, 1875}, {22050, 2005},
                 {16000, 1750}, {8000, 1500},  {4000, 1000}};
    for (const auto& [rate, maxBin] : rates) {
        AnalysisRig rig(rate);
        for (std::int32_t n = 2; n <= 9; ++n) {
            const auto i = static_cast<std::size_t>(n - 2);
            const std::int32_t last = (maxBin - 1) / n;
            rig.MeasureLines({{last, 1000.0}, {n * last, 10.0}});
            EXPECT_EQ(rig.controls.lblDb[i].Caption(), Db(0.01)) << rate << ' ' << n;
            EXPECT_NE(rig.controls.lbltest[i].Caption(), "N/A") << rate << ' ' << n;
            // One bin further, the harmonic is at MaxBin or beyond; only the 2nd keeps its percentage.
            rig.MeasureLines({{last + 1, 1000.0}, {n * (last + 1), 10.0}});
            EXPECT_EQ(rig.controls.lblDb[i].Caption(), "N/A") << rate << ' ' << n;
            EXPECT_EQ(rig.controls.lbltest[i].Caption() == "N/A", n > 2) << rate << ' ' << n;
        }
    }
}

TEST(Harmonics, TheSecondHasAPercentageUpToBin2046) {
    AnalysisRig rig(32000);
    const double pct = 100.0 * 10.0 / std::sqrt(1e6 + 100.0);
    for (const std::int32_t k : {938, 1000, 1023}) {  // 2 k = 1876 to 2046, all beyond 1875
        rig.MeasureLines({{k, 1000.0}, {2 * k, 10.0}});
        EXPECT_EQ(rig.Percentages(), CyclePctText(pct) + " N/A N/A N/A N/A N/A N/A N/A") << k;
        EXPECT_EQ(rig.Levels(), "N/A N/A N/A N/A N/A N/A N/A N/A") << k;
        EXPECT_EQ(rig.controls.lblThd.Caption(), CyclePctText(pct)) << k;
    }
    for (const std::int32_t k : {1024, 1500, 2047, 2048}) {
        rig.MeasureLines({{k, 1000.0}, {std::min(2 * k, 4096), 10.0}});
        EXPECT_EQ(rig.Percentages(), "N/A N/A N/A N/A N/A N/A N/A N/A") << k;
        EXPECT_EQ(rig.Levels(), "N/A N/A N/A N/A N/A N/A N/A N/A") << k;
        EXPECT_EQ(rig.controls.lblThd.Caption(), "N/A") << k;
    }
}

TEST(Harmonics, BeyondMaxBinThePercentageIsNotTheOneBefore) {
    AnalysisRig rig(32000);
    // 500 Hz bins: 2nd and 3rd fit below 1875, the 4th at 2000 does not.
    rig.MeasureLines({{500, 1000.0}, {1000, 30.0}, {1500, 40.0}, {2000, 90.0}});
    const std::string second = CyclePctText(100.0 * 30.0 / std::sqrt(1e6 + 900.0));
    const std::string third = CyclePctText(100.0 * 50.0 / std::sqrt(1e6 + 2500.0));
    EXPECT_EQ(rig.Percentages(), second + " " + third + " N/A N/A N/A N/A N/A N/A");
    EXPECT_EQ(rig.Levels(), Db(0.03) + " " + Db(0.04) + " N/A N/A N/A N/A N/A N/A");
    EXPECT_EQ(rig.controls.lblThd.Caption(), third);
}

TEST(Harmonics, TotalIsTheHighestPercentageThatIsAvailable) {
    AnalysisRig rig(32000);
    // A harmonic of 0 keeps the sum of the lower ones and is available.
    rig.MeasureLines({{300, 1000.0}, {600, 20.0}});
    const std::string second = CyclePctText(100.0 * 20.0 / std::sqrt(1e6 + 400.0));
    EXPECT_EQ(rig.Percentages(),
              second + " " + second + " " + second + " " + second + " " + second + " N/A N/A N/A");
    EXPECT_EQ(rig.controls.lblThd.Caption(), second);
    EXPECT_EQ(rig.Levels(), Db(0.02) + " N/A N/A N/A N/A N/A N/A N/A");
}

TEST(Harmonics, ReadingsAreKeptForTheBaseline) {
    AnalysisRig rig(32000);
    rig.MeasureLines({{500, 1000.0}, {1000, 30.0}, {1500, 40.0}});
    EXPECT_EQ(rig.state->CurrentPct[0], Val(rig.controls.lbltest[0].Caption()));
    EXPECT_EQ(rig.state->CurrentPct[1], Val(rig.controls.lbltest[1].Caption()));
    EXPECT_EQ(rig.state->CurrentPct[2], 0.0);
    EXPECT_NEAR(rig.state->CurrentDb[0], 20.0 * std::log10(0.03 / 19.0), 1e-12);
    EXPECT_NEAR(rig.state->CurrentDb[1], 20.0 * std::log10(0.04 / 19.0), 1e-12);
    EXPECT_EQ(rig.state->CurrentDb[2], 0.0);
    // "N/A" resets a percentage to 0; the dB keep the last computed value.
    rig.MeasureLines({{1100, 1000.0}});
    EXPECT_EQ(rig.state->CurrentPct[0], 0.0);
    EXPECT_EQ(rig.state->CurrentPct[1], 0.0);
    EXPECT_NEAR(rig.state->CurrentDb[0], 20.0 * std::log10(0.03 / 19.0), 1e-12);
    EXPECT_NEAR(rig.state->CurrentDb[1], 20.0 * std::log10(0.04 / 19.0), 1e-12);
}

TEST(Harmonics, OfAPeakOutsideTheSpectrumAreAnError) {
    for (const auto& [bin, number] : {std::pair{-1, 9}, std::pair{4097, 9}, std::pair{4096, 0}}) {
        AnalysisRig rig(32000);
        rig.state->PeakBin = bin;
        EXPECT_EQ(ErrorOf([&] {
                      return modDSP::MeasureHarmonics(*rig.state, rig.display.Inputs(32000), rig.readings), 0;
                  }),
                  number)
            << bin;
    }
}

TEST(Harmonics, NeitherReadingIsShownBeforeTheCycleEnds) {
    AnalysisRig rig(32000);
    rig.FeedLines({{100, 1000.0}, {200, 10.0}}, 17);
    EXPECT_EQ(rig.state->HistIndex, 17);
    EXPECT_EQ(rig.Percentages(), "- - - - - - - -");
    EXPECT_EQ(rig.state->CurrentPct[0], 0.0);
    EXPECT_EQ(rig.state->CurrentDb[0], 0.0);
}

TEST(Harmonics, TheReadingsFundamentalAndRateAreThoseOfTheCyclesLastBlock) {
    AnalysisRig rig(32000);
    rig.FeedLines({{100, 1000.0}, {200, 10.0}}, 17);
    EXPECT_EQ(rig.state->CurrentHz, 0);
    EXPECT_EQ(rig.state->CurrentRate, 0);
    rig.FeedLines({{128, 1000.0}, {256, 10.0}});
    EXPECT_EQ(rig.state->CurrentHz, 1000);
    EXPECT_EQ(rig.state->CurrentRate, 32000);
    rig.shared.SampleRate = 48000;
    rig.FeedLines({{100, 1000.0}, {200, 10.0}});
    EXPECT_EQ(rig.state->CurrentHz, 1000) << "a new cycle has only begun";
    EXPECT_EQ(rig.state->CurrentRate, 32000);
}

}  // namespace
}  // namespace sonavex
