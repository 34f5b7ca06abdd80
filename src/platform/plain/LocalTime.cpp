#include "platform/plain/LocalTime.h"

#include <ctime>

namespace sonavex {

DateTime LocalDateTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    tzset();  // localtime_r need not do it
    localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

CalendarDate Today() {
    const DateTime now = LocalDateTime();
    return {now.year, now.month, now.day};
}

}  // namespace sonavex
