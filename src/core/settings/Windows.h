#pragma once

#include <cstdint>

#include "core/controls/Window.h"
#include "core/ports/Desktop.h"
#include "core/settings/Settings.h"

// Remembers where each form was last placed. User-interface thread only.
namespace sonavex::Windows {

struct Place {
    std::int32_t left = 0;
    std::int32_t top = 0;
    friend bool operator==(const Place&, const Place&) = default;
};

// Where the form was, or the middle of the screen when it never was anywhere; pulled back when it
// would reach beyond the right edge, or come within 50 units of the bottom edge. A stored position
// that is not a number raises error 13.
Place Restore(const Settings& settings, const Window& form, const ScreenArea& screens);

// Keeps where the form is now.
void Store(Settings& settings, const Window& form);

}  // namespace sonavex::Windows
