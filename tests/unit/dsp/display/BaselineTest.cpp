#include <gmock/gmock.h>

#include "core/dsp/display/Baseline.h"
#include "support/World.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

struct BaselineRig : World {
    Settings settings{store};
    SharedState shared;
    modDSP::State analysis;
    MeasurementControls meter;
    Baseline baseline{shared, settings, dialogs, analysis, meter};

    std::string Stored(const char* key) const { return store.Get("Settings", key, "none"); }
};

TEST(BaselineCapture, BeforeAnyReadingStoresZeros) {
    BaselineRig rig;
    rig.baseline.cmdBaseline.Press();
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(rig.Stored(("THD " + std::to_string(i)).c_str()), " 0");
        EXPECT_EQ(rig.Stored(("DB " + std::to_string(i)).c_str()), " 0");
    }
    EXPECT_THAT(rig.log.Of("Message"), ElementsAre("Message information Baseline calculations captured"));
}

TEST(BaselineCapture, StoresAndTakesTheReadings) {
    BaselineRig rig;
    rig.analysis.CurrentPct = {0.8399, 0.5, 0, 0, 0, 0, 0, 1.25};
    rig.analysis.CurrentDb = {-42.98, 0, 0, 0, 0, 0, 0, -60};
    rig.baseline.cmdBaseline.Press();
    EXPECT_EQ(rig.Stored("THD 0"), " .8399");
    EXPECT_EQ(rig.Stored("THD 7"), " 1.25");
    EXPECT_EQ(rig.Stored("DB 0"), "-42.98");
    EXPECT_EQ(rig.analysis.BaselinePct, rig.analysis.CurrentPct);
    EXPECT_EQ(rig.analysis.BaselineDb, rig.analysis.CurrentDb);
    EXPECT_FALSE(rig.meter.chkBaseline.Checked());
}

// The box was unchecked, and no cycle has ended since.
TEST(BaselineCapture, AfterACorrectedUpdateStoresWhatWasMeasured) {
    BaselineRig rig;
    rig.analysis.CurrentPct = {0.0, -0.25, 0.5};
    rig.analysis.UncorrectedPct = {0.83994, 0.25, std::nullopt, 0.0};
    rig.baseline.cmdBaseline.Press();
    EXPECT_THAT(rig.analysis.BaselinePct, ElementsAre(0.8399, 0.25, 0.5, 0, 0, 0, 0, 0));
    EXPECT_EQ(rig.Stored("THD 0"), " .8399");
    EXPECT_EQ(rig.Stored("THD 1"), " .25");
    EXPECT_EQ(rig.Stored("THD 2"), " .5");
    EXPECT_EQ(rig.Stored("THD 3"), " 0");
}

TEST(BaselineBox, LoadsWhatIsStoredAndLocksTheCapture) {
    BaselineRig rig;
    rig.store.Save("Settings", "THD 1", " .25");
    rig.store.Save("Settings", "DB 1", "-52.5");
    rig.meter.chkBaseline.UserSets(true);
    EXPECT_EQ(rig.Stored("Baseline"), " 1");
    EXPECT_DOUBLE_EQ(rig.analysis.BaselinePct[1], 0.25);
    EXPECT_DOUBLE_EQ(rig.analysis.BaselineDb[1], -52.5);
    EXPECT_FALSE(rig.baseline.cmdBaseline.Enabled());
    rig.meter.chkBaseline.UserSets(false);
    EXPECT_EQ(rig.Stored("Baseline"), " 0");
    EXPECT_TRUE(rig.baseline.cmdBaseline.Enabled());
}

TEST(AutomaticBox, DecidesWhoWritesTheFrequency) {
    BaselineRig rig;
    rig.meter.chkAuto.UserSets(true);
    EXPECT_FALSE(rig.meter.txtFreq.Enabled());
    EXPECT_EQ(rig.Stored("Auto"), "1");
    rig.meter.chkAuto.UserSets(false);
    EXPECT_TRUE(rig.meter.txtFreq.Enabled());
    EXPECT_EQ(rig.Stored("Auto"), "0");
}

