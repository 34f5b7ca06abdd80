#include <gmock/gmock.h>

#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"
#include "support/RecordingSettings.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// Records the low edge of the analysis when the mixers are accessed.
class WatchingMixers : public RecordingMixerSession {
public:
    explicit WatchingMixers(CallLog& log) noexcept : RecordingMixerSession(log), log_(log) {}
    void CaptureAndApplySaved(bool newerGeneration) override {
        if (lowEdgeHz) log_.Note("analysis from " + std::to_string(lowEdgeHz()) + " Hz");
        RecordingMixerSession::CaptureAndApplySaved(newerGeneration);
    }
    std::function<int()> lowEdgeHz;

private:
    CallLog& log_;
};

// A form with all ports, including the settings, writing to one log.
struct LoggedForm : WorldOf<VirtualEventLoop, RecordingSettings, WatchingMixers> {
    explicit LoggedForm(std::int32_t osMajorVersion) {
        desktop.majorVersion = osMajorVersion;
        form.Frame.SetSize(980, 640);
        mixers.lowEdgeHz = [this] {
            return static_cast<int>(std::lround(form.Instrument.Meter.Analysis().LowFraction *
                                                form.Instrument.Shared.SampleRate));
        };
    }

    FakeSoundSystem sound{log};
    frmMain form{On(sound)};
};

class PortOrder : public testing::TestWithParam<std::int32_t> {
protected:
    bool Newer() const { return GetParam() >= 6; }
};
INSTANTIATE_TEST_SUITE_P(Generations, PortOrder, testing::Values(5, 6, 10));

TEST_P(PortOrder, OfTheStart) {
    LoggedForm world(GetParam());
    world.form.Form_Load();
    std::vector<std::string> expected{
        "AnotherInstanceRunning",
        "ApplicationFolder",
        "Screens",
        "Get Windows|frmMain Left|-1",
        "Get Windows|frmMain Top|-1",
        "OsMajorVersion",
        "Get Settings|Auto|1",
        "Get Settings|Baseline|0",
        "Get Signal Generator|MuteMeter|1",
        Newer() ? "Get SoundCard|SampleRate|2" : "Get SoundCard|SampleRate|1",
        "Get Face|ExtendedSampleRate|",
        "Get Signal Generator|Level|-50",
        "Save Signal Generator|Level|-50",
        "Get Signal Generator|Level|50",
        "Get Signal Generator|Current Signal Start|1000",
        "Get Signal Generator|Current Signal End|20",
        "Get Signal Generator|Current Signal Sweep Time|0",
        "Get Signal Generator|Current Signal Sweep|False",
        "Get Signal Generator|Current Signal Type|0",
        "Get Signal Generator|Current Signal Loop|False",
        "Get Signal Generator|Current Signal Loop Increment|0",
        "Get Signal Generator|NumberOfTones|0",
        "Save Signal Generator|Level|-50",
        "EnumeratePlayback",
        "Get SoundCard|Input|",
        "Get SoundCard|Output|",
        "EnumerateCapture",
        "CreatePlaybackDevice []",
        "CreateCaptureDevice []",
        "PointMixersAt Card A|Line A",
        "playbackDevice.SetCooperativeLevel 2",
        "captureDevice.CreateBuffer",
        "Get Signal Generator|Level|-50",
        "playbackDevice.GetCapabilities",
        "playbackDevice.CreateBuffer",
        "playbackBuffer.SetVolume -50",
        "captureBuffer.Stop",
        "CreateEvent 101",
        "CreateEvent 102",
        "CreateEvent 103",
        "CreateEvent 104",
        "captureBuffer.SetNotificationPositions 4 8191:101 16383:102 24575:103 32767:104",
        "analysis from 25 Hz",
        "CaptureAndApplySaved",
        "SetUpSoundControls",
        "captureBuffer.StartLooping",
        "Get Windows|LastTab|0",
    };
    if (Newer()) {
        const auto cooperative =
            std::find(expected.begin(), expected.end(), "playbackDevice.SetCooperativeLevel 2");
        expected.insert(cooperative, "ReopenSoundCard Card A|Line A");
    }
    EXPECT_THAT(world.log.Lines(), ElementsAreArray(expected));
}

TEST_P(PortOrder, ChecksAnExtendedRateBetweenTheGeneratorAndTheDevices) {
    LoggedForm world(GetParam());
    world.store.Save("Face", "ExtendedSampleRate", "96000");
    world.sound.extendedRates = {{"", {96000}}};
    world.form.Form_Load();
    const auto& lines = world.log.Lines();
    const auto generator = std::find(lines.begin(), lines.end(), "Get Signal Generator|NumberOfTones|0");
    ASSERT_GE(lines.end() - generator, 7);
    const std::vector<std::string> after(generator + 1, generator + 7);
    EXPECT_THAT(
        after, ElementsAre("Save Signal Generator|Level|-50", "Get SoundCard|Input|", "Get SoundCard|Output|",
                           "ExtendedPlaybackRates []", "ExtendedCaptureRates []", "EnumeratePlayback"));
}

TEST_P(PortOrder, OfTheShutdown) {
    LoggedForm world(GetParam());
    world.form.Form_Load();
    world.log.Clear();
    world.form.Form_QueryUnload();
    const std::vector<std::string> expected{
        "captureBuffer.Stop",
        "playbackBuffer.Stop",
        "DeleteSection Signal Generator",
        "Save Signal Generator|Current Signal Loop Increment|0",
        "Save Signal Generator|Current Signal Start|1000",
        "Save Signal Generator|Current Signal End|20",
        "Save Signal Generator|Current Signal Sweep Time|0",
        "Save Signal Generator|Current Signal Sweep|False",
        "Save Signal Generator|Current Signal Type|0",
        "Save Signal Generator|Current Signal Loop|False",
        "Save Signal Generator|NumberOfTones|0",
        "Save Signal Generator|Level|-50",
        "Save Signal Generator|MuteMeter|1",
        "Save Windows|LastTab|0",
        "UnloadDialogs",
        "SaveAndRestoreInitial",
        "DestroyEvent 104",
        "DestroyEvent 103",
        "DestroyEvent 102",
        "DestroyEvent 101",
        "~playbackDevice",
        "~playbackBuffer",
        "~captureBuffer",
        "~captureDevice",
        "Save Windows|frmMain Left|470",
        "Save Windows|frmMain Top|220",
    };
    EXPECT_THAT(world.log.Lines(), ElementsAreArray(expected));
}

}  // namespace
}  // namespace sonavex
