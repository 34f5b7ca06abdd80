#pragma once

#include <string>

namespace sonavex {

// A day of the calendar: month 1 to 12, day 1 to 31.
struct CalendarDate {
    int year = 0;
    int month = 1;
    int day = 1;
};

// As "mmm dd, yyyy" with English month names, whatever the desktop's language: "Nov 21, 2026".
// Error 5 for a month or day outside its range.
std::string FormatDate(const CalendarDate& date);

}  // namespace sonavex
