#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "platform/combined/CombinedSoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/Errors.h"
#include "support/FakeSoundSystem.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

const RuntimeError kNoServer(sound_error::kUninitialized, "No sound server answers.");
const RuntimeError kNoDevice(sound_error::kNoDriver, "There is no sound device.");

class CombinedSoundSystemTest : public testing::Test {
protected:
    CombinedSoundSystemTest()
        : combined_(std::unique_ptr<SoundSystem>(server_), std::unique_ptr<SoundSystem>(direct_), "direct:") {
        direct_->playbackDevices = {{"", "First card", ""}, {"direct:out", "Card (direct)", "d"}};
        direct_->captureDevices = {{"", "First card", ""}, {"direct:in", "Line (direct)", "d"}};
    }

    void LeaveDirectNothing() {
        direct_->playbackDevices.resize(1);
        direct_->captureDevices.resize(1);
        directLog_.Fail("CreatePlaybackDevice", kNoDevice);
        directLog_.Fail("CreateCaptureDevice", kNoDevice);
    }
    void StopServer() {
        for (const char* operation :
             {"EnumeratePlayback", "EnumerateCapture", "CreatePlaybackDevice", "CreateCaptureDevice"})
            serverLog_.Fail(operation, kNoServer);
    }
    static std::vector<std::string> Identifiers(const SoundDeviceList& list) {
        std::vector<std::string> identifiers;
        for (const SoundDeviceInfo& device : list) identifiers.push_back(device.identifier);
        return identifiers;
    }

    CallLog serverLog_;
    CallLog directLog_;
    FakeSoundSystem* server_ = new FakeSoundSystem(serverLog_);
    FakeSoundSystem* direct_ = new FakeSoundSystem(directLog_);
    CombinedSoundSystem combined_;
};

TEST_F(CombinedSoundSystemTest, ListsTheServersDevicesThenTheDirectOnes) {
    EXPECT_THAT(Identifiers(combined_.EnumeratePlayback()), ElementsAre("", "out-a", "out-b", "direct:out"));
    EXPECT_THAT(Identifiers(combined_.EnumerateCapture()), ElementsAre("", "in-a", "in-b", "direct:in"));
    EXPECT_EQ(combined_.EnumeratePlayback()[0].description, "Primary playback");
}

TEST_F(CombinedSoundSystemTest, ListsTheServersAloneWithoutDirectOnes) {
    LeaveDirectNothing();
    EXPECT_THAT(Identifiers(combined_.EnumeratePlayback()), ElementsAre("", "out-a", "out-b"));
    EXPECT_THAT(Identifiers(combined_.EnumerateCapture()), ElementsAre("", "in-a", "in-b"));
}

TEST_F(CombinedSoundSystemTest, DirectDevicesServeAloneWithoutServer) {
    StopServer();
    EXPECT_THAT(Identifiers(combined_.EnumeratePlayback()), ElementsAre("", "direct:out"));
    EXPECT_THAT(Identifiers(combined_.EnumerateCapture()), ElementsAre("", "direct:in"));
    EXPECT_EQ(combined_.EnumeratePlayback()[0].description, "First card");
    EXPECT_NE(combined_.CreatePlaybackDevice(""), nullptr);
    EXPECT_NE(combined_.CreateCaptureDevice(""), nullptr);
    EXPECT_THAT(directLog_.Of("CreatePlaybackDevice"), ElementsAre("CreatePlaybackDevice []"));
    EXPECT_THAT(directLog_.Of("CreateCaptureDevice"), ElementsAre("CreateCaptureDevice []"));
}

TEST_F(CombinedSoundSystemTest, DirectDevicesServeAloneWhenTheServerHasNone) {
    server_->playbackDevices.resize(1);
    server_->captureDevices.resize(1);
    EXPECT_THAT(Identifiers(combined_.EnumeratePlayback()), ElementsAre("", "direct:out"));
    EXPECT_THAT(Identifiers(combined_.EnumerateCapture()), ElementsAre("", "direct:in"));
    serverLog_.Fail("CreatePlaybackDevice", kNoDevice);
    EXPECT_NE(combined_.CreatePlaybackDevice(""), nullptr);
    EXPECT_EQ(directLog_.Count("CreatePlaybackDevice"), 1U);
}

TEST_F(CombinedSoundSystemTest, WithoutAnyDeviceTheServersFailureIsReported) {
    StopServer();
    LeaveDirectNothing();
    EXPECT_EQ(ErrorOf([&] { combined_.EnumeratePlayback(); }), sound_error::kUninitialized);
    EXPECT_EQ(ErrorOf([&] { combined_.EnumerateCapture(); }), sound_error::kUninitialized);
    EXPECT_EQ(ErrorOf([&] { combined_.CreatePlaybackDevice(""); }), sound_error::kUninitialized);
    EXPECT_EQ(ErrorOf([&] { combined_.CreateCaptureDevice(""); }), sound_error::kUninitialized);
}

TEST_F(CombinedSoundSystemTest, AServerWithoutDevicesAndNoDirectOnesListThePrimaryDevice) {
    server_->playbackDevices.resize(1);
    LeaveDirectNothing();
    EXPECT_THAT(Identifiers(combined_.EnumeratePlayback()), ElementsAre(""));
}

TEST_F(CombinedSoundSystemTest, AFailureOfThePrimaryDirectDeviceIsReported) {
    StopServer();
    directLog_.Fail("CreatePlaybackDevice", RuntimeError(sound_error::kAllocated, "In use."));
    EXPECT_EQ(ErrorOf([&] { combined_.CreatePlaybackDevice(""); }), sound_error::kAllocated);
}

