#pragma once

#include <memory>

#include "core/precise/calibration/frmCalibrate.h"
#include "ui/FormDialog.h"

namespace Ui {
class frmCalibrate;
}

namespace sonavex::ui {

// Window of the calibration dialog.
class CalibrateDialog : public FormDialog {
    Q_OBJECT

public:
    // The form must be loaded. Both must outlive the dialog.
    CalibrateDialog(frmCalibrate& form, HandlerGuard& guard);
    ~CalibrateDialog() override;

private:
    frmCalibrate& form_;
    std::unique_ptr<Ui::frmCalibrate> ui_;
};

}  // namespace sonavex::ui
