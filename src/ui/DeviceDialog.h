#pragma once

#include <memory>

#include "core/audio/frmDevices.h"
#include "ui/FormDialog.h"

namespace Ui {
class frmDevices;
}

namespace sonavex::ui {

// The selection of the sound devices on the screen.
class DeviceDialog : public FormDialog {
    Q_OBJECT

public:
    // Loads the form; what the form's start throws leaves here. Both must outlive the dialog.
    DeviceDialog(frmDevices& form, HandlerGuard& guard);
    ~DeviceDialog() override;

private:
    frmDevices& form_;
    std::unique_ptr<Ui::frmDevices> ui_;
};

}  // namespace sonavex::ui
