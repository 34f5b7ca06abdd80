#pragma once

#include <functional>

#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/text/ApplicationVersion.h"

namespace sonavex {

// The splash screen.
class frmSplash {
public:
    frmSplash(Dialogs& dialogs, EventLoop& loop);

    Window Frame{"frmSplash"};
    Label lblVersion;
    // True until the splash has been clicked or the start has completed.
    bool Visible() const noexcept { return visible_; }

    void Form_Load(const ApplicationVersion& version);
    // Called when the splash must be redrawn. May be empty.
    std::function<void()> OnShow;
    void Frame_Click();
    // Call when the start has completed.
    void Unload();

private:
    Dialogs& dialogs_;
    EventLoop& loop_;
    bool visible_ = false;
};

}  // namespace sonavex
