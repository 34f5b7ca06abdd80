#include <gmock/gmock.h>

#include "core/mixer/LevelKeeper.h"
#include "support/MixerWorld.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const MixerDevice kSpeakers{MixerSide::kPlayback, "Speakers"};
const MixerDevice kMicrophone{MixerSide::kCapture, "Microphone"};
const MixerDevice kHeadset{MixerSide::kCapture, "Headset"};

struct KeeperRig {
    CallLog log;
    FakeLevels levels{log};
    MemoryJournal journal;
    LevelKeeper keeper{levels, journal};
    KeeperRig() {
        levels.devices = {{"playback Speakers", "Master\t10 20\nPCM\t3\n"},
                          {"capture Microphone", "Capture\t5\n"},
                          {"capture Headset", "Mic\t7\n"}};
    }
    std::string& At(const MixerDevice& device) { return levels.devices.at(FakeLevels::Key(device)); }
};

TEST(Keeper, GivesBackWhatWasThereAtFirst) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.At(kSpeakers) = "Master\t1 1\nPCM\t1\n";
    rig.keeper.Use({kSpeakers, kMicrophone});
    EXPECT_EQ(rig.At(kSpeakers), "Master\t1 1\nPCM\t1\n") << "the same devices again change nothing";
    EXPECT_EQ(rig.journal.writes, 1);
    rig.keeper.GiveBack();
    EXPECT_EQ(rig.At(kSpeakers), "Master\t10 20\nPCM\t3\n");
    EXPECT_EQ(rig.journal.text, "");
    rig.At(kSpeakers) = "Master\t2 2\nPCM\t2\n";
    rig.keeper.GiveBack();
    EXPECT_EQ(rig.At(kSpeakers), "Master\t2 2\nPCM\t2\n") << "only once";
}

TEST(Keeper, GivesADeviceBackThatIsNoLongerUsed) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.At(kSpeakers) = "changed\t1\n";
    rig.At(kMicrophone) = "changed\t1\n";
    rig.keeper.Use({kSpeakers, kHeadset});
    EXPECT_EQ(rig.At(kMicrophone), "Capture\t5\n");
    EXPECT_EQ(rig.At(kSpeakers), "changed\t1\n") << "still in use";
    rig.At(kHeadset) = "changed\t1\n";
    rig.keeper.GiveBack();
    EXPECT_EQ(rig.At(kSpeakers), "Master\t10 20\nPCM\t3\n");
    EXPECT_EQ(rig.At(kHeadset), "Mic\t7\n");
}

TEST(Keeper, OfAKilledRunIsMadeGoodByTheNext) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.At(kSpeakers) = "changed\t1\n";
    LevelKeeper next(rig.levels, rig.journal);
    next.Use({kSpeakers, kHeadset});
    EXPECT_EQ(rig.At(kSpeakers), "Master\t10 20\nPCM\t3\n");
    rig.At(kSpeakers) = "changed again\t1\n";
    next.GiveBack();
    EXPECT_EQ(rig.At(kSpeakers), "Master\t10 20\nPCM\t3\n");
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, WaitsForADeviceThatIsNotThere) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.levels.devices.erase("capture Microphone");
    rig.keeper.GiveBack();
    EXPECT_NE(rig.journal.text, "");
    LevelKeeper next(rig.levels, rig.journal);
    next.Use({kSpeakers});
    next.GiveBack();
    EXPECT_NE(rig.journal.text, "");
    rig.levels.devices["capture Microphone"] = "Capture\t99\n";
    LevelKeeper last(rig.levels, rig.journal);
    last.Use({kSpeakers});
    EXPECT_EQ(rig.At(kMicrophone), "Capture\t5\n");
    last.GiveBack();
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, RestoresAWaitingDeviceBeforeItIsUsedAgain) {
    KeeperRig rig;
    rig.keeper.Use({kMicrophone});
    rig.levels.devices.erase("capture Microphone");
    rig.keeper.Use({kSpeakers});
    rig.levels.devices["capture Microphone"] = "Capture\t99\n";
    rig.keeper.Use({kSpeakers, kMicrophone});
    EXPECT_EQ(rig.At(kMicrophone), "Capture\t5\n");
}

TEST(Keeper, DoesNotInsistOnControlsThatDoNotTakeTheirLevel) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers});
    rig.levels.takes = false;
    rig.keeper.GiveBack();
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, KnowsWhichSideIsThere) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kPlayback));
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kCapture));
    rig.levels.devices.erase("playback Speakers");
    EXPECT_FALSE(rig.keeper.Present(MixerSide::kPlayback));
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kCapture));
}

TEST(Keeper, LeavesDevicesAloneThatHaveNoLevels) {
    KeeperRig rig;
    rig.levels.devices.clear();
    rig.keeper.Use({kSpeakers, {MixerSide::kCapture, ""}});
    EXPECT_FALSE(rig.keeper.Present(MixerSide::kPlayback));
    rig.keeper.GiveBack();
    EXPECT_THAT(rig.log.Lines(), IsEmpty());
    EXPECT_EQ(rig.journal.text, "");
}

class DamagedJournals : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Texts, DamagedJournals,
                         testing::Values("noise", "playback\t", "playback\tSpeakers", "\n\n\n",
                                         "capture\tUnknown\nA\t1\n", std::string(10000, '\xff'),
                                         "Master\t1 1\n\nplayback"));

TEST_P(DamagedJournals, AreReadAsFarAsTheyGo) {
    KeeperRig rig;
    rig.levels.devices["playback Speakers"] = "Master\t1\n";
    rig.journal.text = GetParam();
    rig.keeper.Use({kMicrophone});
    EXPECT_EQ(rig.At(kMicrophone), "Capture\t5\n");
    rig.keeper.GiveBack();
    EXPECT_EQ(rig.At(kMicrophone), "Capture\t5\n");
}

}  // namespace
}  // namespace sonavex
