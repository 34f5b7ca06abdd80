#pragma once

#include <cstdint>

#include "core/controls/Window.h"
#include "core/ports/Desktop.h"
#include "core/settings/Settings.h"

// Stores and restores the position of each form.
namespace sonavex::Windows {

struct Place {
    std::int32_t left = 0;
    std::int32_t top = 0;
    friend bool operator==(const Place&, const Place&) = default;
};

// The stored position of the form, or the centred one if none is stored, kept on the screens. Sets the form's
// limits. A stored position that is not a number raises error 13.
Place Restore(const Settings& settings, Window& form, const ScreenArea& screens);

// The place, pulled back if the form's right edge would be beyond its limit, or its bottom edge beyond or
// less than 50 units before it. For a form whose size changes after Restore.
Place KeptOnScreens(Place place, const Window& form);

// Stores the form's present position.
void Store(Settings& settings, const Window& form);

}  // namespace sonavex::Windows
