#include <gmock/gmock.h>

#include "core/mixer/LegacyMixerState.h"
#include "core/mixer/SoundCardMixers.h"
#include "support/MixerWorld.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Position of a line in the log; the number of lines when it is missing.
std::ptrdiff_t FirstOf(const CallLog& log, const std::string& line) {
    return std::find(log.Lines().begin(), log.Lines().end(), line) - log.Lines().begin();
}

struct Newer : MixerWorld {
    Newer() : MixerWorld(10) {}
    void Bind() {
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.ReopenSoundCard("Speakers", "Microphone");
    }
    void Start() {
        Bind();
        mixers.CaptureAndApplySaved(true);
        mixers.SetUpSoundControls();
    }
    std::string Line() { return VistaSound::GetVistaMixerState(mixers.Library); }
    bool Bound() {
        std::int32_t status = -1;
        static_cast<void>(mixers.Library.GetMasterVolume(status));
        return status == 0;
    }
    std::vector<std::int32_t>& Master() { return Values(MixerFunction::kMasterVolume); }
    SoundCardMixers mixers{Needs()};
};

struct Older : MixerWorld {
    Older() : MixerWorld(5) {}
    void Start() {
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.CaptureAndApplySaved(false);
        mixers.SetUpSoundControls();
    }
    std::string Output() { return GetLegacyMixerState(mixers.OutputMixer); }
    std::string Input() { return GetLegacyMixerState(mixers.InputMixer); }
    SoundCardMixers mixers{Needs()};
};

// The library fails when its third argument is not empty.
TEST(NewerMixers, AreClosedAndOpenedWithBothNamesAndAnEmptyText) {
    Newer world;
    world.Bind();
    world.log.Clear();
    world.mixers.ReopenSoundCard("Speakers", "Microphone");
    EXPECT_THAT(world.log.Lines(),
                ElementsAre("Close Speakers", "Close Microphone", "Open Speakers", "Open Microphone"));
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

TEST(NewerMixers, CaptureBeforeTheyApplyWhatWasSaved) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, kMemoryCardLine);
    EXPECT_EQ(world.Line(), kSavedVistaLine);
    EXPECT_EQ(world.log.Count("Message"), 0U);
}

TEST(NewerMixers, WithNothingSavedLeaveTheCardUntouched) {
    Newer world;
    world.Start();
    EXPECT_THAT(world.log.Of("Write"), IsEmpty());
    EXPECT_EQ(world.store.Size(), 0U);
}

TEST(NewerMixers, SaveRestoreAndCloseAtTheEnd) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    world.Master() = {77, 77};
    world.log.Clear();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
    EXPECT_FALSE(world.Bound());
    EXPECT_EQ(world.journal.text, "");
    EXPECT_LT(FirstOf(world.log, "Read Microphone/LineRecord"),
              FirstOf(world.log, "Write Speakers/MasterVolume 80 80"));
    const std::vector<std::string>& lines = world.log.Lines();
    EXPECT_THAT(std::vector(lines.end() - 3, lines.end()),
                ElementsAre("Close Microphone", "Close Speakers", "Close Microphone"))
        << "the library is closed after the raw levels are restored";
    world.Bind();
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

TEST(NewerMixers, AtAnImmediateEndRestoreAndSaveNothing) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    world.Master() = {77, 77};
    world.mixers.RestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kSavedVistaLine);
    EXPECT_THAT(world.Master(), ElementsAre(80, 40));
    EXPECT_EQ(world.journal.text, "");
    EXPECT_FALSE(world.Bound());
    world.log.Clear();
    world.mixers.RestoreInitial();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_THAT(world.log.Lines(), IsEmpty()) << "only once";
    world.Bind();
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

TEST(NewerMixers, BeforeTheCaptureHaveNothingToRestore) {
    Newer world;
    world.Bind();
    world.log.Clear();
    world.mixers.RestoreInitial();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_THAT(world.log.Lines(), IsEmpty());
    EXPECT_EQ(world.store.Size(), 0U);
}

// The defaults of a card that did not answer at the start must not be restored.
TEST(NewerMixers, CaptureACardThatComesLater) {
    Newer world;
    const auto playback = std::exchange(world.hardware.playback, {});
    const auto capture = std::exchange(world.hardware.capture, {});
    world.Start();
    world.hardware.playback = playback;
    world.hardware.capture = capture;
    world.Master() = {33, 33};
    world.Bind();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, world.Line());
    EXPECT_NE(world.journal.text, "");
    world.log.Clear();
    world.Bind();
    EXPECT_EQ(world.log.Count("Read"), 0U);
}

