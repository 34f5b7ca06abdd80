#include "core/ports/SoundErrors.h"
#include "core/settings/SampleRates.h"
#include "core/support/EndProgram.h"
#include "support/DevicesRig.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kQuestion =
    "AskOkCancel Sound devices not initalized properly\rSelect 'Okay' to select new sound devices or "
    "'Cancel' to end program";
constexpr const char* kSelectOutput = "Message critical Please select valid Playback/Output device";
constexpr const char* kSelectInput = "Message critical Please select valid Record/Input device";

std::ptrdiff_t Position(const CallLog& log, const std::string& line) {
    const auto& lines = log.Lines();
    const auto found = std::find(lines.begin(), lines.end(), line);
    EXPECT_NE(found, lines.end()) << line;
    return found - lines.begin();
}

TEST(DevicesOkay, NeedsAnOutputFirst) {
    DevicesRig rig;
    rig.Load();
    rig.form.cmdOkay.Press();
    EXPECT_THAT(rig.log.Lines(), ElementsAre(kSelectOutput));
    EXPECT_EQ(rig.Stored("Output"), "(absent)");
    EXPECT_EQ(rig.unloads, 0);
}

TEST(DevicesOkay, NeedsAnInputAndKeepsTheOutputMeanwhile) {
    DevicesRig rig;
    rig.Load();
    rig.form.cmbOutputMixer.UserSelects(1);
    rig.form.cmdOkay.Press();
    EXPECT_THAT(rig.log.Lines(), ElementsAre(kSelectInput));
    EXPECT_EQ(rig.Stored("Output"), "out-b");
    EXPECT_EQ(rig.Stored("Input"), "(absent)");
    EXPECT_EQ(rig.Stored("SampleRate"), "(absent)");
    EXPECT_EQ(rig.unloads, 0);
}

TEST(DevicesOkay, AsksForADeviceInPlaceOfOneThatIsGone) {
    DevicesRig output;
    output.store.Save("SoundCard", "Output", "gone");
    output.store.Save("SoundCard", "Input", "in-a");
    output.Load();
    output.form.cmdOkay.Press();
    EXPECT_THAT(output.log.Lines(), ElementsAre(kSelectOutput));
    DevicesRig input;
    input.store.Save("SoundCard", "Output", "out-a");
    input.store.Save("SoundCard", "Input", "gone");
    input.Load();
    input.form.cmdOkay.Press();
    EXPECT_THAT(input.log.Lines(), ElementsAre(kSelectInput));
    EXPECT_EQ(input.Stored("Input"), "gone");
}

TEST(DevicesOkay, StoresTheChoiceRestartsAndCloses) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.form.cmbOutputMixer.UserSelects(1);
    rig.form.cmbInputMixer.UserSelects(1);
    rig.form.cmbSampleRate.UserSelects(3);
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.Stored("Output"), "out-b");
    EXPECT_EQ(rig.Stored("Input"), "in-b");
    EXPECT_EQ(rig.Stored("SampleRate"), "3");
    EXPECT_EQ(rig.shared.SampleRate, 22050);
    EXPECT_EQ(rig.sound.captureDescription.format.samplesPerSecond, 22050U);
    EXPECT_EQ(rig.unloads, 1);
    EXPECT_TRUE(rig.shared.EventsReady);
    // One yield between the restart and the mixers.
    const std::ptrdiff_t started = Position(rig.log, "captureBuffer.StartLooping");
    EXPECT_EQ(rig.log.Lines().at(static_cast<std::size_t>(started) + 1), "Yield");
    EXPECT_EQ(rig.log.Lines().at(static_cast<std::size_t>(started) + 2), "SetUpSoundControls");
    EXPECT_LT(Position(rig.log, "SetUpSoundControls"), Position(rig.log, "Delete Quenby Error.txt"));
}

TEST(DevicesOkay, StoresEveryRateByItsIndex) {
    for (std::size_t i = 0; i < SampleRateTable.size(); ++i) {
        DevicesRig rig;
        rig.LoadRunning();
        rig.form.cmbSampleRate.UserSelects(static_cast<std::int32_t>(i));
        rig.form.cmdOkay.Press();
        EXPECT_EQ(rig.Stored("SampleRate"), std::to_string(i));
        EXPECT_EQ(rig.shared.SampleRate, SampleRateTable[i]);
        EXPECT_EQ(rig.lblSampleRate.Caption(), std::to_string(SampleRateTable[i]));
    }
}

