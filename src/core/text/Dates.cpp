#include "core/text/Dates.h"

#include <array>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

}  // namespace

std::string FormatDate(const CalendarDate& date) {
    if (date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31)
        throw RuntimeError(error_number::kInvalidCall);
    return kMonths[static_cast<std::size_t>(date.month) - 1] + (" " + Padded(date.day, 2)) + ", " +
           Padded(date.year, 4);
}

std::string DateAndTime(const DateTime& time) {
    return Padded(time.year, 4) + '-' + Padded(time.month, 2) + '-' + Padded(time.day, 2) + ' ' +
           Padded(time.hour, 2) + ':' + Padded(time.minute, 2) + ':' + Padded(time.second, 2);
}

std::string TimeOfDay(const DateTime& time) {
    return DateAndTime(time).substr(std::string("2024-03-09 ").size());
}

}  // namespace sonavex
