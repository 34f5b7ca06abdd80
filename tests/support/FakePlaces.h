#pragma once

#include "core/controls/FormPlaces.h"
#include "support/CallLog.h"

namespace sonavex {

// Places every form at 40, 30. Records "Restore NAME" and "Store NAME".
class FakePlaces : public FormPlaces {
public:
    explicit FakePlaces(CallLog& log) noexcept : log_(log) {}
    void Restore(Window& form) override {
        log_.Call("Restore", form.Name());
        form.Move(40, 30);
    }
    void Store(const Window& form) override { log_.Call("Store", form.Name()); }

private:
    CallLog& log_;
};

}  // namespace sonavex
