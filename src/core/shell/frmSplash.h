#pragma once

#include <functional>

#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/text/ApplicationVersion.h"

namespace sonavex {

// What is shown while the instrument starts. User-interface thread only.
class frmSplash {
public:
    frmSplash(Dialogs& dialogs, EventLoop& loop);

    Window Frame{"frmSplash"};
    Label lblVersion;
    // True until the splash has been clicked away or the start is over.
    bool Visible() const noexcept { return visible_; }

    void Form_Load(const ApplicationVersion& version);
    // Told when there is something to show. May be empty.
    std::function<void()> OnShow;
    void Frame_Click();
    // The start is over.
    void Unload();

private:
    Dialogs& dialogs_;
    EventLoop& loop_;
    bool visible_ = false;
};

}  // namespace sonavex
