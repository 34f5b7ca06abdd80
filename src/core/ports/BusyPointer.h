#pragma once

#include "core/ports/Dialogs.h"

namespace sonavex {

// Shows the busy pointer for the duration of a scope, or until it is restored earlier.
class BusyPointer {
public:
    explicit BusyPointer(Dialogs& dialogs) : dialogs_(dialogs) { dialogs_.SetBusyPointer(true); }
    ~BusyPointer() { Restore(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

    void Restore() {
        if (shown_) dialogs_.SetBusyPointer(false);
        shown_ = false;
    }

private:
    Dialogs& dialogs_;
    bool shown_ = true;
};

}  // namespace sonavex
