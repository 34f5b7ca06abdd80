#include <gmock/gmock.h>

#include <utility>

#include "core/mixer/LevelKeeper.h"
#include "support/MixerWorld.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using enum MixerFunction;

const MixerDevice kSpeakers{MixerSide::kPlayback, "Speakers"};
const MixerDevice kMicrophone{MixerSide::kCapture, "Microphone"};
const MixerDevice kHeadset{MixerSide::kCapture, "Headset"};

struct KeeperRig {
    KeeperRig() {
        hardware.playback["Speakers"] = {{kMasterVolume, MemoryHardware::Level({10, 20})},
                                         {kWaveVolume, MemoryHardware::Level({3})}};
        hardware.capture = {{"Microphone", {{kMicRecord, MemoryHardware::Level({5})}}},
                            {"Headset", {{kMicRecord, MemoryHardware::Level({7})}}}};
    }
    std::vector<std::int32_t>& Master() { return hardware.playback.at("Speakers").at(kMasterVolume).values; }
    std::vector<std::int32_t>& Wave() { return hardware.playback.at("Speakers").at(kWaveVolume).values; }
    std::vector<std::int32_t>& Record(const MixerDevice& device) {
        return hardware.capture.at(device.name).at(kMicRecord).values;
    }
    CallLog log;
    MemoryHardware hardware{log};
    DeviceLevels levels{hardware};
    MemoryJournal journal;
    LevelKeeper keeper{levels, journal};
};

TEST(Keeper, RestoresTheFirstLevels) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.Master() = {1, 1};
    rig.Wave() = {1};
    rig.keeper.Use({kSpeakers, kMicrophone});
    EXPECT_THAT(rig.Master(), ElementsAre(1, 1)) << "the same devices again change nothing";
    EXPECT_EQ(rig.journal.writes, 1);
    rig.keeper.Restore();
    EXPECT_THAT(rig.Master(), ElementsAre(10, 20));
    EXPECT_THAT(rig.Wave(), ElementsAre(3));
    EXPECT_EQ(rig.journal.text, "");
    rig.Master() = {2, 2};
    rig.keeper.Restore();
    EXPECT_THAT(rig.Master(), ElementsAre(2, 2)) << "only once";
}

TEST(Keeper, RestoresADeviceThatIsNoLongerUsed) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.Master() = {1, 1};
    rig.Record(kMicrophone) = {1};
    rig.keeper.Use({kSpeakers, kHeadset});
    EXPECT_THAT(rig.Record(kMicrophone), ElementsAre(5));
    EXPECT_THAT(rig.Master(), ElementsAre(1, 1)) << "still in use";
    rig.Record(kHeadset) = {1};
    rig.keeper.Restore();
    EXPECT_THAT(rig.Master(), ElementsAre(10, 20));
    EXPECT_THAT(rig.Record(kHeadset), ElementsAre(7));
}

TEST(Keeper, RestoresTheLevelsOfAKilledRun) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.Master() = {1, 1};
    LevelKeeper next(rig.levels, rig.journal);
    next.Use({kSpeakers, kHeadset});
    EXPECT_THAT(rig.Master(), ElementsAre(10, 20));
    rig.Master() = {2, 2};
    next.Restore();
    EXPECT_THAT(rig.Master(), ElementsAre(10, 20));
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, WaitsForAnAbsentDevice) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    rig.hardware.capture.erase("Microphone");
    rig.keeper.Restore();
    EXPECT_NE(rig.journal.text, "");
    LevelKeeper next(rig.levels, rig.journal);
    next.Use({kSpeakers});
    next.Restore();
    EXPECT_NE(rig.journal.text, "");
    rig.hardware.capture["Microphone"] = {{kMicRecord, MemoryHardware::Level({99})}};
    LevelKeeper last(rig.levels, rig.journal);
    last.Use({kSpeakers});
    EXPECT_THAT(rig.Record(kMicrophone), ElementsAre(5));
    last.Restore();
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, RestoresAWaitingDeviceBeforeItIsUsedAgain) {
    KeeperRig rig;
    rig.keeper.Use({kMicrophone});
    rig.hardware.capture.erase("Microphone");
    rig.keeper.Use({kSpeakers});
    rig.hardware.capture["Microphone"] = {{kMicRecord, MemoryHardware::Level({99})}};
    rig.keeper.Use({kSpeakers, kMicrophone});
    EXPECT_THAT(rig.Record(kMicrophone), ElementsAre(5));
}

TEST(Keeper, TriesALevelThatTheDeviceRejectsOnlyOnce) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers});
    rig.Master() = {1, 1};
    rig.hardware.playback.at("Speakers").at(kMasterVolume).rejects = true;
    rig.keeper.Restore();
    EXPECT_EQ(rig.log.Count("Write"), 1U);
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, KnowsWhichSideIsPresent) {
    KeeperRig rig;
    rig.keeper.Use({kSpeakers, kMicrophone});
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kPlayback));
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kCapture));
    rig.hardware.playback.clear();
    EXPECT_FALSE(rig.keeper.Present(MixerSide::kPlayback));
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kCapture));
}

