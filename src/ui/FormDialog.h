#pragma once

#include <QDialog>
#include <functional>

#include "core/controls/Window.h"
#include "core/shell/HandlerGuard.h"
#include "ui/Binder.h"

namespace sonavex::ui {

// A form that is shown modally. Closing it, by whatever way, asks the form; the form closes it.
class FormDialog : public QDialog {
    Q_OBJECT

public:
    // Shows the dialog and returns when the form has closed it. What ends the program meanwhile closes it
    // too: the EndProgram is thrown from here, so that whoever opened the dialog unwinds.
    void Run();

    const Binder& Bindings() const noexcept { return binder_; }

    // Also the Escape key and the window's own closing.
    void reject() override;

protected:
    // Frame and guard must outlive the dialog. unload asks the form to close.
    FormDialog(Window& frame, HandlerGuard& guard, std::function<void()> unload);

    // The form has closed.
    void Close() { QDialog::done(QDialog::Accepted); }
    // The size that the layout comes to, for the form's start.
    void TellSize();
    // Where the frame says; in the middle of the screen where no screen shows that.
    void Place();

    void moveEvent(QMoveEvent* event) override;

    Binder binder_;

private:
    Window& frame_;
    HandlerGuard& guard_;
    std::function<void()> unload_;
    bool placed_ = false;
};

}  // namespace sonavex::ui
