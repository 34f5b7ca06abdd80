#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "platform/plain/LocalTime.h"

namespace sonavex {
namespace {

// Sets the time zone while it lives.
class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        if (const char* const present = getenv("TZ")) before_ = present;
        setenv("TZ", zone, 1);
    }
    ~TimeZone() {
        if (before_.empty())
            unsetenv("TZ");
        else
            setenv("TZ", before_.c_str(), 1);
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::string before_;
};

// Seconds since 1970 of a local time in a zone without daylight saving.
std::time_t Seconds(const DateTime& time, int hoursEast) {
    std::tm utc{};
    utc.tm_year = time.year - 1900;
    utc.tm_mon = time.month - 1;
    utc.tm_mday = time.day;
    utc.tm_hour = time.hour - hoursEast;
    utc.tm_min = time.minute;
    utc.tm_sec = time.second;
    return timegm(&utc);
}

TEST(LocalTime, IsThePresentTimeOfTheTimeZone) {
    // POSIX counts hours to the west.
    for (const auto& [zone, hoursEast] :
         {std::pair("UTC0", 0), std::pair("TEST-14", 14), std::pair("TEST11", -11)}) {
        const TimeZone set(zone);
        const std::time_t before = std::time(nullptr);
        const DateTime now = LocalDateTime();
        EXPECT_GE(Seconds(now, hoursEast), before) << zone;
        EXPECT_LE(Seconds(now, hoursEast), std::time(nullptr)) << zone;
    }
}

TEST(LocalTime, IsADateOfTheCalendar) {
    const DateTime now = LocalDateTime();
    EXPECT_GE(now.year, 2024);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12);
    EXPECT_TRUE(now.day >= 1 && now.day <= 31);
}

TEST(LocalTime, TodayIsItsDate) {
    for (const char* zone : {"TEST-14", "TEST11"}) {
        const TimeZone set(zone);
        const auto dateOf = [](const auto& time) { return FormatDate({time.year, time.month, time.day}); };
        const std::string before = dateOf(LocalDateTime());
        const std::string today = dateOf(Today());
        EXPECT_TRUE(today == before || today == dateOf(LocalDateTime())) << zone << ' ' << today;
    }
}

}  // namespace
}  // namespace sonavex
