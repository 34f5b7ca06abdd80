#include "platform/qt/QtDialogs.h"

#include <QApplication>
#include <QCursor>
#include <QMainWindow>
#include <QString>
#include <utility>

namespace sonavex {
namespace {

QMessageBox::Icon IconOf(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::kInformation:
            return QMessageBox::Information;
        case MessageIcon::kCritical:
            return QMessageBox::Critical;
        case MessageIcon::kNone:
            break;
    }
    return QMessageBox::NoIcon;
}

QString WithLineBreaks(const std::string& text) {
    return QString::fromStdString(text)
        .replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
        .replace(u'\r', u'\n');
}

// Shows the arrow while it exists: the user can click in the box even while the program is busy.
class UsualPointer {
public:
    explicit UsualPointer(bool needed) : needed_(needed) {
        if (needed_) QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
    }
    ~UsualPointer() {
        if (needed_) QGuiApplication::restoreOverrideCursor();
    }
    UsualPointer(const UsualPointer&) = delete;
    UsualPointer& operator=(const UsualPointer&) = delete;

private:
    bool needed_;
};

// The window that a box belongs to: the main window, one of its dialogs, or an active window that claims its
// dialogs. Other windows, such as the help, may close while the box is open.
QWidget* Owner() {
    if (QWidget* const modal = QApplication::activeModalWidget(); modal != nullptr) return modal;
    QWidget* const active = QApplication::activeWindow();
    if (active != nullptr && active->property("ownsDialogs").toBool()) return active;
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->isVisible() && qobject_cast<QMainWindow*>(window) != nullptr) return window;
    return active;
}

}  // namespace

QtDialogs::QtDialogs(std::string title, Ending& ending) : title_(std::move(title)), ending_(ending) {}

QtDialogs::~QtDialogs() {
    while (busy_ > 0) SetBusyPointer(false);
}

int QtDialogs::ShowBox(const std::string& text, QMessageBox::Icon icon,
                       QMessageBox::StandardButtons buttons) {
    const UsualPointer pointer(QGuiApplication::overrideCursor() != nullptr);
    QMessageBox box(icon, QString::fromStdString(title_), WithLineBreaks(text), buttons, Owner());
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton((buttons & QMessageBox::Yes) != 0 ? QMessageBox::Yes : QMessageBox::Ok);
    int pressed = QMessageBox::NoButton;
    ending_.WaitForMessage([&] { pressed = box.exec(); }, [&] { box.reject(); });
    return pressed;
}

void QtDialogs::Message(const std::string& text, MessageIcon icon) {
    ShowBox(text, IconOf(icon), QMessageBox::Ok);
}

bool QtDialogs::AskOkCancel(const std::string& text) {
    return ShowBox(text, QMessageBox::Question, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

bool QtDialogs::AskYesNo(const std::string& text) {
    return ShowBox(text, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void QtDialogs::SetBusyPointer(bool busy) {
    if (busy) {
        ++busy_;
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (busy_ > 0) {
        --busy_;
        QGuiApplication::restoreOverrideCursor();
    }
}

}  // namespace sonavex
