#pragma once

#include <memory>

#include "core/audio/frmDevices.h"
#include "ui/FormDialog.h"

namespace Ui {
class frmDevices;
}

namespace sonavex::ui {

// Window of the device selection.
class DeviceDialog : public FormDialog {
    Q_OBJECT

public:
    // Loads the form; exceptions of the form's start pass through. Both must outlive the dialog.
    DeviceDialog(frmDevices& form, HandlerGuard& guard);
    ~DeviceDialog() override;

private:
    frmDevices& form_;
    std::unique_ptr<Ui::frmDevices> ui_;
};

}  // namespace sonavex::ui