TEST(Keeper, IgnoresAbsentDevicesAndEmptyNames) {
    KeeperRig rig;
    rig.hardware.playback.clear();
    rig.hardware.capture.clear();
    rig.keeper.Use({kSpeakers, {MixerSide::kCapture, ""}});
    EXPECT_FALSE(rig.keeper.Present(MixerSide::kPlayback));
    rig.keeper.Restore();
    EXPECT_THAT(rig.log.Lines(), testing::IsEmpty());
    EXPECT_EQ(rig.journal.text, "");
}

const MixerDevice kTwin{MixerSide::kPlayback, "Twin"};

// The device in use was the only one of its description when its levels were saved.
struct TwinRig : KeeperRig {
    TwinRig() {
        hardware.playback = {{"Twin [a]", {{kMasterVolume, MemoryHardware::Level({10})}}}};
        hardware.lastingNames = {{"Twin", "Twin [a]"}};
        keeper.Use({kTwin});
        Level("Twin [a]") = {1};
    }
    void ConnectTwin() {
        hardware.playback["Twin [b]"] = {{kMasterVolume, MemoryHardware::Level({20})}};
        hardware.lastingNames.clear();
    }
    void RemoveFirst() {
        hardware.playback.erase("Twin [a]");
        hardware.lastingNames = {{"Twin", "Twin [b]"}};
    }
    std::vector<std::int32_t>& Level(const std::string& name) {
        return hardware.playback.at(name).at(kMasterVolume).values;
    }
};

TEST(Keeper, RestoresADeviceThatATwinHasRenamed) {
    TwinRig rig;
    rig.ConnectTwin();
    EXPECT_TRUE(rig.keeper.Present(MixerSide::kPlayback));
    rig.keeper.Restore();
    EXPECT_THAT(rig.Level("Twin [a]"), ElementsAre(10));
    EXPECT_THAT(rig.Level("Twin [b]"), ElementsAre(20));
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, KeepsADeviceInUseThatATwinHasRenamed) {
    TwinRig rig;
    rig.ConnectTwin();
    EXPECT_FALSE(rig.keeper.Use({{MixerSide::kPlayback, "Twin [a]"}})) << "saved already";
    EXPECT_THAT(rig.Level("Twin [a]"), ElementsAre(1));
    rig.keeper.Restore();
    EXPECT_THAT(rig.Level("Twin [a]"), ElementsAre(10));
}

TEST(Keeper, RestoresADeviceThatATwinHasRenamedAfterAKill) {
    TwinRig rig;
    rig.ConnectTwin();
    LevelKeeper next(rig.levels, rig.journal);
    next.Use({{MixerSide::kPlayback, "Twin [b]"}});
    EXPECT_THAT(rig.Level("Twin [a]"), ElementsAre(10));
}

TEST(Keeper, KeepsADeviceInUseWhileTheSoundSystemIsSilent) {
    TwinRig rig;
    const auto devices = std::exchange(rig.hardware.playback, {});
    const auto names = std::exchange(rig.hardware.lastingNames, {});
    EXPECT_FALSE(rig.keeper.Use({kTwin}));
    rig.hardware.playback = devices;
    EXPECT_FALSE(rig.keeper.Use({kTwin})) << "the device answers again, but not with its lasting name";
    EXPECT_THAT(rig.Level("Twin [a]"), ElementsAre(1));
    rig.hardware.lastingNames = names;
    rig.keeper.Restore();
    EXPECT_THAT(rig.Level("Twin [a]"), ElementsAre(10));
    EXPECT_EQ(rig.journal.text, "");
}

TEST(Keeper, LeavesATwinAloneThatHasTakenTheName) {
    TwinRig rig;
    rig.ConnectTwin();
    rig.RemoveFirst();
    rig.keeper.Restore();
    EXPECT_THAT(rig.Level("Twin [b]"), ElementsAre(20));
    EXPECT_THAT(rig.journal.text, testing::HasSubstr("Twin [a]")) << "waits for the device";
}

class DamagedJournals : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Texts, DamagedJournals,
                         testing::Values("noise", "playback\t", "playback\tSpeakers", "\n\n\n",
                                         "capture\tUnknown\nA\t1\n", std::string(10000, '\xff'),
                                         "Speakers/MasterVolume\t1 1\n\nplayback",
                                         "playback\tSpeakers\nSpeakers/MasterVolume\t1 1 1\nx\t1\n\n"));

TEST_P(DamagedJournals, AreReadAsFarAsPossible) {
    KeeperRig rig;
    rig.journal.text = GetParam();
    rig.keeper.Use({kMicrophone});
    EXPECT_THAT(rig.Record(kMicrophone), ElementsAre(5));
    EXPECT_THAT(rig.Master(), ElementsAre(10, 20));
    rig.keeper.Restore();
    EXPECT_THAT(rig.Record(kMicrophone), ElementsAre(5));
}

}  // namespace
}  // namespace sonavex
