#include <gtest/gtest.h>

#include <string>

#include "support/AnalysisRig.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

constexpr std::int32_t kRate = 32000;  // bins of 7.8125 Hz; bin 128 is 1000 Hz

bool Locked(AnalysisRig& rig) {
    EXPECT_EQ(rig.controls.picLocked.BackColor(), rig.controls.GenLocked.BackColor());
    EXPECT_EQ(rig.controls.picLocked.BackColor(), rig.state->FreqLocked ? kLightGreen : kLightRed);
    return rig.state->FreqLocked;
}

bool LockedAt(const std::string& text, std::int32_t bin = 128) {
    AnalysisRig rig(kRate);
    rig.controls.chkAuto.SetValue(0);
    rig.controls.txtFreq.SetText(text);
    rig.FeedLines({{bin, 1000.0}});
    EXPECT_EQ(rig.controls.txtFreq.Text(), text);
    return Locked(rig);
}

TEST(Lock, HoldsNearerThan14HzOnBothSides) {
    EXPECT_TRUE(LockedAt("1000"));
    EXPECT_TRUE(LockedAt("1013"));
    EXPECT_TRUE(LockedAt("987"));
    EXPECT_FALSE(LockedAt("1014"));
    EXPECT_FALSE(LockedAt("986"));
    EXPECT_FALSE(LockedAt("2000"));
}

bool LockedOnSine(std::int32_t rateHz, double frequencyHz, std::int32_t typedHz) {
    AnalysisRig rig(rateHz);
    rig.controls.chkAuto.SetValue(0);
    rig.controls.txtFreq.SetText(std::to_string(typedHz));
    rig.Feed(Sine(rateHz, frequencyHz, 16000.0), 3);
    return Locked(rig);
}

// A bin of 192000 Hz is 46.875 Hz wide: the range is 24.4375 Hz.
TEST(Lock, RangeIsHalfABinAnd1HzWhereThatIsMore) {
    const auto locked = [](std::int32_t rateHz, std::int32_t bin, const char* text) {
        AnalysisRig rig(rateHz);
        rig.controls.chkAuto.SetValue(0);
        rig.controls.txtFreq.SetText(text);
        rig.FeedLines({{bin, 1000.0}});
        return Locked(rig);
    };
    // Bin 64 is at 3000 Hz.
    EXPECT_TRUE(locked(192000, 64, "3024"));
    EXPECT_TRUE(locked(192000, 64, "2976"));
    EXPECT_FALSE(locked(192000, 64, "3025"));
    EXPECT_FALSE(locked(192000, 64, "2975"));
    // Bin 70 of 176400 Hz is at 3014.6 Hz, taken as 3014; the range is 22.53 Hz.
    EXPECT_TRUE(locked(176400, 70, "3036"));
    EXPECT_FALSE(locked(176400, 70, "3037"));
    // Bin 128 of 96000 Hz is at 3000 Hz; half a bin and 1 Hz are 12.7 Hz.
    EXPECT_TRUE(locked(96000, 128, "3013"));
    EXPECT_FALSE(locked(96000, 128, "3014"));
}

TEST(Lock, HoldsOnEveryFrequencyThatIsTypedAtExtendedRates) {
    for (const std::int32_t rateHz : {88200, 96000, 176400, 192000})
        for (std::int32_t hertz = 1000; hertz < 1100; hertz += 3)
            EXPECT_TRUE(LockedOnSine(rateHz, hertz, hertz)) << hertz << " Hz at " << rateHz;
    EXPECT_FALSE(LockedOnSine(192000, 1000, 1060));
}

TEST(Lock, ComparesWholeHertz) {
    // Bin 129 is at 1007.8 Hz, taken as 1007.
    EXPECT_FALSE(LockedAt("1021", 129));
    EXPECT_TRUE(LockedAt("1020", 129));
    EXPECT_TRUE(LockedAt("994", 129));
    EXPECT_FALSE(LockedAt("993", 129));
}

TEST(Lock, RoundsTheTextHalvesToEven) {
    EXPECT_TRUE(LockedAt("986.51"));
    EXPECT_FALSE(LockedAt("986.5"));
    EXPECT_TRUE(LockedAt("1013.49"));
    EXPECT_FALSE(LockedAt("1013.5"));
    EXPECT_TRUE(LockedAt("1000 Hz"));
    EXPECT_TRUE(LockedAt("  1E3"));
}

TEST(Lock, NothingLocksOnZero) {
    EXPECT_FALSE(LockedAt("0", 1));  // 7 Hz: within 14 Hz of 0
    EXPECT_FALSE(LockedAt("", 1));
    EXPECT_FALSE(LockedAt("abc", 1));
    EXPECT_FALSE(LockedAt("0.5", 1));
    EXPECT_TRUE(LockedAt("0.51", 1));
    EXPECT_TRUE(LockedAt("-6", 1));
    EXPECT_FALSE(LockedAt("-7", 1));
}

TEST(Lock, AutomaticWritesThePeakRoundedDown) {
    AnalysisRig rig(48000);
    rig.controls.txtFreq.SetText("17000");
    rig.FeedLines({{85, 500.0}});  // 996.09 Hz
    EXPECT_EQ(rig.controls.txtFreq.Text(), "996");
    EXPECT_EQ(rig.state->FundamentalHz, 996);
    EXPECT_TRUE(Locked(rig));
    rig.FeedLines({{86, 500.0}});  // 1007.81 Hz
    EXPECT_EQ(rig.controls.txtFreq.Text(), "1007");
}

