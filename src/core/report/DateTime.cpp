#include "core/report/DateTime.h"

#include <cstddef>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

std::string Padded(int value, std::size_t digits) {
    std::string text = CStr(value);
    if (text.size() < digits) text.insert(0, digits - text.size(), '0');
    return text;
}

}  // namespace

std::string DateAndTime(const DateTime& time) {
    return Padded(time.year, 4) + '-' + Padded(time.month, 2) + '-' + Padded(time.day, 2) + ' ' +
           Padded(time.hour, 2) + ':' + Padded(time.minute, 2) + ':' + Padded(time.second, 2);
}

}  // namespace sonavex
