#pragma once

#include "core/text/Dates.h"

namespace sonavex {

// The present time in the user's time zone.
DateTime LocalDateTime();
// Its date.
CalendarDate Today();

}  // namespace sonavex