TEST(DevicesOkay, StoresAnExtendedRateInHertz) {
    DevicesRig rig;
    rig.store.Save("SoundCard", "SampleRate", "3");
    rig.sound.extendedRates = {{"out-a", {96000, 192000}}, {"in-a", {96000, 192000}}};
    rig.LoadRunning();
    rig.form.cmbSampleRate.UserSelects(8);
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.store.Get("Face", "ExtendedSampleRate", "(absent)"), "192000");
    EXPECT_EQ(rig.Stored("SampleRate"), "3");
    EXPECT_EQ(rig.shared.SampleRate, 192000);
    EXPECT_EQ(rig.sound.captureDescription.format.samplesPerSecond, 192000U);
    EXPECT_EQ(rig.sound.playbackDescription.format.samplesPerSecond, 192000U);
    EXPECT_EQ(rig.lblSampleRate.Caption(), "192000");
    EXPECT_EQ(rig.unloads, 1);
}

TEST(DevicesOkay, EmptiesTheExtendedRateForOneOfTheSeven) {
    DevicesRig rig;
    rig.store.Save("Face", "ExtendedSampleRate", "96000");
    rig.sound.extendedRates = {{"out-a", {96000}}, {"in-a", {96000}}};
    rig.LoadRunning();
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "96000");
    rig.form.cmbSampleRate.UserSelects(0);
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.store.Get("Face", "ExtendedSampleRate", "(absent)"), "");
    EXPECT_EQ(rig.Stored("SampleRate"), "0");
    EXPECT_EQ(rig.shared.SampleRate, 48000);
    DevicesRig fresh;
    fresh.LoadRunning();
    fresh.form.cmdOkay.Press();
    EXPECT_EQ(fresh.store.Get("Face", "ExtendedSampleRate", "(absent)"), "(absent)");
}

TEST(DevicesOkay, WithoutARateIsAnError) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.form.cmbSampleRate.SetListIndex(-1);
    EXPECT_EQ(ErrorOf([&] {
                  rig.form.cmdOkay.Press();
                  return 0;
              }),
              error_number::kSubscript);
    EXPECT_EQ(rig.Stored("SampleRate"), "(absent)");
    EXPECT_EQ(rig.shared.SampleRate, 32000);
    EXPECT_TRUE(rig.shared.EventsReady);
}

TEST(DevicesOkay, GetsAnEngineThatNeverRanGoing) {
    DevicesRig rig;
    rig.Load();
    rig.form.cmbOutputMixer.UserSelects(0);
    rig.form.cmbInputMixer.UserSelects(0);
    rig.form.cmdOkay.Press();
    EXPECT_TRUE(rig.shared.EventsReady);
    EXPECT_EQ(rig.unloads, 1);
    rig.RunBlocks(3);
    EXPECT_EQ(rig.engine.Blocks, 3U);
}

TEST(DevicesOkay, TakesTheDevicesThatItListed) {
    DevicesRig rig;
    rig.LoadRunning();
    std::swap(rig.sound.playbackDevices[1], rig.sound.playbackDevices[2]);
    rig.form.cmbOutputMixer.UserSelects(0);
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.Stored("Output"), "out-a");
}

TEST(DevicesOkay, StopsWhatPlays) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.generator.SweepRunning = true;
    rig.startCurrent.SetCaption("Stop Current");
    rig.startMemory.SetCaption("Start Memory");
    rig.form.cmdOkay.Press();
    EXPECT_THAT(rig.log.Of("Press"), ElementsAre("Press Stop Current"));
    EXPECT_LT(Position(rig.log, "Press Stop Current"), Position(rig.log, "captureBuffer.Stop"));

    DevicesRig both;
    both.LoadRunning();
    both.generator.SweepRunning = true;
    both.startCurrent.SetCaption("Stop Current");
    both.startMemory.SetCaption("Stop Memory");
    both.form.cmdOkay.Press();
    EXPECT_THAT(both.log.Of("Press"), ElementsAre("Press Stop Current", "Press Stop Memory"));
}

TEST(DevicesOkay, PressesNothingWhileNothingPlays) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.startCurrent.SetCaption("Stop Current");
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.log.Count("Press"), 0U);
}

TEST(DevicesOkay, KeepsTheFormOpenWhenTheRestartFails) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.log.Fail("CreatePlaybackDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    rig.form.cmbOutputMixer.UserSelects(1);
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.unloads, 0);
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 1U);
    EXPECT_EQ(rig.log.Count("SetUpSoundControls"), 0U);
    EXPECT_EQ(rig.log.Count("Delete"), 0U);
    rig.log.Heal("CreatePlaybackDevice");
    rig.form.cmbOutputMixer.UserSelects(0);
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.unloads, 1);
    EXPECT_EQ(rig.Stored("Output"), "out-a");
}

TEST(DevicesOkay, IgnoresPressesAndClosingWhileItRestarts) {
    DevicesRig rig;
    rig.LoadRunning();
    int yields = 0;
    rig.loop.OnYield([&] {
        ++yields;
        const std::size_t before = rig.log.Lines().size();
        rig.form.cmdOkay.Press();
        rig.form.cmdCancel.Press();
        EXPECT_FALSE(rig.form.Form_QueryUnload());
        EXPECT_EQ(rig.log.Lines().size(), before);
    });
    rig.form.cmdOkay.Press();
    EXPECT_EQ(yields, 6);
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 0U);
    EXPECT_EQ(rig.log.Count("captureBuffer.StartLooping"), 1U);
    EXPECT_EQ(rig.unloads, 1);
}

