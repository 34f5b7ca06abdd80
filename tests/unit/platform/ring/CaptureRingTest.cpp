#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/ring/CaptureRing.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

constexpr std::int32_t kTestedRingBytes = 32768;
constexpr std::int32_t kSegmentFrames = 2048;

// Counts how often it is raised. `accept` is the result of Raise.
class CountingSignal : public Signal {
public:
    bool Raise() noexcept override {
        ++raised;
        return accept;
    }
    int raised = 0;
    bool accept = true;
};

class CaptureRingTest : public testing::Test {
protected:
    CaptureRingTest() {
        std::vector<CaptureRing::Position> positions;
        for (std::int32_t segment = 0; segment < 4; ++segment) {
            signals_.push_back(std::make_shared<CountingSignal>());
            positions.push_back({segment * 8192 + 8191, signals_.back()});
        }
        ring_.SetPositions(positions);
    }
    // Pushes frames numbered from `first`: the number on the first channel, its negative on the second.
    void Push(int first, int frames) {
        std::vector<std::int16_t> samples;
        for (int n = first; n < first + frames; ++n) {
            samples.push_back(static_cast<std::int16_t>(n));
            samples.push_back(static_cast<std::int16_t>(-n));
        }
        ring_.Push(samples.data(), static_cast<std::size_t>(frames));
    }
    std::vector<std::int16_t> Read(std::int32_t frame, std::size_t frames) const {
        std::vector<std::int16_t> samples(2 * frames, 99);
        ring_.Read(frame * kFrameBytes, samples);
        return samples;
    }
    std::vector<int> Rings() const {
        std::vector<int> raised;
        for (const auto& signal : signals_) raised.push_back(signal->raised);
        return raised;
    }

    std::vector<std::shared_ptr<CountingSignal>> signals_;
    CaptureRing ring_{kTestedRingBytes};
};

using Counts = std::vector<int>;
using Samples = std::vector<std::int16_t>;

TEST_F(CaptureRingTest, DropsWhatComesWhileStopped) {
    Push(1, 3000);
    EXPECT_EQ(Read(0, 1), (Samples{0, 0}));
    EXPECT_EQ(Rings(), (Counts{0, 0, 0, 0}));
    EXPECT_EQ(ring_.Statistics().framesCaptured, 0U);
    EXPECT_EQ(ring_.Statistics().segmentsCompleted, 0U);
}

TEST_F(CaptureRingTest, StartsAtPositionZeroEachTime) {
    ring_.Start();
    Push(1, 10);
    EXPECT_EQ(Read(0, 2), (Samples{1, -1, 2, -2}));
    ring_.Stop();
    Push(50, 10);
    ring_.Start();
    Push(101, 1);
    EXPECT_EQ(Read(0, 2), (Samples{101, -101, 2, -2}));
}

TEST_F(CaptureRingTest, StartWhileRunningChangesNothing) {
    ring_.Start();
    Push(1, 2);
    ring_.Start();
    Push(3, 1);
    EXPECT_EQ(Read(0, 3), (Samples{1, -1, 2, -2, 3, -3}));
}

TEST_F(CaptureRingTest, RingsWithTheFrameThatFillsThePosition) {
    ring_.Start();
    for (int segment = 0; segment < 4; ++segment) {
        Counts before(4, 0);
        for (int i = 0; i < segment; ++i) before[static_cast<std::size_t>(i)] = 1;
        Push(0, kSegmentFrames - 1);
        EXPECT_EQ(Rings(), before) << segment;
        before[static_cast<std::size_t>(segment)] = 1;
        Push(0, 1);
        EXPECT_EQ(Rings(), before) << segment;
    }
}

TEST_F(CaptureRingTest, WrapsToTheStart) {
    ring_.Start();
    Push(0, 4 * kSegmentFrames);
    Push(20000, 2);
    EXPECT_EQ(Read(0, 3), (Samples{20000, -20000, 20001, -20001, 2, -2}));
    EXPECT_EQ(Read(4 * kSegmentFrames - 1, 1), (Samples{8191, -8191}));
    Push(0, kSegmentFrames - 2);
    EXPECT_EQ(Rings(), (Counts{2, 1, 1, 1}));
}

