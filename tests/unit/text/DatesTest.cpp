#include <gtest/gtest.h>

#include "core/support/RuntimeError.h"
#include "core/text/Dates.h"

namespace sonavex {
namespace {

TEST(DatesTest, FormatsMonthDayAndYear) {
    EXPECT_EQ(FormatDate({2026, 11, 21}), "Nov 21, 2026");
    EXPECT_EQ(FormatDate({2027, 1, 5}), "Jan 05, 2027");
    EXPECT_EQ(FormatDate({999, 12, 31}), "Dec 31, 0999");
}

TEST(DatesTest, RefusesDaysThatNoCalendarHas) {
    for (const CalendarDate& date : {CalendarDate{2026, 0, 1}, {2026, 13, 1}, {2026, 1, 0}, {2026, 1, 32}})
        EXPECT_THROW(FormatDate(date), RuntimeError);
}

}  // namespace
}  // namespace sonavex