TEST(NewerMixers, RestoreRawLevelsAfterTheLine) {
    Newer world;
    world.Start();
    world.Master() = {15, 15};
    world.log.Clear();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_THAT(world.log.Of("Write"),
                ElementsAre("Write Speakers/MasterVolume 80 80", "Write Speakers/MasterVolume 80 40"));
}

TEST(NewerMixers, RestoreWhenTheyAreDestroyedInTheMiddle) {
    MixerWorld world(10);
    {
        SoundCardMixers mixers(world.Needs());
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.ReopenSoundCard("Speakers", "Microphone");
        mixers.CaptureAndApplySaved(true);
        EXPECT_NE(world.journal.text, "");
        world.Values(MixerFunction::kLineRecord) = {1, 2};
    }
    EXPECT_THAT(world.Values(MixerFunction::kLineRecord), ElementsAre(60, 60));
    EXPECT_EQ(world.journal.text, "");
    EXPECT_FALSE(world.hardware.Changed);
}

TEST(NewerMixers, RestoreTheLevelsOfAKilledRunBeforeTheCapture) {
    Newer killed;
    killed.Start();
    Newer next;
    next.journal.text = killed.journal.text;
    next.Master() = {99, 99};
    next.Start();
    EXPECT_THAT(next.Master(), ElementsAre(80, 40));
    EXPECT_EQ(next.mixers.InitialVistaMixerState, kMemoryCardLine);
}

TEST(NewerMixers, RestoreTheOldCardBeforeAnotherIsBound) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.hardware.playback["Headphones"] = MemoryCardPlayback();
    world.hardware.playback["Headphones"].at(MixerFunction::kMasterVolume).values = {55, 55};
    world.Start();
    world.log.Clear();
    world.mixers.PointMixersAt("Headphones", "Microphone");
    EXPECT_THAT(world.Master(), ElementsAre(80, 40));
    EXPECT_THAT(world.log.Of("Write"), testing::Each(testing::StartsWith("Write Speakers/")));
    world.mixers.ReopenSoundCard("Headphones", "Microphone");
    EXPECT_EQ(world.mixers.InitialVistaMixerState, "55,False,30,True,20,True,True,False,-1.5,0,6,14,15,")
        << "the levels of the new card";
    world.Bind();
    world.Values(MixerFunction::kLineVolume) = {31, 31};
    world.log.Clear();
    world.Bind();
    EXPECT_EQ(world.log.Count("Read"), 0U) << "a card that is bound again is not captured again";
}

TEST(NewerMixers, DoNotSaveTheLevelsOfACardThatIsGone) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    world.hardware.playback.clear();
    world.hardware.capture.clear();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kSavedVistaLine);
    EXPECT_NE(world.journal.text, "") << "its own levels wait for it";
}

TEST(NewerMixers, KeepWhatWasSavedOfASideThatIsGone) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    world.hardware.capture.clear();
    world.Master() = {77, 77};
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
}

TEST(OlderMixers, KeepWhatWasSavedOfASideThatIsGone) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,0,Master Mute,1,1,");
    world.Start();
    world.hardware.capture.clear();
    world.Values(MixerFunction::kMasterVolume) = {1, 2};
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "OutSoundCard", ""), "0,Master Volume,1,2,0,Master Mute,1,1,");
    EXPECT_EQ(world.store.Get("Settings", "SoundCard", ""), "0,Microphone Volume,7,7,");
}

struct BadLine {
    std::string line;
    const char* number;
};
class BadLines : public testing::TestWithParam<BadLine> {};
INSTANTIATE_TEST_SUITE_P(Lines, BadLines,
                         testing::Values(BadLine{"50,True", "'5'"}, BadLine{"50,loud,", "'13'"},
                                         BadLine{"50,,", "'13'"}, BadLine{"99999999999,", "'6'"},
                                         BadLine{std::string(10000, 'n'), "'5'"}));

TEST_P(BadLines, AreReportedAndTheStartContinues) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", GetParam().line);
    world.Start();
    const auto messages = world.log.Of("Message");
    ASSERT_THAT(messages, SizeIs(1));
    EXPECT_THAT(messages[0], HasSubstr(GetParam().number));
    EXPECT_THAT(messages[0], HasSubstr("VistaSoundCard"));
    EXPECT_LT(messages[0].size(), 600U);
    if (GetParam().line.starts_with("50")) {
        EXPECT_EQ(world.Master()[0], 50) << "the fields before stay applied";
    }
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), GetParam().line);
    EXPECT_GE(world.mixers.Speaker.SpeakerVolumeControl, 0) << "the start continued";
    world.mixers.SaveAndRestoreInitial();
    world.Bind();
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

