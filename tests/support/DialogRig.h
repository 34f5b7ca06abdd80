#pragma once

#include "core/report/DesktopErrorLog.h"
#include "support/FakeSoundSystem.h"
#include "support/World.h"
#include "ui/ModalForms.h"

namespace sonavex {

// The main form on scripted devices, with the real error log and the real dialogs about sound devices.
class DialogRig : public World {
public:
    DialogRig() {
        store.Save("SoundCard", "Output", "out-a");
        store.Save("SoundCard", "Input", "in-b");
        form.ShowDeviceDialog = [this] {
            log.Note("ShowDevices");
            forms.ShowDevices();
        };
        report.ShowDialog = [this] {
            log.Note("ShowError");
            forms.ShowError();
        };
    }

    FakeSoundSystem sound{log};
    Settings settings{store};
    ScriptedDiagnostics diagnostics{log};
    DesktopErrorLog report{{settings, sound, desktop, files, FixedTime}};
    frmMain form{On(sound, report)};
    ui::ModalForms forms{{form, report.State(), dialogs, files, diagnostics, help}};
};

}  // namespace sonavex
