#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/plain/PlainEventLoop.h"
#include "platform/ring/CaptureRing.h"
#include "platform/ring/NotificationHub.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

class NotificationHubTest : public testing::Test {
protected:
    EventHandle Create() {
        return hub_.Create([this](EventHandle event) { delivered_.push_back(event); });
    }
    PlainEventLoop loop_;
    NotificationHub hub_{loop_};
    std::vector<EventHandle> delivered_;
};

using Events = std::vector<EventHandle>;

TEST_F(NotificationHubTest, HandsTheEventToItsHandler) {
    const EventHandle first = Create();
    const EventHandle second = Create();
    EXPECT_NE(first, 0);
    EXPECT_NE(first, second);
    hub_.SignalOf(second)->Raise();
    hub_.SignalOf(first)->Raise();
    loop_.Yield();
    EXPECT_EQ(delivered_, (Events{second, first}));
}

TEST_F(NotificationHubTest, DestroyingDiscardsWhatIsWaiting) {
    const EventHandle event = Create();
    hub_.SignalOf(event)->Raise();
    hub_.Destroy(event);
    loop_.Yield();
    EXPECT_EQ(delivered_, Events{});
}

TEST_F(NotificationHubTest, RaisingTheSignalOfADestroyedEventHasNoEffect) {
    const EventHandle event = Create();
    const std::shared_ptr<Signal> signal = hub_.SignalOf(event);
    signal->Raise();
    hub_.Destroy(event);
    loop_.Yield();
    signal->Raise();
    loop_.Yield();
    EXPECT_EQ(delivered_, Events{});
}

TEST_F(NotificationHubTest, AHandlerMayDestroyItsOwnEvent) {
    EventHandle event = 0;
    event = hub_.Create([&](EventHandle self) {
        hub_.Destroy(self);
        delivered_.push_back(event);
    });
    const std::shared_ptr<Signal> signal = hub_.SignalOf(event);
    signal->Raise();
    loop_.Yield();
    signal->Raise();
    loop_.Yield();
    EXPECT_EQ(delivered_, Events{event});
}

TEST_F(NotificationHubTest, UnknownEvents) {
    const EventHandle event = Create();
    hub_.Destroy(event + 1);
    hub_.Destroy(0);
    EXPECT_EQ(ErrorOf([&] { return hub_.SignalOf(event + 1); }), error_number::kInvalidCall);
    EXPECT_EQ(ErrorOf([&] { return hub_.SignalOf(0); }), error_number::kInvalidCall);
    hub_.Destroy(event);
    hub_.Destroy(event);
    EXPECT_EQ(ErrorOf([&] { return hub_.SignalOf(event); }), error_number::kInvalidCall);
}

TEST_F(NotificationHubTest, HandlesAreNotGivenTwice) {
    const EventHandle first = Create();
    hub_.Destroy(first);
    EXPECT_NE(Create(), first);
}

// Four segments of a 32768-byte ring, as the stream engine arms them.
class SegmentNotifications : public NotificationHubTest {
protected:
    SegmentNotifications() {
        std::vector<CaptureRing::Position> positions;
        for (std::int32_t segment = 0; segment < 4; ++segment) {
            events_.push_back(Create());
            positions.push_back({segment * 8192 + 8191, hub_.SignalOf(events_.back())});
        }
        ring_.SetPositions(positions);
        ring_.Start();
    }
    CaptureRing ring_{32768};
    Events events_;
};

TEST_F(SegmentNotifications, AfterAStallOfFiveSegmentsEachIsDeliveredOnceAndOneIsLost) {
    ring_.PushSilence(5 * 2048);
    loop_.Yield();
    EXPECT_EQ(delivered_, events_);
    const CaptureStatistics statistics = ring_.Statistics();
    EXPECT_EQ(statistics.segmentsCompleted, 5U);
    EXPECT_EQ(statistics.segmentsLost, 1U);
    loop_.Yield();
    EXPECT_EQ(delivered_.size(), 4U);
}

TEST_F(SegmentNotifications, ResumeWithTheNextSegmentAfterAStall) {
    ring_.PushSilence(5 * 2048);
    loop_.Yield();
    delivered_.clear();
    ring_.PushSilence(2048);
    loop_.Yield();
    EXPECT_EQ(delivered_, Events{events_[1]});
    EXPECT_EQ(ring_.Statistics().segmentsLost, 1U);
}

TEST_F(SegmentNotifications, SegmentsServedInTimeAreNotLost) {
    for (int i = 0; i < 40; ++i) {
        ring_.PushSilence(2048);
        loop_.Yield();
    }
    ASSERT_EQ(delivered_.size(), 40U);
    for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(delivered_[i], events_[i % 4]);
    EXPECT_EQ(ring_.Statistics().segmentsLost, 0U);
}

}  // namespace
}  // namespace sonavex
