// How much sound is requested of a device at the indexed rates and above them.

#include <gtest/gtest.h>

#include "platform/ring/StreamTiming.h"

namespace sonavex {
namespace {

using stream_timing::CaptureFrames;
using stream_timing::PlaybackFrames;

TEST(StreamTiming, RequestsFewerFramesThanBlocksUpTo48000Hz) {
    EXPECT_EQ(PlaybackFrames(48000), 3072U);
    EXPECT_EQ(PlaybackFrames(44100), 3072U);
    EXPECT_EQ(PlaybackFrames(16000), 1280U);
    EXPECT_EQ(PlaybackFrames(4000), 320U);
    EXPECT_EQ(CaptureFrames(48000), 512U);
    EXPECT_EQ(CaptureFrames(4000), 48U);
}

TEST(StreamTiming, RequestsMillisecondsAbove48000Hz) {
    EXPECT_EQ(PlaybackFrames(88200), 7056U);
    EXPECT_EQ(PlaybackFrames(96000), 7680U);
    EXPECT_EQ(PlaybackFrames(192000), 15360U);
    EXPECT_EQ(CaptureFrames(96000), 960U);
    EXPECT_EQ(CaptureFrames(192000), 1920U);
}

}  // namespace
}  // namespace sonavex
