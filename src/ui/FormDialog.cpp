#include "ui/FormDialog.h"

#include <QApplication>
#include <QMainWindow>
#include <optional>
#include <utility>

#include "core/support/EndProgram.h"
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

// Redirects requests to end the program while it exists.
class EndTaker {
public:
    EndTaker(HandlerGuard& guard, std::function<void(const EndProgram&)> take)
        : guard_(guard), before_(std::exchange(guard.OnEnd, std::move(take))) {}
    ~EndTaker() { guard_.OnEnd = std::move(before_); }
    EndTaker(const EndTaker&) = delete;
    EndTaker& operator=(const EndTaker&) = delete;

private:
    HandlerGuard& guard_;
    std::function<void(const EndProgram&)> before_;
};

}  // namespace

FormDialog::FormDialog(Window& frame, HandlerGuard& guard, std::function<void()> unload)
    : QDialog(Owner()),
      binder_(guard, [] {}),
      frame_(frame),
      guard_(guard),
      unload_(std::move(unload)),
      placement_(*this, frame) {
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

void FormDialog::Run() {
    std::optional<EndProgram> end;
    {
        const EndTaker taker(guard_, [&](const EndProgram& asked) {
            if (!end) end = asked;
            Close();
        });
        setWindowTitle(QString::fromStdString(frame_.Caption()));
        binder_.Flush();
        exec();
    }
    if (end) throw EndProgram(*end);
}

void FormDialog::reject() {
    guard_.Run(unload_);
}

void FormDialog::ReportSize() {
    adjustSize();
    placement_.ReportSize();
}

}  // namespace sonavex::ui
