#pragma once

#include <functional>
#include <string>

namespace sonavex {

// A date and time in the local time zone.
struct DateTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Returns the present local time.
using WallClock = std::function<DateTime()>;

// "2024-03-09 17:05:00".
std::string DateAndTime(const DateTime& time);

}  // namespace sonavex
