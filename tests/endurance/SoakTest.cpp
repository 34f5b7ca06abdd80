#include <gtest/gtest.h>

#include "endurance/Soak.h"

namespace sonavex {
namespace {

// Half an hour of sound with an event every few seconds; sonavex-soak takes as many days as one likes.
TEST(Soak, HoursOfUseAndFaultsLeaveTheReadingsRight) {
    Soak soak(20260, 100.0);
    ASSERT_NO_THROW(soak.Run(30'000, 3'000));
    const Soak::Report& report = soak.Result();
    EXPECT_GE(report.checks, 10U);
    for (std::size_t i = 0; i < Soak::kEvents; ++i)
        EXPECT_GT(report.events[i], 0U) << Soak::Name(static_cast<Soak::Event>(i));
    EXPECT_GT(report.losses, 0U);
    EXPECT_GT(report.segmentsLost, 0U);
}

}  // namespace
}  // namespace sonavex
