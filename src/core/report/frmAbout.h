#pragma once

#include <functional>
#include <string>

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Launcher.h"
#include "core/text/ApplicationVersion.h"

namespace sonavex {

// The about box.
class frmAbout {
public:
    // Launcher and dialogs must outlive the form.
    frmAbout(Launcher& launcher, Dialogs& dialogs, std::string title, ApplicationVersion version);

    Window Frame{"frmAbout"};
    Label lblTitle;
    Label lblVersion;
    Label lblBuild;
    Label lblWeb;  // the maker's web address; opens when clicked
    CommandButton cmdOk;
    CommandButton cmdSysInfo;

    void Form_Load();
    void cmdOk_Click();
    void cmdSysInfo_Click();
    void lblWeb_Click();

    // Called when the box must close.
    std::function<void()> OnClosed;

private:
    Launcher& launcher_;
    Dialogs& dialogs_;
    std::string title_;
    ApplicationVersion version_;
};

}  // namespace sonavex
