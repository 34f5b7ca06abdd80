#pragma once

#include "core/controls/Control.h"

namespace sonavex {

// One choice of several that exclude each other. Selecting one does not change the others: the form
// does that.
class OptionButton : public Control {
public:
    bool Value() const noexcept { return value_; }
    void SetValue(bool value) { Assign(value_, value); }

    // The user selects it: raises Click when it was not selected before.
    void UserSelects() {
        if (value_) return;
        SetValue(true);
        Click.Raise();
    }
    UserEvent Click;

private:
    bool value_ = false;
};

}  // namespace sonavex
