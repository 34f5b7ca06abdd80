#include "ui/CalibrateDialog.h"

#include "ui/widgets/Theme.h"
#include "ui_frmCalibrate.h"

namespace sonavex::ui {

CalibrateDialog::CalibrateDialog(frmCalibrate& form, HandlerGuard& guard)
    : FormDialog(form.Frame, guard, [&form] { form.cmdClose_Click(); }),
      form_(form),
      ui_(std::make_unique<Ui::frmCalibrate>()) {
    ui_->setupUi(this);
    ApplyTheme(*this);
    binder_.Bind(*ui_->cmbChannel, form_.cmbChannel);
    binder_.Bind(*ui_->lblDevice, form_.lblDevice);
    binder_.Bind(*ui_->lblPresent, form_.lblPresent);
    binder_.Bind(*ui_->lblSteps, form_.lblSteps);
    binder_.Bind(*ui_->lblLevel, form_.lblLevel);
    binder_.Bind(*ui_->lblTrouble, form_.lblTrouble);
    binder_.Bind(*ui_->txtVolts, form_.txtVolts);
    binder_.Bind(*ui_->cmdPlay, form_.cmdPlay);
    binder_.Bind(*ui_->cmdStore, form_.cmdStore);
    binder_.Bind(*ui_->cmdRemove, form_.cmdRemove);
    binder_.Bind(*ui_->cmdClose, form_.cmdClose);
    form_.OnClosed = [this] { Close(); };
    ui_->txtVolts->setFocus();
}

CalibrateDialog::~CalibrateDialog() {
    form_.OnClosed = {};
}

}  // namespace sonavex::ui