// A message that ends in the middle of a character cannot be shown.
TEST(NewerMixers, ShortenALongBadLineBetweenCharacters) {
    Newer world;
    std::string line = "x";
    for (int i = 0; i < 100; ++i) line += "\xC3\xBC";
    world.store.Save("Settings", "VistaSoundCard", line);
    world.Start();
    const auto messages = world.log.Of("Message");
    ASSERT_THAT(messages, SizeIs(1));
    EXPECT_THAT(messages[0], HasSubstr("\"" + line.substr(0, 1 + 2 * 79) + "...\""));
}

// Without a binding no operation of the library reaches the card.
TEST(OlderMixers, NeverOpenTheLibrary) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    const auto expectClosed = [&world] {
        std::int32_t status = 0;
        static_cast<void>(world.mixers.Library.GetMasterVolume(status));
        EXPECT_NE(status, 0);
        static_cast<void>(world.mixers.Library.GetMicRecordVolume(status));
        EXPECT_NE(status, 0);
    };
    world.Start();
    expectClosed();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, "");
    world.mixers.ShowSoundCard();
    world.mixers.PointMixersAt("Speakers", "Headset");
    expectClosed();
    world.mixers.UnloadDialogs();
    world.mixers.SaveAndRestoreInitial();
    expectClosed();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", "none"), "none");
}

TEST(OlderMixers, ApplySaveAndRestore) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,0,Master Mute,1,1,");
    world.Start();
    EXPECT_EQ(world.mixers.InitialOutputMixerState, "0,Master Volume,100,100,0,Master Mute,0,0,");
    EXPECT_EQ(world.mixers.InitialInputMixerState, "0,Microphone Volume,200,200,");
    EXPECT_EQ(world.Output(), "0,Master Volume,8,9,0,Master Mute,1,1,");
    EXPECT_EQ(world.Input(), "0,Microphone Volume,7,7,");
    EXPECT_FLOAT_EQ(world.mixers.Legacy.MixerLocators.MicRecord.Value, 7 / 655.35F);
    world.Values(MixerFunction::kMasterVolume) = {1, 2};
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "OutSoundCard", ""), "0,Master Volume,1,2,0,Master Mute,1,1,");
    EXPECT_EQ(world.store.Get("Settings", "SoundCard", ""), "0,Microphone Volume,7,7,");
    EXPECT_EQ(world.Output(), world.mixers.InitialOutputMixerState);
    EXPECT_EQ(world.Input(), world.mixers.InitialInputMixerState);
}

TEST(OlderMixers, AtAnImmediateEndRestoreAndSaveNothing) {
    Older world;
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.Start();
    world.Values(MixerFunction::kMasterVolume) = {1, 2};
    world.mixers.RestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "OutSoundCard", ""), "0,Master Volume,8,9,");
    EXPECT_EQ(world.store.Get("Settings", "SoundCard", "none"), "none");
    EXPECT_EQ(world.Output(), world.mixers.InitialOutputMixerState);
    EXPECT_EQ(world.Input(), world.mixers.InitialInputMixerState);
}

TEST(OlderMixers, RestoreRawLevelsAfterTheLines) {
    Older world;
    world.Start();
    world.mixers.InitialOutputMixerState = "0,Master Volume,5,6,";
    world.log.Clear();
    world.mixers.RestoreInitial();
    EXPECT_THAT(world.log.Of("Write"),
                ElementsAre("Write Speakers/MasterVolume 5 6", "Write Speakers/MasterVolume 100 100"));
}

TEST(OlderMixers, WithNothingSavedLeaveTheMixersUntouched) {
    Older world;
    world.Start();
    EXPECT_THAT(world.log.Of("Write"), IsEmpty());
}

TEST(OlderMixers, ReportABadLineAndApplyTheOther) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.Start();
    ASSERT_THAT(world.log.Of("Message"), SizeIs(1));
    EXPECT_THAT(world.log.Of("Message")[0], HasSubstr("'5'"));
    EXPECT_THAT(world.Values(MixerFunction::kMasterVolume), ElementsAre(8, 9));
}

