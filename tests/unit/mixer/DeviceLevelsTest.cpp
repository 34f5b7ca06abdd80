#include <gmock/gmock.h>

#include "core/mixer/DeviceLevels.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum MixerFunction;

const MixerDevice kPlaybackDevice{MixerSide::kPlayback, "Speakers"};

struct LevelsRig {
    LevelsRig() {
        hardware.playback["Speakers"] = {{kMasterVolume, MemoryHardware::Level({60, 50}, 87)},
                                         {kMasterMute, MemoryHardware::Switch({1})}};
    }
    MemoryHardware::Control& At(MixerFunction function) {
        return hardware.playback.at("Speakers").at(function);
    }
    CallLog log;
    MemoryHardware hardware{log};
    DeviceLevels levels{hardware};
};

TEST(DeviceLevels, HaveOneLineForEachControl) {
    LevelsRig rig;
    EXPECT_EQ(rig.levels.Read(kPlaybackDevice), "Speakers/MasterVolume\t60 50\nSpeakers/MasterMute\t1\n");
}

TEST(DeviceLevels, AreRestoredExactly) {
    LevelsRig rig;
    const auto before = rig.levels.Read(kPlaybackDevice);
    rig.At(kMasterVolume).values = {1, 2};
    EXPECT_TRUE(rig.levels.Write(kPlaybackDevice, *before));
    EXPECT_THAT(rig.log.Of("Write"), ElementsAre("Write Speakers/MasterVolume 60 50"))
        << "what has not changed is not written";
}

TEST(DeviceLevels, IgnoreLinesThatDoNotFit) {
    LevelsRig rig;
    EXPECT_TRUE(rig.levels.Write(kPlaybackDevice, ""));
    EXPECT_TRUE(rig.levels.Write(
        kPlaybackDevice,
        "Another control\t1 2\n\nnoise\xff\nSpeakers/MasterVolume\t1 2 3 4 5 6 7\nSpeakers/MasterMute 0\n"));
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
}

TEST(DeviceLevels, ReportARejectedValueAndRestoreTheOthers) {
    LevelsRig rig;
    rig.At(kMasterVolume).rejects = true;
    EXPECT_FALSE(rig.levels.Write(kPlaybackDevice, "Speakers/MasterVolume\t1 2\nSpeakers/MasterMute\t0\n"));
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(0));
}

TEST(DeviceLevels, OfAnAbsentDeviceAreNothing) {
    LevelsRig rig;
    rig.hardware.playback.clear();
    EXPECT_EQ(rig.levels.Read(kPlaybackDevice), std::nullopt);
    EXPECT_FALSE(rig.levels.Write(kPlaybackDevice, ""));
}

TEST(DeviceLevels, OfADeviceWithoutControlsAreEmpty) {
    LevelsRig rig;
    rig.hardware.playback["Speakers"].clear();
    EXPECT_EQ(rig.levels.Read(kPlaybackDevice), "");
}

}  // namespace
}  // namespace sonavex
