#pragma once

#include "core/text/Dates.h"

namespace sonavex {

// The present time in the user's time zone.
DateTime LocalDateTime();
// The present date in the user's time zone.
CalendarDate Today();

}  // namespace sonavex
