#include "core/audio/Instrument.h"
#include "core/ports/SoundErrors.h"
#include "support/FakeSoundSystem.h"
#include "support/World.h"

namespace sonavex {
namespace {

const RuntimeError kLost(sound_error::kBufferLost, "The card has been removed.");
const RuntimeError kBroken(sound_error::kGeneric, "The card does not answer.");

class InstrumentTest : public testing::Test {
protected:
    InstrumentTest() {
        instrument_.Shared.SampleRate = 32000;
        EXPECT_TRUE(instrument_.Engine.CreateDevices());
        EXPECT_TRUE(instrument_.Engine.SetEvents());
        instrument_.Engine.ResetStream();
    }

    World world_;
    CallLog& log_ = world_.log;
    FakeSoundSystem sound_{world_.log};
    Instrument instrument_{
        {world_.store, sound_, world_.loop, world_.dialogs, world_.errorLog, world_.mixers}};
};

TEST_F(InstrumentTest, WatchHandlesADeviceThatIsLostAtTheStartOfCapture) {
    log_.Fail("captureBuffer.StartLooping", kLost);
    instrument_.StartCapture();
    EXPECT_TRUE(instrument_.Watch.Stopped());
}

TEST_F(InstrumentTest, ReportsEveryOtherErrorAtTheStartOfCapture) {
    log_.Fail("captureBuffer.StartLooping", kBroken);
    EXPECT_THROW(instrument_.StartCapture(), RuntimeError);
    EXPECT_FALSE(instrument_.Watch.Stopped());
}

TEST_F(InstrumentTest, IgnoresTheVolumeOfALostBuffer) {
    log_.Fail("playbackBuffer.SetVolume", kLost);
    EXPECT_NO_THROW(instrument_.SetVolume(-600));
    EXPECT_EQ(log_.Count("playbackBuffer.SetVolume"), 2U);
}

TEST_F(InstrumentTest, ReportsAVolumeThatTheDeviceRejects) {
    log_.Fail("playbackBuffer.SetVolume", kBroken);
    EXPECT_THROW(instrument_.SetVolume(-600), RuntimeError);
}

}  // namespace
}  // namespace sonavex
