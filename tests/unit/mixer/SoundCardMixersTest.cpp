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

constexpr const char* kCardLine = "80,False,30,True,20,True,False,True,-1.5,0,6,70,60,";
constexpr const char* kSavedLine = "11,True,12,False,13,False,True,False,1,2,3,14,15,";

struct Newer : MixerWorld {
    Newer() : MixerWorld(10) {}
    void Bind() {
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.ReopenSoundCard("Speakers", "Microphone");
    }
    void Start() {
        Bind();
        mixers.CaptureAndApplySaved();
        mixers.SetUpSoundControls();
    }
    SoundCardMixers mixers{World()};
};

struct Older : MixerWorld {
    Older() : MixerWorld(5) {}
    void Start() {
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.CaptureAndApplySaved();
        mixers.SetUpSoundControls();
    }
    SoundCardMixers mixers{World()};
};

TEST(NewerMixers, AreOpenedWithBothNamesAndAnEmptyText) {
    Newer world;
    world.Bind();
    EXPECT_THAT(world.log.Lines(),
                testing::IsSupersetOf({"CloseSoundCard", "OpenSoundCard Speakers|Microphone|"}));
    EXPECT_EQ(world.log.Count("OpenSoundCard"), 1U);
    EXPECT_LT(
        std::find(world.log.Lines().begin(), world.log.Lines().end(), "CloseSoundCard"),
        std::find(world.log.Lines().begin(), world.log.Lines().end(), "OpenSoundCard Speakers|Microphone|"));
}

TEST(NewerMixers, CaptureBeforeTheyApplyWhatWasSaved) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedLine);
    world.Start();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, kCardLine);
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kSavedLine);
    EXPECT_EQ(world.log.Count("Message"), 0U);
}

TEST(NewerMixers, WithNothingSavedLeaveTheCardUntouched) {
    Newer world;
    world.Start();
    EXPECT_THAT(world.CallsWith("Set"), IsEmpty());
    EXPECT_EQ(world.store.Size(), 0U);
}

TEST(NewerMixers, SaveAndGiveBackAtTheEnd) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedLine);
    world.Start();
    world.card.masterVolume = 77;
    world.log.Clear();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kCardLine);
    EXPECT_EQ(world.journal.text, "");
    const auto& lines = world.log.Lines();
    const auto at = [&](const std::string& line) {
        return std::find(lines.begin(), lines.end(), line) - lines.begin();
    };
    EXPECT_LT(at("GetLineRecordVolume"), at("SetMasterVolume 80"));
    EXPECT_LT(at("SetLineRecordVolume 60"), at("CloseSoundCard"));
}

TEST(NewerMixers, AtAnEndAtOnceGiveBackAndSaveNothing) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedLine);
    world.Start();
    world.card.masterVolume = 77;
    world.levels.devices["playback Speakers"] = "Master\t15 15\n";
    world.log.Clear();
    world.mixers.RestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kSavedLine);
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kCardLine);
    EXPECT_EQ(world.levels.devices["playback Speakers"], "Master\t10 20\n");
    EXPECT_EQ(world.journal.text, "");
    EXPECT_EQ(world.log.Count("CloseSoundCard"), 1U);
    world.log.Clear();
    world.mixers.RestoreInitial();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_THAT(world.log.Lines(), IsEmpty()) << "only once";
}

TEST(NewerMixers, BeforeTheCaptureHaveNothingToGiveBack) {
    Newer world;
    world.Bind();
    world.log.Clear();
    world.mixers.RestoreInitial();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_THAT(world.log.Lines(), IsEmpty());
    EXPECT_EQ(world.store.Size(), 0U);
}

// Levels of a card that did not answer at the start are none that anybody wants back.
TEST(NewerMixers, CaptureACardThatComesLater) {
    Newer world;
    const auto cards = world.levels.devices;
    world.levels.devices.clear();
    world.Start();
    world.levels.devices = cards;
    world.card.masterVolume = 33;
    world.Bind();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, VistaSound::GetVistaMixerState(world.card));
    EXPECT_NE(world.journal.text, "");
    world.log.Clear();
    world.Bind();
    EXPECT_EQ(world.log.Count("GetMasterVolume"), 0U);
}

TEST(NewerMixers, GiveRawLevelsBackAfterTheLine) {
    Newer world;
    world.Start();
    world.levels.devices["playback Speakers"] = "Master\t15 15\n";
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.levels.devices["playback Speakers"], "Master\t10 20\n");
    const auto& lines = world.log.Lines();
    EXPECT_GT(std::find(lines.begin(), lines.end(), "Restore playback Speakers"),
              std::find(lines.begin(), lines.end(), "SetLineRecordVolume 60"));
}

