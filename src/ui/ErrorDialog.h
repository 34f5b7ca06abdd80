#pragma once

#include <memory>

#include "core/report/frmError.h"
#include "ui/FormDialog.h"

namespace Ui {
class frmError;
}

namespace sonavex::ui {

// Window of the dialog about a failed sound device.
class ErrorDialog : public FormDialog {
    Q_OBJECT

public:
    // Loads the form. Both must outlive the dialog.
    ErrorDialog(frmError& form, HandlerGuard& guard);
    ~ErrorDialog() override;

private:
    void SetSize();

    frmError& form_;
    std::unique_ptr<Ui::frmError> ui_;
};

}  // namespace sonavex::ui
