#pragma once

#include <string>

namespace sonavex {

// A calendar date: month 1 to 12, day 1 to 31.
struct CalendarDate {
    int year = 0;
    int month = 1;
    int day = 1;
};

// A date and time in the local time zone.
struct DateTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// The date as "mmm dd, yyyy" with English month names, independent of the desktop's language: "Nov 21, 2026".
// Error 5 for a month or day out of range.
std::string FormatDate(const CalendarDate& date);

// "2024-03-09 17:05:00".
std::string DateAndTime(const DateTime& time);

// "17:05:00".
std::string TimeOfDay(const DateTime& time);

}  // namespace sonavex
