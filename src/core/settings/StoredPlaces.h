#pragma once

#include "core/controls/FormPlaces.h"
#include "core/settings/Windows.h"

namespace sonavex {

// Stores the positions of the modeless forms in the settings.
class StoredPlaces : public FormPlaces {
public:
    // Both must outlive this object.
    StoredPlaces(SettingsStore& store, Desktop& desktop) noexcept : settings_(store), desktop_(desktop) {}

    void Restore(Window& form) override {
        const Windows::Place place = Windows::Restore(settings_, form, desktop_.Screens());
        form.Move(place.left, place.top);
    }
    void Store(const Window& form) override { Windows::Store(settings_, form); }

private:
    Settings settings_;
    Desktop& desktop_;
};

}  // namespace sonavex