TEST(StoredBaseline, IsReadAtStartOnlyWhereItIsApplied) {
    BaselineRig rig;
    rig.store.Save("Settings", "THD 0", " 1E400");
    rig.store.Save("Settings", "Baseline", " 0");
    rig.baseline.RestoreBoxes();
    EXPECT_TRUE(rig.baseline.cmdBaseline.Enabled());
    EXPECT_EQ(rig.analysis.BaselinePct[0], 0.0);
    rig.store.Save("Settings", "Baseline", " 1");
    try {
        rig.baseline.RestoreBoxes();
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), error_number::kOverflow);
        EXPECT_THAT(error.what(), testing::HasSubstr("\"THD 0\""));
    }
}

TEST(StoredBaseline, NamesTheKeyOfABoxThatNoBoxCanHave) {
    BaselineRig rig;
    rig.store.Save("Settings", "Baseline", "99999");
    try {
        rig.baseline.RestoreBoxes();
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), error_number::kOverflow);
        EXPECT_THAT(error.what(), testing::HasSubstr("\"Baseline\""));
    }
}

TEST(StoredBaseline, OfUnusableConditionsIsOneOfUnknownConditions) {
    BaselineRig rig;
    rig.store.Save("Settings", "Baseline", "1");
    rig.store.Save("Face", "Baseline Frequency", "1e300");
    rig.store.Save("Face", "Baseline Rate", "1E400");
    rig.baseline.RestoreBoxes();
    rig.analysis.FreqLocked = true;
    rig.analysis.FundamentalHz = 1000;
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
    EXPECT_TRUE(rig.meter.chkBaseline.Checked());
}

TEST(BaselineOfElsewhere, IsRecognisedByFrequencyAndRate) {
    BaselineRig rig;
    rig.shared.SampleRate = 48000;
    rig.analysis.FundamentalHz = 1500;  // changed since the last readings
    rig.analysis.CurrentHz = 996;
    rig.analysis.CurrentRate = 48000;
    rig.analysis.FreqLocked = true;
    rig.baseline.cmdBaseline.Press();
    rig.meter.chkBaseline.UserSets(true);
    EXPECT_TRUE(rig.baseline.CapturedElsewhere());
    rig.analysis.FundamentalHz = 996;
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
    rig.analysis.FundamentalHz = 1009;
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
    rig.analysis.FundamentalHz = 1010;
    EXPECT_TRUE(rig.baseline.CapturedElsewhere());
    rig.analysis.FreqLocked = false;
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
    rig.analysis.FreqLocked = true;
    rig.analysis.FundamentalHz = 996;
    rig.shared.SampleRate = 44100;
    EXPECT_TRUE(rig.baseline.CapturedElsewhere());
    rig.meter.chkBaseline.UserSets(false);
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
}

// The rate was changed after the readings, and no cycle has ended since.
TEST(BaselineOfElsewhere, HasTheRateOfItsReadings) {
    BaselineRig rig;
    rig.shared.SampleRate = 48000;
    rig.analysis.CurrentHz = 996;
    rig.analysis.CurrentRate = 44100;
    rig.analysis.FundamentalHz = 996;
    rig.analysis.FreqLocked = true;
    rig.baseline.cmdBaseline.Press();
    rig.meter.chkBaseline.UserSets(true);
    EXPECT_TRUE(rig.baseline.CapturedElsewhere());
    rig.shared.SampleRate = 44100;
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
}

TEST(BaselineOfElsewhere, IsNotReportedBeforeAnyIsKnown) {
    BaselineRig rig;
    rig.meter.chkBaseline.SetValue(1);
    rig.analysis.FreqLocked = true;
    rig.analysis.FundamentalHz = 1000;
    EXPECT_FALSE(rig.baseline.CapturedElsewhere());
}

}  // namespace
}  // namespace sonavex
