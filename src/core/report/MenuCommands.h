#pragma once

#include <functional>

#include "core/mixer/MixerSession.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Help.h"
#include "core/ports/Launcher.h"
#include "core/report/MenuControls.h"
#include "core/settings/SharedState.h"
#include "core/text/ApplicationVersion.h"

namespace sonavex {

// The menu commands that open other windows, programs or web pages.
class MenuCommands {
public:
    // All referenced objects must outlive the commands.
    struct Needs {
        Launcher& launcher;
        Dialogs& dialogs;
        Help& help;
        const SharedState& shared;
        const MixerSession& mixers;
        ApplicationVersion version;
    };

    // Handles the entries from now on. They must outlive the commands.
    MenuCommands(Needs needs, MenuControls& menus);
    ~MenuCommands();
    MenuCommands(const MenuCommands&) = delete;
    MenuCommands& operator=(const MenuCommands&) = delete;

    // Shows the about box and returns when it has closed.
    std::function<void()> ShowAbout;

    void mnuAbout_Click();
    void mnuHelpContents_Click();
    void mnuCheckVersion_Click();
    void mnuemail_Click();
    void mnuInputControl_Click();
    void mnuPlayControl_Click();

private:
    // Asks the user before the browser connects to the Internet.
    bool Connected(const char* question);

    Needs needs_;
    MenuControls& menus_;
};

}  // namespace sonavex
