#include "ui/FormDialog.h"

#include <QApplication>
#include <QMainWindow>
#include <utility>

#include "core/support/Ending.h"
#include "ui/HelpWindow.h"

namespace sonavex::ui {
namespace {

// The splash and the help window cannot own a dialog: they close, or get another parent, while it is open.
bool MayOwn(const QWidget& window) {
    return window.windowType() != Qt::SplashScreen && qobject_cast<const HelpWindow*>(&window) == nullptr;
}

// Whether the window claims the dialogs that open while it is active.
bool OwnsDialogs(const QWidget* window) {
    return window != nullptr && window->property("ownsDialogs").toBool();
}

// Owner of a new dialog: an open dialog, else the active window if it says so, else the main window, else the
// active window.
QWidget* Owner() {
    if (QWidget* const modal = QApplication::activeModalWidget(); modal != nullptr) return modal;
    if (QWidget* const active = QApplication::activeWindow(); OwnsDialogs(active)) return active;
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->isVisible() && qobject_cast<QMainWindow*>(window) != nullptr) return window;
    QWidget* const active = QApplication::activeWindow();
    return active != nullptr && MayOwn(*active) ? active : nullptr;
}

// Closes menus, and the dialogs that the toolkit has opened over this one, such as the file dialog's question
// before it deletes a file. Each runs a loop that must end first. A message box that is closed takes its
// cancelling button; done() would leave it without a button, which the file dialog takes for consent.
void CloseOver(QDialog& dialog) {
    QWidget* popup = nullptr;
    while ((popup = QApplication::activePopupWidget()) != nullptr && popup->isVisible()) popup->hide();
    for (QDialog* const child : dialog.findChildren<QDialog*>())
        if (child->isModal() && child->isVisible()) child->close();
}

}  // namespace

FormDialog::FormDialog(Window& frame, HandlerGuard& guard, std::function<void()> unload)
    : QDialog(Owner()),
      binder_(guard, [] {}),
      frame_(frame),
      guard_(guard),
      unload_(std::move(unload)),
      placement_(*this, frame) {
    guard_.Ending().ThrowIfRequested();
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

void FormDialog::Run() {
    setWindowTitle(QString::fromStdString(frame_.Caption()));
    binder_.Flush();
    Wait(*this);
}

void FormDialog::Wait(QDialog& dialog) {
    guard_.Ending().Wait([&] { dialog.exec(); }, [&] { CloseWithChildren(dialog); });
}

void FormDialog::CloseWithChildren(QDialog& dialog) {
    CloseOver(dialog);
    dialog.done(QDialog::Rejected);
}

void FormDialog::reject() {
    guard_.Run(unload_);
}

void FormDialog::ReportSize() {
    adjustSize();
    placement_.ReportSize();
}

}  // namespace sonavex::ui
