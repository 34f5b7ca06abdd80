#include "core/report/DateTime.h"

#include "core/text/Numbers.h"

namespace sonavex {

std::string DateAndTime(const DateTime& time) {
    return Padded(time.year, 4) + '-' + Padded(time.month, 2) + '-' + Padded(time.day, 2) + ' ' +
           Padded(time.hour, 2) + ':' + Padded(time.minute, 2) + ':' + Padded(time.second, 2);
}

}  // namespace sonavex
