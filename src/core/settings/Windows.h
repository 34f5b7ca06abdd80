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

// The stored position of the form, or the centred one if none is stored. A position beyond the right screen
// edge, or closer than 50 units to the bottom edge, is pulled back. A stored position that is not a number
// raises error 13.
Place Restore(const Settings& settings, const Window& form, const ScreenArea& screens);

// Stores the form's present position.
void Store(Settings& settings, const Window& form);

}  // namespace sonavex::Windows