TEST(NewerMixers, GiveBackWhenTheyAreDestroyedInTheMiddle) {
    MixerWorld world(10);
    {
        SoundCardMixers mixers(world.World());
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.ReopenSoundCard("Speakers", "Microphone");
        mixers.CaptureAndApplySaved();
        EXPECT_NE(world.journal.text, "");
        world.levels.devices["capture Microphone"] = "Capture\t1\n";
    }
    EXPECT_EQ(world.levels.devices["capture Microphone"], "Capture\t5\n");
    EXPECT_EQ(world.journal.text, "");
}

TEST(NewerMixers, OfAKilledRunAreMadeGoodBeforeTheCapture) {
    Newer killed;
    killed.Start();
    Newer next;
    next.journal.text = killed.journal.text;
    next.levels.devices["playback Speakers"] = "Master\t99 99\n";
    next.Start();
    EXPECT_EQ(next.levels.devices["playback Speakers"], "Master\t10 20\n");
    const auto& lines = next.log.Lines();
    EXPECT_LT(std::find(lines.begin(), lines.end(), "Restore playback Speakers"),
              std::find(lines.begin(), lines.end(), "GetMasterVolume"));
}

TEST(NewerMixers, GiveTheOldCardBackBeforeAnotherIsBound) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedLine);
    world.levels.devices["playback Headphones"] = "Front\t1 1\n";
    world.Start();
    world.levels.devices["playback Speakers"] = "Master\t15 15\n";
    world.log.Clear();
    world.mixers.PointMixersAt("Headphones", "Microphone");
    EXPECT_THAT(world.CallsWith("Restore"), ElementsAre("Restore playback Speakers"));
    world.mixers.ReopenSoundCard("Headphones", "Microphone");
    EXPECT_EQ(world.mixers.InitialVistaMixerState, kSavedLine) << "the levels of the new card";
    world.log.Clear();
    world.Bind();
    world.Bind();
    EXPECT_EQ(world.log.Count("GetMasterVolume"), 1U) << "bound again, a card is not captured again";
}

TEST(NewerMixers, DoNotSaveTheLevelsOfACardThatIsGone) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedLine);
    world.Start();
    world.levels.devices.clear();
    world.card.masterVolume = 0;
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kSavedLine);
    EXPECT_NE(world.journal.text, "") << "its own levels wait for it";
}

TEST(NewerMixers, KeepWhatWasSavedOfASideThatIsGone) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", kSavedLine);
    world.Start();
    world.levels.devices.erase("capture Microphone");
    world.card.missing = {"MicBoost", "NoMonitor", "MicRecordVolume", "LineRecordVolume"};
    world.card.masterVolume = 77;
    world.card.micRecordVolume = 100;
    world.card.lineRecordVolume = 100;
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
}

TEST(OlderMixers, KeepWhatWasSavedOfASideThatIsGone) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,0,Master Mute,1,1,");
    world.Start();
    world.levels.devices.erase("capture Microphone");
    world.output.Find("Master Volume").values = {1, 2};
    world.input.Find("Microphone Volume").values = {-1, -1};
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

TEST_P(BadLines, AreToldOfAndTheStartGoesOn) {
    Newer world;
    world.store.Save("Settings", "VistaSoundCard", GetParam().line);
    world.Start();
    const auto messages = world.log.Of("Message");
    ASSERT_THAT(messages, SizeIs(1));
    EXPECT_THAT(messages[0], HasSubstr(GetParam().number));
    EXPECT_THAT(messages[0], HasSubstr("VistaSoundCard"));
    EXPECT_LT(messages[0].size(), 600U);
    if (GetParam().line.starts_with("50")) {
        EXPECT_EQ(world.card.masterVolume, 50) << "the fields before stay applied";
    }
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), GetParam().line);
    EXPECT_EQ(world.mixers.Speaker.SpeakerVolumeControl, 0) << "the start went on";
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kCardLine);
}

// A message in pieces of characters could not be shown.
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

TEST(OlderMixers, NeverAskTheLibrary) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.Start();
    world.mixers.ShowSoundCard();
    world.mixers.PointMixersAt("Speakers", "Headset");
    world.mixers.UnloadDialogs();
    world.mixers.SaveAndRestoreInitial();
    for (const char* prefix : {"Get", "Set", "OpenSoundCard", "CloseSoundCard"})
        EXPECT_THAT(world.CallsWith(prefix), IsEmpty());
}

