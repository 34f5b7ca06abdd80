#include "ui/ModalForms.h"

#include "core/audio/frmDevices.h"
#include "core/report/frmError.h"
#include "ui/DeviceDialog.h"
#include "ui/ErrorDialog.h"

namespace sonavex::ui {

void ModalForms::ShowDevices() {
    frmDevices devices(world_.form.DevicesNeeds(world_.files, world_.help), world_.form.DevicesLabels());
    DeviceDialog dialog(devices, world_.form.Guard);
    dialog.Run();
}

void ModalForms::ShowError() {
    const StreamEngine& engine = world_.form.Engine;
    frmError error({world_.error, world_.form.Shared, world_.form.Stored, world_.dialogs, world_.files,
                    world_.diagnostics, world_.help, engine.InputDeviceId, engine.OutputDeviceId});
    ErrorDialog dialog(error, world_.form.Guard);
    dialog.Run();
}

}  // namespace sonavex::ui