TEST(OlderMixers, CaptureTheLevelsOfAnotherDevice) {
    Older world;
    world.hardware.playback["Headphones"] = {
        {MixerFunction::kMasterVolume, MemoryHardware::Level({3, 4}, 65535)}};
    world.Start();
    world.mixers.PointMixersAt("Headphones", "Microphone");
    EXPECT_EQ(world.mixers.InitialOutputMixerState, "0,Master Volume,3,4,0,Master Mute,-1,-1,");
}

TEST(Mixers, ArePointedAtTheSelectedDevices) {
    for (const bool newer : {false, true}) {
        MixerWorld world(newer ? 10 : 5);
        world.hardware.capture = {{"Recorder", world.Capture()}, {"Micro", world.Capture()}};
        SoundCardMixers mixers(world.Needs());
        mixers.PointMixersAt("Speakers of a card", "Microphone");
        EXPECT_EQ(mixers.DeviceNumbers().PlayMixerDeviceNumber, 0);
        EXPECT_EQ(mixers.DeviceNumbers().MixerDeviceNumber, 1);
        EXPECT_EQ(mixers.OutputMixer.DeviceName(), "Speakers");
        EXPECT_EQ(mixers.InputMixer.DeviceName(), "Micro");
        mixers.PointMixersAt("HDMI", "");
        EXPECT_EQ(mixers.DeviceNumbers().PlayMixerDeviceNumber, -1);
        EXPECT_EQ(mixers.DeviceNumbers().MixerDeviceNumber, -1);
        EXPECT_EQ(mixers.OutputMixer.DeviceName(), "");
    }
}

TEST(MixerDialogs, AreTheGenerationsOwn) {
    Newer newer;
    newer.Start();
    newer.mixers.ShowSoundCard();
    EXPECT_TRUE(newer.mixers.SoundVista.Loaded());
    EXPECT_FALSE(newer.mixers.Sound.Loaded());
    newer.mixers.SoundVista.cmdTone.Press();
    EXPECT_TRUE(newer.mixers.Tone.Loaded());
    newer.mixers.UnloadDialogs();
    EXPECT_FALSE(newer.mixers.SoundVista.Loaded());
    EXPECT_FALSE(newer.mixers.Tone.Loaded());
    Older older;
    older.Start();
    older.mixers.ShowSoundCard();
    EXPECT_TRUE(older.mixers.Sound.Loaded());
    EXPECT_FALSE(older.mixers.SoundVista.Loaded());
}

// After a restart the card can be another one, or have other controls.
TEST(MixerDialogs, ShowWhatANewSearchFinds) {
    Newer newer;
    newer.Start();
    newer.mixers.ShowSoundCard();
    newer.mixers.SoundVista.cmdTone.Press();
    newer.Master() = {100, 12};
    newer.Values(MixerFunction::kLineVolume) = {12, 12};
    newer.Values(MixerFunction::kBass) = {10};
    newer.mixers.SetUpSoundControls();
    EXPECT_EQ(newer.mixers.SoundVista.sldMaster.Value(), 100);
    EXPECT_EQ(newer.mixers.SoundVista.sldLinePlay.Value(), 12);
    EXPECT_EQ(newer.mixers.SoundVista.sldSpeakers.Value(), 100);
    EXPECT_EQ(newer.mixers.Tone.sldBass.Value(), 5);
    Older older;
    older.Start();
    older.mixers.ShowSoundCard();
    older.Values(MixerFunction::kMasterVolume) = {65535, 65535};
    older.mixers.SetUpSoundControls();
    EXPECT_EQ(older.mixers.Sound.MasterOut.Value(), -100);
}

TEST(MixerDialogs, ShowWhatOthersChangeAtOnce) {
    Newer world;
    world.Start();
    world.log.Clear();
    world.hardware.Changed();
    EXPECT_EQ(world.log.Count("Read"), 0U) << "nothing is open";
    world.mixers.ShowSoundCard();
    world.mixers.SoundVista.cmdTone.Press();
    world.Master() = {12, 12};
    world.Values(MixerFunction::kBass) = {10};
    world.hardware.Changed();
    EXPECT_EQ(world.mixers.SoundVista.sldMaster.Value(), 12);
    EXPECT_EQ(world.mixers.Tone.sldBass.Value(), 5);
    EXPECT_EQ(world.mixers.SoundVista.lblOutputMixer.Caption(), "Speakers");
}

}  // namespace
}  // namespace sonavex
