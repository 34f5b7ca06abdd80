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

// The dialog about a failed sound device. The program continues when it is closed.
class frmError {
public:
    // All referenced objects must outlive the form.
    struct Needs {
        ErrorState& state;
        const SharedState& shared;
        Settings& settings;
        Dialogs& dialogs;
        DesktopFiles& files;
        Diagnostics& diagnostics;
        Help& help;
        // Identifiers of the devices that the engine uses or has tried to use.
        std::string inputDeviceId;
        std::string outputDeviceId;
    };

    explicit frmError(const Needs& needs);
    ~frmError();
    frmError(const frmError&) = delete;
    frmError& operator=(const frmError&) = delete;

    void Form_Load();
    // Call when the dialog closes: cancels a running report.
    void Unload();
    std::function<void()> OnClosed;

    // Writes the system's report about its sound devices to a file on the desktop.
    void cmdDirectX_Click();
    // If the engine runs, stores the devices in use. Otherwise clears the stored devices, so that the user
    // can select others. Closes the dialog.
    void cmdNewSoundCard_Click();
    // Ends the program at once: throws EndProgram.
    void Command1_Click();
    void Command2_Click();

    Window Frame{"frmError"};
    Label lblMessage;
    Label lblStatus;  // progress of the report
    CommandButton cmdDirectX;
    CommandButton cmdNewSoundCard;
    CommandButton Command1;  // ends the program
    CommandButton Command2;  // help

private:
    void TakeReport(const std::optional<std::string>& report);
    std::string Keep(const std::string& report);

    Needs needs_;
};

}  // namespace sonavex
