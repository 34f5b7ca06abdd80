#pragma once

#include "core/controls/Control.h"

namespace sonavex {

// One of several exclusive choices. Selecting one does not clear the others; the form does that.
class OptionButton : public Control {
public:
    bool Value() const noexcept { return value_; }
    void SetValue(bool value) { Assign(value_, value); }

    // Call when the user selects it: raises Click if it was not selected.
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
