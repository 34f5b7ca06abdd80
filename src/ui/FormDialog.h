#pragma once

#include <QDialog>
#include <functional>

#include "core/controls/Window.h"
#include "core/report/HandlerGuard.h"
#include "ui/Binder.h"
#include "ui/Placement.h"

namespace sonavex::ui {

// Window of a modal form. Closing the window asks the form, and the form closes the window.
class FormDialog : public QDialog {
    Q_OBJECT

public:
    // Shows the dialog and returns when the form has closed it. A request to end the program closes it too;
    // EndProgram is then thrown from here, so that the caller unwinds. Once the end is requested no dialog
    // opens: the constructor and this function throw EndProgram.
    void Run();

    const Binder& Bindings() const noexcept { return binder_; }

    // Also called for the Escape key and the window's close button.
    void reject() override;

    // Rejects a dialog that is shown, after everything that is open over it.
    static void CloseWithChildren(QDialog& dialog);

protected:
    // Frame and guard must outlive the dialog. unload asks the form to close.
    FormDialog(Window& frame, HandlerGuard& guard, std::function<void()> unload);

    // Shows another dialog over this one, under the same rules.
    void Wait(QDialog& dialog);
    // Call when the form has closed.
    void Close() { QDialog::done(QDialog::Accepted); }
    // Passes the size of the layout to the form. Call before Form_Load.
    void ReportSize();
    // Moves the window to the form's position, or centres it if no screen shows that position.
    void Place() { placement_.Place(); }

    Binder binder_;

private:
    Window& frame_;
    HandlerGuard& guard_;
    std::function<void()> unload_;
    Placement placement_;
};

}  // namespace sonavex::ui
