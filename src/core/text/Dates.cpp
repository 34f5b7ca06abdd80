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

}  // namespace sonavex
