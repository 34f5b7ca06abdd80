#include "support/EngineBench.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

// Both generations; they differ in the mixer library.
class CreateDevices : public testing::TestWithParam<std::int32_t> {
protected:
    EngineBench bench{GetParam()};
    bool Newer() const { return GetParam() >= 6; }
};

INSTANTIATE_TEST_SUITE_P(Generations, CreateDevices, testing::Values(5, 6, 10));

TEST_P(CreateDevices, CallsThePortsInOrder) {
    bench.store.Save("SoundCard", "Input", "in-b");
    bench.store.Save("SoundCard", "Output", "out-b");
    EXPECT_TRUE(bench.engine.CreateDevices());
    std::vector<std::string> expected{"EnumeratePlayback", "EnumerateCapture", "CreatePlaybackDevice [out-b]",
                                      "CreateCaptureDevice [in-b]", "PointMixersAt Card B|Line B"};
    if (Newer()) expected.emplace_back("ReopenSoundCard Card B|Line B");
    for (const char* line :
         {"playbackDevice.SetCooperativeLevel 2", "captureDevice.CreateBuffer",
          "playbackDevice.GetCapabilities", "playbackDevice.CreateBuffer", "playbackBuffer.SetVolume -50"})
        expected.emplace_back(line);
    EXPECT_EQ(bench.log.Lines(), expected);
}

TEST_P(CreateDevices, KeepsIdentifiersAndNames) {
    bench.store.Save("SoundCard", "Input", "in-a");
    bench.store.Save("SoundCard", "Output", "out-b");
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.engine.InputDeviceId, "in-a");
    EXPECT_EQ(bench.engine.OutputDeviceId, "out-b");
    EXPECT_EQ(bench.engine.InputDeviceName, "Line A");
    EXPECT_EQ(bench.engine.OutputDeviceName, "Card B");
}

TEST_P(CreateDevices, NamesThePrimaryDeviceAfterTheSecondEntry) {
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.engine.InputDeviceName, "Line A");
    EXPECT_EQ(bench.engine.OutputDeviceName, "Card A");
    EXPECT_THAT(bench.log.Of("CreatePlaybackDevice"), ElementsAre("CreatePlaybackDevice []"));
    EXPECT_THAT(bench.log.Of("CreateCaptureDevice"), ElementsAre("CreateCaptureDevice []"));
}

TEST_P(CreateDevices, ComparesIdentifiersExactly) {
    bench.store.Save("SoundCard", "Output", "OUT-A");
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.engine.OutputDeviceName, "");
}

TEST_P(CreateDevices, ReportsDevicesAndRateBeforeItMakesBuffers) {
    bench.shared.SampleRate = 44100;
    bench.engine.OnDevices = [&](const std::string& input, const std::string& output, std::int32_t rateHz) {
        bench.log.Note("OnDevices " + input + '|' + output + '|' + std::to_string(rateHz));
    };
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.log.Count("OnDevices"), 1U);
    EXPECT_EQ(bench.log.Around("OnDevices"),
              (std::vector<std::string>{
                  "PointMixersAt Card A|Line A", "OnDevices Line A|Card A|44100",
                  Newer() ? "ReopenSoundCard Card A|Line A" : "playbackDevice.SetCooperativeLevel 2"}));
}

// Rate and average bytes per second.
class BufferDescriptions : public testing::TestWithParam<std::int32_t> {};

INSTANTIATE_TEST_SUITE_P(Rates, BufferDescriptions,
                         testing::Values(48000, 44100, 32000, 22050, 16000, 8000, 4000));

void ExpectStereo16(const WaveFormat& format, std::int32_t rateHz) {
    EXPECT_EQ(format.formatTag, 1);
    EXPECT_EQ(format.channels, 2);
    EXPECT_EQ(format.samplesPerSecond, static_cast<std::uint32_t>(rateHz));
    EXPECT_EQ(format.bitsPerSample, 16);
    EXPECT_EQ(format.blockAlign, 4);
    EXPECT_EQ(format.averageBytesPerSecond, static_cast<std::uint32_t>(rateHz * 4));
    EXPECT_EQ(format.extraSize, 0);
}

TEST_P(BufferDescriptions, AreComplete) {
    EngineBench bench;
    bench.shared.SampleRate = GetParam();
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.sound.captureDescription.flags, 0U);
    EXPECT_EQ(bench.sound.captureDescription.bytes, 32768);
    ExpectStereo16(bench.sound.captureDescription.format, GetParam());
    EXPECT_EQ(bench.sound.playbackDescription.flags, 98432U | 4U);
    EXPECT_EQ(bench.sound.playbackDescription.bytes, 65536);
    ExpectStereo16(bench.sound.playbackDescription.format, GetParam());
}

struct MixingLocation {
    const char* name;
    std::int32_t freeBuffers;
    std::uint32_t flags;
};

class MixingLocations : public testing::TestWithParam<MixingLocation> {};

INSTANTIATE_TEST_SUITE_P(
    Devices, MixingLocations,
    testing::Values(MixingLocation{"Card A", 1, 98432 | 4}, MixingLocation{"Card A", 64, 98432 | 4},
                    MixingLocation{"Card A", 0, 98432 | 8}, MixingLocation{"Card A", -1, 98432 | 8},
                    MixingLocation{"Line 1 (Virtual Audio)", 8, 98432 | 8},
                    MixingLocation{"VB-Cable", 8, 98432 | 8}, MixingLocation{"Cable", 0, 98432 | 8},
                    MixingLocation{"virtual audio", 8, 98432 | 4}, MixingLocation{"VIRTUAL", 8, 98432 | 4},
                    MixingLocation{"cable", 8, 98432 | 4}, MixingLocation{"CABLE", 8, 98432 | 4}));

TEST_P(MixingLocations, DecideTheFlag) {
    EngineBench bench;
    bench.sound.playbackDevices[1].description = GetParam().name;
    bench.sound.freeHardwareBuffers = GetParam().freeBuffers;
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.sound.playbackDescription.flags, GetParam().flags);
}

TEST(MixingLocation, IgnoresTheCaptureDevicesName) {
    EngineBench bench;
    bench.sound.captureDevices[1].description = "Virtual Cable";
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_EQ(bench.sound.playbackDescription.flags, 98432U | 4U);
}

struct StoredLevel {
    const char* text;
    const char* call;
};

class StoredLevels : public testing::TestWithParam<StoredLevel> {};

INSTANTIATE_TEST_SUITE_P(Levels, StoredLevels,
                         testing::Values(StoredLevel{"-50", "playbackBuffer.SetVolume -50"},
                                         StoredLevel{"0", "playbackBuffer.SetVolume 0"},
                                         StoredLevel{"50", "playbackBuffer.SetVolume 0"},
                                         StoredLevel{"-9600", "playbackBuffer.SetVolume -9600"},
                                         StoredLevel{"-9601", "playbackBuffer.SetVolume -9600"},
                                         StoredLevel{"-1234", "playbackBuffer.SetVolume -1234"}));

TEST_P(StoredLevels, AreTheNewBuffersVolume) {
    EngineBench bench;
    bench.store.Save("Signal Generator", "Level", GetParam().text);
    ASSERT_TRUE(bench.engine.CreateDevices());
    EXPECT_THAT(bench.log.Of("playbackBuffer.SetVolume"), ElementsAre(GetParam().call));
    EXPECT_EQ(bench.log.Lines().back(), GetParam().call);
}

}  // namespace
}  // namespace sonavex
