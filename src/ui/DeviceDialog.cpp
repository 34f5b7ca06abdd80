#include "ui/DeviceDialog.h"

#include "ui/widgets/Theme.h"
#include "ui_frmDevices.h"

namespace sonavex::ui {

DeviceDialog::DeviceDialog(frmDevices& form, HandlerGuard& guard)
    : FormDialog(form.Frame, guard, [&form] { form.Unload(); }),
      form_(form),
      ui_(std::make_unique<Ui::frmDevices>()) {
    ui_->setupUi(this);
    ApplyTheme(*this);
    binder_.Bind(*ui_->cmbInputMixer, form_.cmbInputMixer);
    binder_.Bind(*ui_->cmbOutputMixer, form_.cmbOutputMixer);
    binder_.Bind(*ui_->cmbSampleRate, form_.cmbSampleRate);
    binder_.Bind(*ui_->Label5, form_.Label5);
    binder_.Bind(*ui_->cmdOkay, form_.cmdOkay);
    binder_.Bind(*ui_->cmdCancel, form_.cmdCancel);
    binder_.Bind(*ui_->cmdHelp, form_.cmdHelp);
    form_.OnClosed = [this] { Close(); };
    ReportSize();
    form_.Form_Load();
    Place();
}

DeviceDialog::~DeviceDialog() {
    form_.OnClosed = {};
}

}  // namespace sonavex::ui
