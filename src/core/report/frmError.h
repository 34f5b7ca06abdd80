#pragma once

#include <functional>
#include <string>

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/ports/DesktopFiles.h"
#include "core/ports/Diagnostics.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Help.h"
#include "core/report/ErrorState.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// The dialog about a failed sound device. Closing it lets the program go on. User-interface thread only.
class frmError {
public:
    // What the form works with. Everything must outlive it.
    struct Environment {
        ErrorState& state;
        const SharedState& shared;
        Settings& settings;
        Dialogs& dialogs;
        DesktopFiles& files;
        Diagnostics& diagnostics;
        Help& help;
        // Of the devices that the engine uses or has tried to use.
        std::string inputDeviceId;
        std::string outputDeviceId;
    };

    explicit frmError(const Environment& environment);
    ~frmError();
    frmError(const frmError&) = delete;
    frmError& operator=(const frmError&) = delete;

    void Form_Load();
    // The dialog closes: a report under way is given up.
    void Unload();
    std::function<void()> OnUnloaded;

    // Has the system report on its sound devices into a file on the desktop.
    void cmdDirectX_Click();
    // Engine not running: forgets the stored devices, so that they are chosen anew. Else keeps those in
    // use. Closes the dialog.
    void cmdNewSoundCard_Click();
    // Ends the program at once: throws EndProgram.
    void Command1_Click();
    void Command2_Click();

    Window Frame{"frmError"};
    Label lblMessage;
    Label lblStatus;  // how the report on the sound devices goes on
    CommandButton cmdDirectX;
    CommandButton cmdNewSoundCard;
    CommandButton Command1;  // ends the program
    CommandButton Command2;  // help

private:
    void TakeReport(const std::optional<std::string>& report);
    std::string Keep(const std::string& report);

    Environment env_;
};

}  // namespace sonavex
