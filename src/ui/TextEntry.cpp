#include "ui/TextEntry.h"

#include <QKeyEvent>

namespace sonavex::ui {

TextEntry::TextEntry(QLineEdit& box, TextBox& control, QObject* parent)
    : QObject(parent), box_(box), control_(control) {
    box.installEventFilter(this);
    connect(&box, &QLineEdit::textEdited, this, &TextEntry::OnEdited);
    connect(&box, &QLineEdit::returnPressed, this, &TextEntry::Finished);
}

// A text dropped into the box does not move the focus. Without the focus the box could not be left.
void TextEntry::OnEdited() {
    edited_ = true;
    if (!box_.hasFocus()) box_.setFocus();
}

bool TextEntry::Pending() const {
    const bool unwritten = control_.Text() == shown_;
    return edited_ && unwritten && control_.Enabled() && box_.text().toStdString() != shown_;
}

// Shows the result at once, because the user may type on before the next flush.
void TextEntry::Complete(HandlerGuard& guard) {
    if (!Pending()) return;
    edited_ = false;
    const std::string text = box_.text().toStdString();
    guard.Run([&] { control_.UserTypes(text); });
    guard.Run([&] { control_.UserLeaves(); });
    Show();
}

void TextEntry::Show() {
    if (Pending()) return;
    edited_ = false;
    shown_ = control_.Text();
    const QString text = QString::fromStdString(shown_);
    if (box_.text() != text) box_.setText(text);
}

bool TextEntry::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) OnFocusOut(static_cast<QFocusEvent*>(event)->reason());
    if (event->type() == QEvent::KeyPress) OnKey(static_cast<QKeyEvent*>(event)->key());
    return QObject::eventFilter(watched, event);
}

// From another window or a menu the user returns to the box.
void TextEntry::OnFocusOut(Qt::FocusReason reason) {
    if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) Q_EMIT Finished();
}

// The key also reaches the window: Escape closes a dialog.
void TextEntry::OnKey(int key) {
    if (key == Qt::Key_Escape && Pending()) box_.setText(QString::fromStdString(shown_));
}

}  // namespace sonavex::ui
