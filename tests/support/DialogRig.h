#pragma once

#include "core/report/DesktopErrorLog.h"
#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"
#include "support/ReportFakes.h"
#include "ui/ModalForms.h"

namespace sonavex {

// The main form on scripted devices, with the real error log and the real dialogs about sound devices.
class DialogRig : public FormWorld {
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
    MemoryDesktopFiles files{log};
    ScriptedDiagnostics diagnostics{log};
    RecordingHelp help{log};
    DesktopErrorLog report{{settings, sound, desktop, files, FixedTime}};
    frmMain form{{store, sound, loop, dialogs, desktop, report, mixers}};
    ui::ModalForms forms{{form, report.State(), dialogs, files, diagnostics, help}};
};

}  // namespace sonavex
