#include <gtest/gtest.h>

#include <array>

#include "platform/ring/CaptureRing.h"

namespace sonavex {
namespace {

TEST(CaptureRing, AGapIsSilenceAndCountedAsMissing) {
    CaptureRing ring(32);  // 8 frames
    const std::array<std::int16_t, 6> frames{1, 2, 3, 4, 5, 6};
    ring.PushSilence(4);  // stopped: not stored, not missing
    ring.Start();
    ring.Push(frames.data(), 3);
    ring.PushSilence(2);
    ring.Push(frames.data(), 1);

    std::array<std::int16_t, 12> stored{};
    ring.Read(0, stored);
    EXPECT_EQ(stored, (std::array<std::int16_t, 12>{1, 2, 3, 4, 5, 6, 0, 0, 0, 0, 1, 2}));
    EXPECT_EQ(ring.Statistics().framesCaptured, 6U);
    EXPECT_EQ(ring.Statistics().framesMissing, 2U);
}

}  // namespace
}  // namespace sonavex
