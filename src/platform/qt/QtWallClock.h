#pragma once

#include "core/report/DateTime.h"

namespace sonavex {

// The present time of the user's time zone.
DateTime LocalDateTime();

}  // namespace sonavex
