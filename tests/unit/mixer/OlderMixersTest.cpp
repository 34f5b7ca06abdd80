// The mixers of the older generation: applied, saved and restored.

#include <gmock/gmock.h>

#include "unit/mixer/MixerGenerations.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(OlderMixers, KeepWhatWasSavedOfASideThatIsGone) {
    OlderWorld world;
    world.store.Save("Settings", "SoundCard", "0,Microphone Volume,7,7,");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,0,Master Mute,1,1,");
    world.Start();
    world.hardware.capture.clear();
    world.Values(MixerFunction::kMasterVolume) = {1, 2};
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "OutSoundCard", ""), "0,Master Volume,1,2,0,Master Mute,1,1,");
    EXPECT_EQ(world.store.Get("Settings", "SoundCard", ""), "0,Microphone Volume,7,7,");
}

// Without a binding no operation of the library reaches the card.
TEST(OlderMixers, NeverOpenTheLibrary) {
    OlderWorld world;
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
    OlderWorld world;
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
    OlderWorld world;
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
    OlderWorld world;
    world.Start();
    world.mixers.InitialOutputMixerState = "0,Master Volume,5,6,";
    world.log.Clear();
    world.mixers.RestoreInitial();
    EXPECT_THAT(world.log.Of("Write"),
                ElementsAre("Write Speakers/MasterVolume 5 6", "Write Speakers/MasterVolume 100 100"));
}

TEST(OlderMixers, WithNothingSavedLeaveTheMixersUntouched) {
    OlderWorld world;
    world.Start();
    EXPECT_THAT(world.log.Of("Write"), IsEmpty());
}

TEST(OlderMixers, CaptureTheLevelsOfAnotherDevice) {
    OlderWorld world;
    world.hardware.playback["Headphones"] = {
        {MixerFunction::kMasterVolume, MemoryHardware::Level({3, 4}, 65535)}};
    world.Start();
    world.mixers.PointMixersAt("Headphones", "Microphone");
    EXPECT_EQ(world.mixers.InitialOutputMixerState, "0,Master Volume,3,4,0,Master Mute,-1,-1,");
}

}  // namespace
}  // namespace sonavex