TEST(Lock, AutomaticDoesNotLockOnSilence) {
    AnalysisRig rig(kRate);
    rig.Feed(Silence(), 1);
    EXPECT_EQ(rig.state->PeakBin, 0);
    EXPECT_EQ(rig.controls.txtFreq.Text(), "0");
    EXPECT_FALSE(Locked(rig));
    EXPECT_EQ(rig.controls.lblThd.Caption(), "N/A");
}

TEST(Lock, LosingItEmptiesTheCaptions) {
    AnalysisRig rig(kRate);
    rig.FeedLines({{128, 1000.0}, {256, 10.0}}, 18);
    EXPECT_EQ(rig.Percentages().substr(0, 7), "0.9473 ");
    rig.controls.chkAuto.SetValue(0);
    rig.controls.txtFreq.SetText("2000");
    rig.FeedLines({{128, 1000.0}, {256, 10.0}});
    EXPECT_FALSE(Locked(rig));
    EXPECT_EQ(rig.Percentages(), "- - - - - - - -");
    EXPECT_EQ(rig.Levels(), "- - - - - - - -");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "N/A");
}

TEST(Peak, TheLowestOfEqualsWins) {
    AnalysisRig rig(kRate);
    rig.FeedLines({{100, 50.0}, {300, 50.0}, {2048, 50.0}});
    EXPECT_EQ(rig.state->PeakBin, 100);
    EXPECT_EQ(rig.state->PeakMag, 50);
}

TEST(Peak, IsComparedWithTheRoundedBestSoFar) {
    AnalysisRig rig(kRate);
    // 50.4 counts as 50: the lower 50.2 beats it.
    rig.FeedLines({{100, 50.4}, {300, 50.2}});
    EXPECT_EQ(rig.state->PeakBin, 300);
    EXPECT_EQ(rig.state->PeakMag, 50);
    // 49.6 counts as 50: the higher 49.9 does not.
    rig.FeedLines({{100, 49.6}, {300, 49.9}});
    EXPECT_EQ(rig.state->PeakBin, 100);
    EXPECT_EQ(rig.state->PeakMag, 50);
    // Halves go to the even neighbour.
    rig.FeedLines({{100, 50.5}, {300, 50.1}});
    EXPECT_EQ(rig.state->PeakBin, 300);
    rig.FeedLines({{100, 51.5}, {300, 51.9}});
    EXPECT_EQ(rig.state->PeakBin, 100);
    EXPECT_EQ(rig.state->PeakMag, 52);
}

TEST(Peak, AnyMagnitudeBeatsNone) {
    AnalysisRig rig(kRate);
    rig.FeedLines({{5, 0.25}, {7, 0.125}});
    EXPECT_EQ(rig.state->PeakBin, 7);
    EXPECT_EQ(rig.state->PeakMag, 0);
}

TEST(Peak, MagnitudesEndInTheMiddleOfTheSpectrum) {
    AnalysisRig rig(32000);
    rig.FeedLines({{2048, 10.0}, {2049, 10.0}});
    EXPECT_EQ(rig.state->SpecMag[2048], 10.0);
    EXPECT_EQ(rig.state->SpecMag[2049], 0.0);
}

TEST(Peak, IsSearchedInBins1To2048) {
    AnalysisRig rig(kRate);
    rig.FeedLines({{0, 1e6}, {1, 3.0}});
    EXPECT_EQ(rig.state->PeakBin, 1);
    rig.FeedLines({{2047, 3.0}, {2048, 4.0}, {2049, 100.0}, {4095, 100.0}});
    EXPECT_EQ(rig.state->PeakBin, 2048);
    EXPECT_EQ(rig.controls.txtFreq.Text(), "16000");
}

TEST(Failures, AFrequencyTextThatNoWholeNumberHolds) {
    AnalysisRig rig(kRate);
    rig.controls.chkAuto.SetValue(0);
    for (const char* text : {"1e300", "2147483648", "-1e10"}) {
        rig.controls.txtFreq.SetText(text);
        rig.playback.fill(77);
        EXPECT_EQ(ErrorOf([&] { return rig.FeedLines({{128, 100.0}}), 0; }), 6) << text;
        EXPECT_EQ(rig.playback[0], 77) << text;
    }
}

TEST(Failures, ALockOnSilenceDividesByZero) {
    AnalysisRig rig(kRate);
    rig.controls.chkAuto.SetValue(0);
    rig.controls.txtFreq.SetText("5");
    EXPECT_EQ(ErrorOf([&] { return rig.Feed(Silence(), 1), 0; }), 11);
    EXPECT_TRUE(Locked(rig));
    // Too far from the peak at 0 Hz: no lock, and no error.
    rig.controls.txtFreq.SetText("14");
    rig.Feed(Silence(), 1);
    EXPECT_FALSE(Locked(rig));
}

TEST(Failures, ShortArrays) {
    AnalysisRig rig(kRate);
    Block captured{};
    const auto process = [&](std::size_t capturedSize, std::size_t playbackSize) {
        return ErrorOf([&] {
            modDSP::ProcessCapturedBlock(*rig.state, rig.display.Inputs(kRate), rig.readings, rig.generator,
                                         std::span(captured).first(capturedSize),
                                         std::span(rig.playback).first(playbackSize));
            return 0;
        });
    };
    EXPECT_EQ(process(4095, 4096), 9);
    EXPECT_EQ(process(4096, 4095), 9);
    EXPECT_EQ(process(0, 0), 9);
    EXPECT_EQ(process(4096, 4096), 0);
}

}  // namespace
}  // namespace sonavex
