// What both generations share: the choice of devices and the dialogs.

#include <gmock/gmock.h>

#include "unit/mixer/MixerGenerations.h"

namespace sonavex {
namespace {

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
    NewerWorld newer;
    newer.Start();
    newer.mixers.ShowSoundCard();
    EXPECT_TRUE(newer.mixers.SoundVista.Loaded());
    EXPECT_FALSE(newer.mixers.Sound.Loaded());
    newer.mixers.SoundVista.cmdTone.Press();
    EXPECT_TRUE(newer.mixers.Tone.Loaded());
    newer.mixers.UnloadDialogs();
    EXPECT_FALSE(newer.mixers.SoundVista.Loaded());
    EXPECT_FALSE(newer.mixers.Tone.Loaded());
    OlderWorld older;
    older.Start();
    older.mixers.ShowSoundCard();
    EXPECT_TRUE(older.mixers.Sound.Loaded());
    EXPECT_FALSE(older.mixers.SoundVista.Loaded());
}

// After a restart the card can be another one, or have other controls.
TEST(MixerDialogs, ShowWhatANewSearchFinds) {
    NewerWorld newer;
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
    OlderWorld older;
    older.Start();
    older.mixers.ShowSoundCard();
    older.Values(MixerFunction::kMasterVolume) = {65535, 65535};
    older.mixers.SetUpSoundControls();
    EXPECT_EQ(older.mixers.Sound.MasterOut.Value(), -100);
}

TEST(MixerDialogs, ShowWhatOthersChangeAtOnce) {
    NewerWorld world;
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
