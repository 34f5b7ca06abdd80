#pragma once

#include <string>

namespace sonavex {

// A calendar date: month 1 to 12, day 1 to 31.
struct CalendarDate {
    int year = 0;
    int month = 1;
    int day = 1;
};

// The date as "mmm dd, yyyy" with English month names, independent of the desktop's language: "Nov 21, 2026".
// Error 5 for a month or day out of range.
std::string FormatDate(const CalendarDate& date);

}  // namespace sonavex
