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

// Owner of a new dialog: an open dialog, else the main window, else the active window.
QWidget* Owner() {
    if (QWidget* const modal = QApplication::activeModalWidget(); modal != nullptr) return modal;
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->isVisible() && qobject_cast<QMainWindow*>(window) != nullptr) return window;
    QWidget* const active = QApplication::activeWindow();
    return active != nullptr && MayOwn(*active) ? active : nullptr;
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
    guard_.Ending().Wait([&] { dialog.exec(); }, [&] { dialog.done(QDialog::Rejected); });
}

void FormDialog::reject() {
    guard_.Run(unload_);
}

void FormDialog::ReportSize() {
    adjustSize();
    placement_.ReportSize();
}

}  // namespace sonavex::ui
