#include <gmock/gmock.h>

#include "core/ports/SoundErrors.h"
#include "core/settings/SampleRates.h"
#include "core/support/EndProgram.h"
#include "support/Errors.h"
#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The form on scripted devices; everything writes to one log.
struct ScriptedForm : World {
    explicit ScriptedForm(std::int32_t osMajorVersion) { desktop.majorVersion = osMajorVersion; }
    FakeSoundSystem sound{log};
    frmMain form{On(sound)};
};

class Start : public testing::TestWithParam<std::int32_t> {};
INSTANTIATE_TEST_SUITE_P(Generations, Start, testing::Values(5, 10));

TEST_P(Start, OfAFreshAccountStoresTheLevelAndNothingElse) {
    ScriptedForm world(GetParam());
    world.form.Form_Load();
    EXPECT_EQ(world.store.Size(), 1U);
    EXPECT_EQ(world.store.Get("Signal Generator", "Level", "none"), "-50");
}

TEST_P(Start, TakesTheGenerationsRate) {
    ScriptedForm world(GetParam());
    world.form.Form_Load();
    EXPECT_EQ(world.form.Instrument.Shared.SampleRate, GetParam() >= 6 ? 32000 : 44100);
    EXPECT_EQ(world.form.Instrument.Shared.OsMajorVersion, GetParam());
    EXPECT_EQ(world.form.GeneratorPanel.Controls.sldStartFreq.Max(),
              world.form.Instrument.Shared.SampleRate / 2);
    EXPECT_EQ(world.form.GeneratorPanel.Controls.sldEndFreq.Max(),
              world.form.Instrument.Shared.SampleRate / 2);
}

TEST_P(Start, LeavesTheStreamPrimingAndTheTimerDisabled) {
    ScriptedForm world(GetParam());
    world.form.Form_Load();
    EXPECT_TRUE(world.form.Instrument.Shared.EventsReady);
    EXPECT_TRUE(world.form.Instrument.Engine.RestartPending);
    EXPECT_EQ(world.form.Instrument.Engine.PlayBlockIndex, 0);
    EXPECT_EQ(world.form.Instrument.Engine.CaptureSegment, 0);
    EXPECT_FALSE(world.form.Instrument.HiTimer1.Enabled());
    EXPECT_DOUBLE_EQ(world.form.Instrument.Meter.Analysis().LowFraction,
                     25.0 / world.form.Instrument.Shared.SampleRate);
    EXPECT_EQ(world.form.Frame.Caption(), "Sonavex & Function Generator");
    EXPECT_EQ(world.form.HelpFile, "/opt/sonavex/Sonavex.chm");
}

TEST(SecondInstance, SaysSoEndsWithStatusZeroAndTouchesNothing) {
    ScriptedForm world(10);
    world.desktop.anotherInstance = true;
    int status = -1;
    try {
        world.form.Form_Load();
    } catch (const EndProgram& end) {
        status = end.status;
    }
    EXPECT_EQ(status, 0);
    world.form.Form_QueryUnload();
    EXPECT_THAT(
        world.log.Lines(),
        ElementsAre("AnotherInstanceRunning",
                    "Message critical Another instance of Quenby Sonavex is running", "UnloadDialogs"));
    EXPECT_EQ(world.store.Size(), 0U);
}

class StoredRate : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Bad, StoredRate, testing::Values("7", "-1", "x", "", "1e300", "6.6"));

TEST_P(StoredRate, OutsideTheTableIsResetWithOneMessage) {
    ScriptedForm world(10);
    world.store.Save("SoundCard", "SampleRate", GetParam());
    world.form.Form_Load();
    EXPECT_EQ(world.form.Instrument.Shared.SampleRate, 22050);
    EXPECT_EQ(world.store.Get("SoundCard", "SampleRate", ""), "3");
    EXPECT_THAT(world.log.Of("Message"),
                ElementsAre("Message information Invalid Sampling Rate. Resetting to 22050."));
}

TEST(StoredRates, SelectTheirRate) {
    for (std::size_t i = 0; i < SampleRateTable.size(); ++i) {
        ScriptedForm world(10);
        world.store.Save("SoundCard", "SampleRate", std::to_string(i));
        world.form.Form_Load();
        EXPECT_EQ(world.form.Instrument.Shared.SampleRate, SampleRateTable[i]);
        EXPECT_THAT(world.log.Of("Message"), IsEmpty());
    }
}

// Devices of which both run at 96000 Hz, and a stored rate of 44100 Hz.
struct ExtendedForm : ScriptedForm {
    explicit ExtendedForm(const char* extendedRate) : ScriptedForm(10) {
        store.Save("SoundCard", "Input", "in-b");
        store.Save("SoundCard", "Output", "out-b");
        store.Save("SoundCard", "SampleRate", "1");
        store.Save("Face", "ExtendedSampleRate", extendedRate);
        store.Save("Signal Generator", "Current Signal Start", "30000");
        sound.extendedRates = {{"in-b", {88200, 96000}}, {"out-b", {96000, 192000}}};
    }
    std::int32_t RateInUse() const {
        return static_cast<std::int32_t>(sound.captureDescription.format.samplesPerSecond);
    }
    std::int32_t HighestHz() const { return form.GeneratorPanel.Controls.sldStartFreq.Max(); }
};

