#pragma once

#include <string>
#include <string_view>

#include "core/controls/Control.h"

namespace sonavex {

// A button with a caption. A disabled button cannot be pressed.
class CommandButton : public Control {
public:
    const std::string& Caption() const noexcept { return caption_; }
    void SetCaption(std::string_view caption) { Assign(caption_, caption); }

    // Acts as a press of the button, by the user or by another command.
    void Press() {
        if (Enabled()) Click.Raise();
    }
    UserEvent Click;

private:
    std::string caption_;
};

// An entry of a menu.
class MenuItem : public Control {
public:
    void UserChooses() {
        if (Enabled()) Click.Raise();
    }
    UserEvent Click;
};

}  // namespace sonavex
