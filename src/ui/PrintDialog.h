#pragma once

#include <memory>

#include "core/report/frmPrint.h"
#include "ui/FormDialog.h"

namespace Ui {
class frmPrint;
}

namespace sonavex::ui {

// Window of the print dialog.
class PrintDialog : public FormDialog {
    Q_OBJECT

public:
    // The form must be loaded. Both must outlive the dialog.
    PrintDialog(frmPrint& form, HandlerGuard& guard);
    ~PrintDialog() override;

private:
    std::string AskForFile(const std::string& first);

    frmPrint& form_;
    std::unique_ptr<Ui::frmPrint> ui_;
};

}  // namespace sonavex::ui