TEST(DevicesOkay, CanBePressedAgainAfterAnError) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.log.Fail("playbackBuffer.SetCurrentPosition", RuntimeError(sound_error::kBufferLost, "gone"));
    EXPECT_EQ(ErrorOf([&] {
                  rig.form.cmdOkay.Press();
                  return 0;
              }),
              sound_error::kBufferLost);
    EXPECT_EQ(rig.unloads, 0);
    rig.log.Heal("playbackBuffer.SetCurrentPosition");
    rig.form.cmdOkay.Press();
    EXPECT_EQ(rig.unloads, 1);
}

TEST(DevicesOkay, PassesTheEndOfTheProgramOn) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.sound.playbackDevices.resize(1);
    EXPECT_THROW(rig.form.cmdOkay.Press(), EndProgram);
    EXPECT_EQ(rig.unloads, 0);
}

TEST(DevicesClose, AsksWhileTheEngineDoesNotRun) {
    DevicesRig rig;
    rig.Load();
    rig.dialogs.Answer = true;
    rig.form.Unload();
    EXPECT_THAT(rig.log.Lines(), ElementsAre(kQuestion));
    EXPECT_EQ(rig.unloads, 0);
    EXPECT_EQ(rig.store.Get("Windows", "frmDevices Left", "(absent)"), "(absent)");
}

TEST(DevicesClose, EndsTheProgramWhenTheUserSaysSo) {
    DevicesRig rig;
    rig.Load();
    rig.dialogs.Answer = false;
    int status = -1;
    bool atOnce = true;
    try {
        rig.form.Unload();
    } catch (const EndProgram& end) {
        status = end.status;
        atOnce = end.atOnce;
    }
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(atOnce);  // the main form's shutdown runs
    EXPECT_EQ(rig.unloads, 0);
}

TEST(DevicesClose, AfterAFailedRestartAsksToo) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    rig.form.cmdOkay.Press();
    rig.log.Clear();
    rig.form.cmdCancel.Press();
    EXPECT_THAT(rig.log.Lines(), ElementsAre(kQuestion));
    EXPECT_EQ(rig.unloads, 0);
}

TEST(DevicesClose, DeletesBothFilesAndShowsWhatIsInUse) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.files.files = {{"Quenby Error.txt", "x"}, {"Quenby DirectX Test.txt", "y"}, {"Other.txt", "z"}};
    for (Label* label : {&rig.lblInput, &rig.lblOutput, &rig.lblSampleRate}) label->SetCaption("Stopped");
    rig.form.Frame.Move(12, 34);
    rig.form.cmdCancel.Press();
    EXPECT_EQ(rig.unloads, 1);
    EXPECT_EQ(rig.files.files.size(), 1U);
    EXPECT_EQ(rig.lblInput.Caption(), "Line A");
    EXPECT_EQ(rig.lblOutput.Caption(), "Card A");
    EXPECT_EQ(rig.lblSampleRate.Caption(), "32000");
    EXPECT_EQ(rig.store.Get("Windows", "frmDevices Left", ""), "12");
    EXPECT_EQ(rig.store.Get("Windows", "frmDevices Top", ""), "34");
    EXPECT_EQ(rig.Stored("SampleRate"), "(absent)");
}

TEST(DevicesClose, SucceedsWhenFilesCannotBeDeleted) {
    DevicesRig rig;
    rig.LoadRunning();
    rig.log.Fail("Delete", RuntimeError(70, "Permission denied"));
    rig.form.cmdCancel.Press();
    EXPECT_THAT(rig.log.Of("Delete"),
                ElementsAre("Delete Quenby Error.txt", "Delete Quenby DirectX Test.txt"));
    EXPECT_EQ(rig.unloads, 1);
}

TEST(DevicesClose, ShowsFiftyCharactersOfLongNames) {
    DevicesRig rig;
    std::string name;
    for (int i = 0; i < 60; ++i) name += "\u00e4";
    rig.sound.playbackDevices[1].description = name;
    rig.sound.captureDevices[1].description = std::string(51, 'i');
    rig.LoadRunning();
    rig.form.cmdCancel.Press();
    EXPECT_EQ(rig.lblOutput.Caption(), name.substr(0, 100));
    EXPECT_EQ(rig.lblInput.Caption(), std::string(50, 'i'));
}

TEST(DevicesHelp, OpensItsTopic) {
    DevicesRig rig;
    rig.Load();
    rig.form.cmdHelp.Press();
    EXPECT_THAT(rig.log.Lines(), ElementsAre("ShowTopic 210"));
}

}  // namespace
}  // namespace sonavex