TEST_F(CaptureRingTest, OnePushMayPassSeveralPositions) {
    ring_.Start();
    Push(0, 9 * kSegmentFrames);
    EXPECT_EQ(Rings(), (Counts{3, 2, 2, 2}));
    EXPECT_EQ(ring_.Statistics().framesCaptured, 9U * kSegmentFrames);
    EXPECT_EQ(ring_.Statistics().segmentsCompleted, 9U);
    EXPECT_EQ(ring_.Statistics().segmentsLost, 0U);
}

TEST_F(CaptureRingTest, CountsRingsThatWereStillWaitingAsLost) {
    ring_.Start();
    signals_[1]->accept = false;
    Push(0, 4 * kSegmentFrames);
    EXPECT_EQ(ring_.Statistics().segmentsCompleted, 4U);
    EXPECT_EQ(ring_.Statistics().segmentsLost, 1U);
}

TEST_F(CaptureRingTest, StatisticsContinueAcrossAStop) {
    ring_.Start();
    Push(0, kSegmentFrames);
    ring_.Stop();
    ring_.Start();
    Push(0, kSegmentFrames + 7);
    EXPECT_EQ(ring_.Statistics().framesCaptured, 2U * kSegmentFrames + 7);
    EXPECT_EQ(ring_.Statistics().segmentsCompleted, 2U);
}

TEST_F(CaptureRingTest, SilenceFillsAGap) {
    ring_.Start();
    Push(5, 8192);
    ring_.PushSilence(kSegmentFrames);
    EXPECT_EQ(Read(kSegmentFrames - 1, 1), (Samples{0, 0}));
    EXPECT_EQ(Rings(), (Counts{2, 1, 1, 1}));
    EXPECT_EQ(ring_.Statistics().framesCaptured, 8192U + kSegmentFrames);
}

TEST_F(CaptureRingTest, PositionsAreForAStoppedRing) {
    ring_.Start();
    EXPECT_EQ(ErrorOf([&] { return ring_.SetPositions({}), 0; }), error_number::kInvalidCall);
    ring_.Stop();
    ring_.SetPositions({});
    ring_.Start();
    Push(0, 4 * kSegmentFrames);
    EXPECT_EQ(Rings(), (Counts{0, 0, 0, 0}));
    EXPECT_EQ(ring_.Statistics().segmentsCompleted, 0U);
}

TEST_F(CaptureRingTest, RefusesPositionsOutsideAndWithoutBell) {
    for (const std::int32_t offset : {-1, kTestedRingBytes, kTestedRingBytes + 1})
        EXPECT_EQ(ErrorOf([&] {
                      return ring_.SetPositions({{offset, signals_[0]}}), 0;
                  }),
                  error_number::kInvalidCall)
            << offset;
    EXPECT_EQ(ErrorOf([&] { return ring_.SetPositions({{0, nullptr}}), 0; }), error_number::kInvalidCall);
    ring_.Start();
    Push(0, kSegmentFrames);
    EXPECT_EQ(Rings(), (Counts{1, 0, 0, 0}));
}

TEST_F(CaptureRingTest, RefusesBadReads) {
    std::vector<std::int16_t> samples(4);
    for (const std::int32_t offset : {-4, 2, kTestedRingBytes - kFrameBytes, kTestedRingBytes})
        EXPECT_EQ(ErrorOf([&] { return ring_.Read(offset, samples), 0; }), error_number::kInvalidCall)
            << offset;
    EXPECT_EQ(ErrorOf([&] { return ring_.Read(0, std::span(samples).first(1)), 0; }),
              error_number::kInvalidCall);
    EXPECT_EQ(ErrorOf([] { return CaptureRing(10).Statistics().segmentsLost; }), error_number::kInvalidCall);
}

}  // namespace
}  // namespace sonavex