TEST_F(CombinedSoundSystemTest, IdentifiersGoToTheirSystem) {
    combined_.CreatePlaybackDevice("");
    combined_.CreatePlaybackDevice("out-b");
    combined_.CreatePlaybackDevice("direct:out");
    combined_.CreateCaptureDevice("in-b");
    combined_.CreateCaptureDevice("direct:in");
    combined_.CreateCaptureDevice("");
    EXPECT_THAT(serverLog_.Of("CreatePlaybackDevice"),
                ElementsAre("CreatePlaybackDevice []", "CreatePlaybackDevice [out-b]"));
    EXPECT_THAT(serverLog_.Of("CreateCaptureDevice"),
                ElementsAre("CreateCaptureDevice [in-b]", "CreateCaptureDevice []"));
    EXPECT_THAT(directLog_.Of("CreatePlaybackDevice"), ElementsAre("CreatePlaybackDevice [direct:out]"));
    EXPECT_THAT(directLog_.Of("CreateCaptureDevice"), ElementsAre("CreateCaptureDevice [direct:in]"));
}

TEST_F(CombinedSoundSystemTest, RatesAreThoseOfTheDevicesSystem) {
    server_->extendedRates = {{"", {96000}}, {"out-b", {88200}}, {"in-b", {176400}}};
    direct_->extendedRates = {{"", {192000}}, {"direct:out", {96000, 192000}}, {"direct:in", {88200}}};
    EXPECT_EQ(combined_.ExtendedPlaybackRates("out-b"), RateList{88200});
    EXPECT_EQ(combined_.ExtendedCaptureRates("in-b"), RateList{176400});
    EXPECT_EQ(combined_.ExtendedPlaybackRates("direct:out"), (RateList{96000, 192000}));
    EXPECT_EQ(combined_.ExtendedCaptureRates("direct:in"), RateList{88200});
    EXPECT_EQ(combined_.ExtendedPlaybackRates(""), RateList{96000});
    serverLog_.Fail("ExtendedCaptureRates", kNoServer);
    EXPECT_EQ(combined_.ExtendedCaptureRates(""), RateList{192000});
}

TEST_F(CombinedSoundSystemTest, ANamedDeviceIsNotReplacedByAnother) {
    StopServer();
    EXPECT_EQ(ErrorOf([&] { combined_.CreatePlaybackDevice("out-a"); }), sound_error::kUninitialized);
    EXPECT_EQ(directLog_.Count("CreatePlaybackDevice"), 0U);
}

TEST_F(CombinedSoundSystemTest, EventsOfEitherBufferReachTheHandlerUnderOneHandle) {
    // Makes the handles of the two systems differ.
    direct_->CreateEvent([](EventHandle) {});
    std::vector<EventHandle> fired;
    const EventHandle event = combined_.CreateEvent([&](EventHandle handle) { fired.push_back(handle); });
    const EventHandle other = combined_.CreateEvent([&](EventHandle handle) { fired.push_back(handle); });
    const std::vector<PositionNotification> positions{{8191, event}, {16383, other}};
    const auto ofServer = combined_.CreateCaptureDevice("in-a")->CreateBuffer({});
    const auto ofDirect = combined_.CreateCaptureDevice("direct:in")->CreateBuffer({});
    ofServer->SetNotificationPositions(positions);
    ofDirect->SetNotificationPositions(positions);
    EXPECT_EQ(server_->positions[1].offset, 16383);
    server_->FireSegment(0);
    direct_->FireSegment(1);
    EXPECT_THAT(fired, ElementsAre(event, other));
    combined_.DestroyEvent(event);
    server_->FireSegment(0);
    direct_->FireSegment(0);
    EXPECT_EQ(fired.size(), 2U);
    EXPECT_EQ(server_->LiveEvents(), 1U);
    EXPECT_EQ(direct_->LiveEvents(), 2U);
    combined_.DestroyEvent(event);  // no longer known
}

TEST_F(CombinedSoundSystemTest, CaptureBuffersPassEverythingOn) {
    const auto buffer = combined_.CreateCaptureDevice("direct:in")->CreateBuffer({});
    direct_->statistics = {100, 2, 1, 5};
    direct_->firstCapturedSample = 7;
    std::vector<std::int16_t> samples(2);
    buffer->StartLooping();
    buffer->ReadBuffer(8192, samples);
    buffer->Stop();
    EXPECT_THAT(samples, ElementsAre(7, 8));
    EXPECT_EQ(buffer->Statistics().framesMissing, 5U);
    EXPECT_EQ(directLog_.Count("captureBuffer.StartLooping"), 1U);
    EXPECT_EQ(directLog_.Count("captureBuffer.Stop"), 1U);
}

TEST(CombinedLoss, OfEitherSystemReachesTheHandler) {
    PlainEventLoop loop;
    using Card = SimulatedSoundSystem;
    auto first = std::make_unique<Card>(loop, Card::Pace::kStepped);
    auto second = std::make_unique<Card>(loop, Card::Pace::kStepped);
    Card& server = *first;
    Card& direct = *second;
    CombinedSoundSystem combined(std::move(first), std::move(second), "direct:");
    int losses = 0;
    combined.OnDeviceLost([&](const RuntimeError&) { ++losses; });
    const BufferDescription description{buffer_flag::kVolumePositionFocus, 8192, WaveFormat::Stereo16(48000)};
    const auto ofServer = server.CreatePlaybackDevice("")->CreateBuffer(description);
    const auto ofDirect = direct.CreatePlaybackDevice("")->CreateBuffer(description);
    server.Unplug();
    loop.Yield();
    EXPECT_EQ(losses, 1);
    direct.Unplug();
    loop.Yield();
    EXPECT_EQ(losses, 2);
}

}  // namespace
}  // namespace sonavex
