#include "ui/ModalForms.h"

#include "core/audio/frmDevices.h"
#include "core/report/frmError.h"
#include "ui/DeviceDialog.h"
#include "ui/ErrorDialog.h"

namespace sonavex::ui {

void ModalForms::ShowDevices() {
    frmDevices devices(needs_.form.DevicesNeeds(needs_.files, needs_.help), needs_.form.DevicesLabels());
    DeviceDialog dialog(devices, needs_.form.Guard);
    dialog.Run();
}

void ModalForms::ShowError() {
    const StreamEngine& engine = needs_.form.Instrument.Engine;
    frmError error({needs_.error, needs_.form.Instrument.Shared, needs_.form.Instrument.Settings,
                    needs_.dialogs, needs_.files, needs_.diagnostics, needs_.help, engine.InputDeviceId,
                    engine.OutputDeviceId});
    ErrorDialog dialog(error, needs_.form.Guard);
    dialog.Run();
}

}  // namespace sonavex::ui
