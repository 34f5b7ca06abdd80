#include <gtest/gtest.h>

#include "platform/plain/PlainEventLoop.h"
#include "support/AllocationCounter.h"

namespace sonavex {
namespace {

TEST(SignalAllocation, RaisingAndDeliveringAllocateNothing) {
    PlainEventLoop loop;
    int delivered = 0;
    const auto first = loop.CreateSignal([&] { ++delivered; });
    const auto second = loop.CreateSignal([&] { ++delivered; });
    const AllocationCounter counter;
    for (int round = 0; round < 10; ++round) {
        first->Raise();
        second->Raise();
        first->Raise();
        loop.Wait(std::chrono::seconds(10));
    }
    EXPECT_EQ(counter.Count(), 0U);
    EXPECT_EQ(delivered, 20);
}

}  // namespace
}  // namespace sonavex
