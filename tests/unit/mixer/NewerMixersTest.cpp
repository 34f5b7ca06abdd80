// The mixers of the newer generation: bound, captured, saved and restored.

#include <gmock/gmock.h>

#include "unit/mixer/MixerGenerations.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Position of a line in the log; the number of lines when it is missing.
std::ptrdiff_t FirstOf(const CallLog& log, const std::string& line) {
    return std::find(log.Lines().begin(), log.Lines().end(), line) - log.Lines().begin();
}

// The library fails when its third argument is not empty.
TEST(NewerMixers, AreClosedAndOpenedWithBothNamesAndAnEmptyText) {
    NewerWorld world;
    world.Bind();
    world.log.Clear();
    world.mixers.ReopenSoundCard("Speakers", "Microphone");
    EXPECT_THAT(world.log.Lines(),
                ElementsAre("Close Speakers", "Close Microphone", "Open Speakers", "Open Microphone"));
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

TEST(NewerMixers, CaptureBeforeTheyApplyWhatWasSaved) {
    NewerWorld world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, kMemoryCardLine);
    EXPECT_EQ(world.Line(), kSavedVistaLine);
    EXPECT_EQ(world.log.Count("Message"), 0U);
}

TEST(NewerMixers, WithNothingSavedLeaveTheCardUntouched) {
    NewerWorld world;
    world.Start();
    EXPECT_THAT(world.log.Of("Write"), IsEmpty());
    EXPECT_EQ(world.store.Size(), 0U);
}

TEST(NewerMixers, SaveRestoreAndCloseAtTheEnd) {
    NewerWorld world;
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
    NewerWorld world;
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
    NewerWorld world;
    world.Bind();
    world.log.Clear();
    world.mixers.RestoreInitial();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_THAT(world.log.Lines(), IsEmpty());
    EXPECT_EQ(world.store.Size(), 0U);
}

// The defaults of a card that did not answer at the start must not be restored.
TEST(NewerMixers, CaptureACardThatComesLater) {
    NewerWorld world;
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
    NewerWorld world;
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
    NewerWorld killed;
    killed.Start();
    NewerWorld next;
    next.journal.text = killed.journal.text;
    next.Master() = {99, 99};
    next.Start();
    EXPECT_THAT(next.Master(), ElementsAre(80, 40));
    EXPECT_EQ(next.mixers.InitialVistaMixerState, kMemoryCardLine);
}

TEST(NewerMixers, RestoreTheOldCardBeforeAnotherIsBound) {
    NewerWorld world;
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
    NewerWorld world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    world.hardware.playback.clear();
    world.hardware.capture.clear();
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kSavedVistaLine);
    EXPECT_NE(world.journal.text, "") << "its own levels wait for it";
}

TEST(NewerMixers, KeepWhatWasSavedOfASideThatIsGone) {
    NewerWorld world;
    world.store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
    world.Start();
    world.hardware.capture.clear();
    world.Master() = {77, 77};
    world.mixers.SaveAndRestoreInitial();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
}

}  // namespace
}  // namespace sonavex