TEST(OlderMixers, ApplySaveAndGiveBack) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,0,Master Mute,1,1,");
    world.Start();
    EXPECT_EQ(world.mixers.InitialOutputMixerState, "0,Master Volume,100,100,0,Master Mute,0,0,");
    EXPECT_EQ(world.mixers.InitialInputMixerState, "0,Microphone Volume,200,200,");
    EXPECT_EQ(GetLegacyMixerState(world.output), "0,Master Volume,8,9,0,Master Mute,1,1,");
    EXPECT_EQ(GetLegacyMixerState(world.input), "0,Microphone Volume,7,7,");
    EXPECT_FLOAT_EQ(world.mixers.Legacy.MixerLocators.MicRecord.Value, 7 / 655.35F);
    world.output.Find("Master Volume").values = {1, 2};
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "OutSoundCard", ""), "0,Master Volume,1,2,0,Master Mute,1,1,");
    EXPECT_EQ(world.store.Get("Settings", "SoundCard", ""), "0,Microphone Volume,7,7,");
    EXPECT_EQ(GetLegacyMixerState(world.output), world.mixers.InitialOutputMixerState);
    EXPECT_EQ(GetLegacyMixerState(world.input), world.mixers.InitialInputMixerState);
}

TEST(OlderMixers, AtAnEndAtOnceGiveBackAndSaveNothing) {
    Older world;
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.Start();
    world.output.Find("Master Volume").values = {1, 2};
    world.mixers.RestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "OutSoundCard", ""), "0,Master Volume,8,9,");
    EXPECT_EQ(world.store.Get("Settings", "SoundCard", "none"), "none");
    EXPECT_EQ(GetLegacyMixerState(world.output), world.mixers.InitialOutputMixerState);
    EXPECT_EQ(GetLegacyMixerState(world.input), world.mixers.InitialInputMixerState);
    EXPECT_THAT(world.CallsWith("CloseSoundCard"), IsEmpty());
}

TEST(OlderMixers, WithNothingSavedLeaveTheMixersUntouched) {
    Older world;
    world.Start();
    EXPECT_THAT(world.output.written, IsEmpty());
    EXPECT_THAT(world.input.written, IsEmpty());
}

TEST(OlderMixers, TellOfABadLineAndGoOnWithTheOther) {
    Older world;
    world.store.Save("Settings", "SoundCard", "0,Microphone");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.Start();
    ASSERT_THAT(world.log.Of("Message"), SizeIs(1));
    EXPECT_THAT(world.log.Of("Message")[0], HasSubstr("'5'"));
    EXPECT_EQ(world.output.Find("Master Volume").values[1], 9);
}

TEST(Mixers, ArePointedAtTheSelectedDevices) {
    for (const std::int32_t generation : {5, 10}) {
        MixerWorld world(generation);
        SoundCardMixers mixers(world.World());
        mixers.PointMixersAt("Speakers of a card", "Microphone");
        EXPECT_EQ(mixers.PlayMixerDeviceNumber, 0);
        EXPECT_EQ(mixers.MixerDeviceNumber, 1);
        EXPECT_EQ(world.output.DeviceName(), "Speakers");
        EXPECT_EQ(world.input.DeviceName(), "Micro");
        mixers.PointMixersAt("HDMI", "");
        EXPECT_EQ(mixers.PlayMixerDeviceNumber, -1);
        EXPECT_EQ(mixers.MixerDeviceNumber, -1);
        EXPECT_EQ(world.output.DeviceName(), "");
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

// A restart may have brought another card, or the same one with other controls.
TEST(MixerDialogs, ShowWhatANewSearchFinds) {
    Newer newer;
    newer.Start();
    newer.mixers.ShowSoundCard();
    newer.mixers.SoundVista.cmdTone.Press();
    newer.card.masterVolume = 12;
    newer.card.bass = 5.0;
    newer.output.Find("Master Volume").values = {65500, 65500};
    newer.mixers.SetUpSoundControls();
    EXPECT_EQ(newer.mixers.SoundVista.sldMaster.Value(), 12);
    EXPECT_EQ(newer.mixers.SoundVista.sldSpeakers.Value(), 100);
    EXPECT_EQ(newer.mixers.Tone.sldBass.Value(), 5);
    Older older;
    older.Start();
    older.mixers.ShowSoundCard();
    older.output.Find("Master Volume").values = {65535, 65535};
    older.mixers.SetUpSoundControls();
    EXPECT_EQ(older.mixers.Sound.MasterOut.Value(), -100);
}

TEST(MixerDialogs, ShowWhatOthersChangeAtOnce) {
    Newer world;
    world.Start();
    world.log.Clear();
    world.levels.changed();
    EXPECT_THAT(world.log.Lines(), testing::Not(testing::Contains("GetMasterVolume"))) << "nothing is open";
    world.mixers.ShowSoundCard();
    world.mixers.SoundVista.cmdTone.Press();
    world.card.masterVolume = 12;
    world.card.bass = 5.0;
    world.levels.changed();
    EXPECT_EQ(world.mixers.SoundVista.sldMaster.Value(), 12);
    EXPECT_EQ(world.mixers.Tone.sldBass.Value(), 5);
    EXPECT_EQ(world.mixers.SoundVista.lblOutputMixer.Caption(), "Speakers");
}

}  // namespace
}  // namespace sonavex
