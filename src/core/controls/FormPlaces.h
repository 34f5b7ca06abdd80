#pragma once

#include "core/controls/Window.h"

namespace sonavex {

// Stores and restores the positions of forms.
class FormPlaces {
public:
    virtual ~FormPlaces() = default;
    // Moves the form to its stored position, or centres it on the screen if none is stored.
    virtual void Restore(Window& form) = 0;
    virtual void Store(const Window& form) = 0;
};

}  // namespace sonavex
