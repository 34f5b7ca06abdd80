#pragma once

#include <memory>

#include "core/report/frmAbout.h"
#include "ui/FormDialog.h"

namespace Ui {
class frmAbout;
}

namespace sonavex::ui {

// Window of the about box.
class AboutDialog : public FormDialog {
    Q_OBJECT

public:
    // Loads the form. Both must outlive the dialog.
    AboutDialog(frmAbout& form, HandlerGuard& guard);
    ~AboutDialog() override;

private:
    frmAbout& form_;
    std::unique_ptr<Ui::frmAbout> ui_;
};

}  // namespace sonavex::ui