TEST(ExtendedRate, AppliesWhereBothStoredDevicesRunAtIt) {
    ExtendedForm world("96000");
    world.form.Form_Load();
    EXPECT_THAT(world.log.Of("Message"), IsEmpty());
    EXPECT_EQ(world.RateInUse(), 96000);
    EXPECT_EQ(world.sound.playbackDescription.format.samplesPerSecond, 96000U);
    EXPECT_EQ(world.form.Instrument.Shared.SampleRate, 96000);
    EXPECT_EQ(world.form.lblSampleRate.Caption(), "96000");
    EXPECT_EQ(world.HighestHz(), 48000);
    EXPECT_DOUBLE_EQ(world.form.Instrument.Meter.Analysis().HighFraction, 47900.0 / 96000.0);
    EXPECT_EQ(world.form.GeneratorPanel.Controls.txtGenFreq.Text(), "30000");
    EXPECT_EQ(world.store.Get("SoundCard", "SampleRate", ""), "1");
}

class UnsupportedRate : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Stored, UnsupportedRate,
                         testing::Values("88200", "176400", "192000", "48000", "96000 ", "fast"));

TEST_P(UnsupportedRate, GivesWayToTheIndexWithOneMessage) {
    ExtendedForm world(GetParam());
    world.form.Form_Load();
    EXPECT_EQ(world.RateInUse(), 44100);
    EXPECT_EQ(world.form.lblSampleRate.Caption(), "44100");
    EXPECT_EQ(world.HighestHz(), 22050);
    EXPECT_EQ(world.form.GeneratorPanel.Controls.txtGenFreq.Text(), "22050");
    EXPECT_THAT(world.log.Of("Message"),
                ElementsAre(std::string("Message information The selected sound devices do not run at the "
                                        "stored sampling rate of ") +
                            GetParam() + " Hz. The sampling rate is now 44100 Hz."));
    // The devices may run at it at the next start.
    EXPECT_EQ(world.store.Get("Face", "ExtendedSampleRate", ""), GetParam());
    EXPECT_EQ(world.store.Get("SoundCard", "SampleRate", ""), "1");
}

TEST(ExtendedRate, GivesWayWhereADeviceCannotBeAsked) {
    for (const char* operation : {"ExtendedPlaybackRates", "ExtendedCaptureRates"}) {
        ExtendedForm world("96000");
        world.log.Fail(operation, RuntimeError(sound_error::kNoDriver, "gone"));
        world.form.Form_Load();
        EXPECT_EQ(world.RateInUse(), 44100);
        EXPECT_EQ(world.log.Count("Message"), 1U);
    }
}

TEST(ExtendedRate, EmptyLeavesTheIndexedRateWithoutAsking) {
    ExtendedForm world("");
    world.form.Form_Load();
    EXPECT_EQ(world.RateInUse(), 44100);
    EXPECT_THAT(world.log.Of("Message"), IsEmpty());
    EXPECT_EQ(world.log.Count("ExtendedPlaybackRates"), 0U);
}

class StoredTab : public testing::TestWithParam<std::pair<const char*, int>> {};
INSTANTIATE_TEST_SUITE_P(Values, StoredTab,
                         testing::Values(std::pair{"0", 0}, std::pair{"1", 1}, std::pair{"2", 0},
                                         std::pair{"-1", 0}, std::pair{"tab", 0}, std::pair{"99999", 0}));

TEST_P(StoredTab, OpensWhereItExists) {
    ScriptedForm world(10);
    world.store.Save("Windows", "LastTab", GetParam().first);
    world.form.Form_Load();
    EXPECT_EQ(world.form.TabStrip1.Index(), GetParam().second);
}

TEST(StoredBoxes, AreRestoredWithTheirEffectsAndNotStoredAgain) {
    ScriptedForm world(10);
    world.store.Save("Settings", "Auto", "0");
    world.store.Save("Settings", "Baseline", " 1");
    world.store.Save("Settings", "THD 0", " .5");
    world.store.Save("Signal Generator", "MuteMeter", "0");
    const std::size_t before = world.store.Size();
    world.form.Form_Load();
    EXPECT_FALSE(world.form.Instrument.Meter.Controls.chkAuto.Checked());
    EXPECT_TRUE(world.form.Instrument.Meter.Controls.txtFreq.Enabled());
    EXPECT_TRUE(world.form.Instrument.Meter.Controls.chkBaseline.Checked());
    EXPECT_FALSE(world.form.Baseline.cmdBaseline.Enabled());
    EXPECT_DOUBLE_EQ(world.form.Instrument.Meter.Analysis().BaselinePct[0], 0.5);
    EXPECT_FALSE(world.form.Instrument.Meter.Controls.chkMuteOutput.Checked());
    EXPECT_EQ(world.store.Size(), before + 1);  // the level
}

TEST(StoredValues, ThatDoNotConvertNameTheirKey) {
    ScriptedForm world(10);
    world.store.Save("Settings", "Auto", "perhaps");
    try {
        world.form.Form_Load();
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), error_number::kTypeMismatch);
        EXPECT_THAT(error.what(), HasSubstr("\"Auto\""));
    }
}

TEST(SoundCardMenu, ShowsTheMixersDialog) {
    ScriptedForm world(10);
    world.form.Form_Load();
    world.form.mnuSoundCard.UserChooses();
    EXPECT_EQ(world.log.Count("ShowSoundCard"), 1U);
}

TEST(MissingDevices, OpenTheDeviceDialogAndTheStartContinues) {
    ScriptedForm world(10);
    world.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    int shown = 0;
    world.form.ShowDeviceDialog = [&] {
        ++shown;
        world.log.Heal("CreateCaptureDevice");
        ASSERT_TRUE(world.form.Instrument.Engine.ReStart());
    };
    world.form.Form_Load();
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(world.form.Instrument.Shared.EventsReady);
}

}  // namespace
}  // namespace sonavex
