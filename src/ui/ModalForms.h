#pragma once

#include "core/ports/DesktopFiles.h"
#include "core/ports/Diagnostics.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Help.h"
#include "core/report/ErrorState.h"
#include "core/shell/frmMain.h"

namespace sonavex::ui {

// Opens the dialogs about sound devices and returns when they have closed. Throws EndProgram when the program
// ends meanwhile.
class ModalForms {
public:
    // All referenced objects must outlive this object.
    struct Needs {
        frmMain& form;
        ErrorState& error;
        Dialogs& dialogs;
        DesktopFiles& files;
        Diagnostics& diagnostics;
        Help& help;
    };

    explicit ModalForms(const Needs& needs) noexcept : needs_(needs) {}

    void ShowDevices();
    void ShowError();

private:
    Needs needs_;
};

}  // namespace sonavex::ui
