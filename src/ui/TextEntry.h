#pragma once

#include <QLineEdit>
#include <QObject>

#include "core/controls/Controls.h"
#include "core/report/HandlerGuard.h"

namespace sonavex::ui {

// What the user types into a box. The control receives the text only when the entry is complete; until then
// the text is pending, and the box alone has it. Escape discards a pending text.
class TextEntry : public QObject {
    Q_OBJECT

public:
    // Both must outlive the entry.
    TextEntry(QLineEdit& box, TextBox& control, QObject* parent);

    // Passes a pending text to the control: text, Change, Leave. Does nothing if no text is pending.
    void Complete(HandlerGuard& guard);
    // Shows the control's text. A pending text remains unless the form has written another one.
    void Show();

Q_SIGNALS:
    // The user has pressed Return or has left the box for another widget of the window.
    void Finished();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool Pending() const;
    void OnEdited();
    void OnFocusOut(Qt::FocusReason reason);
    void OnKey(int key);

    QLineEdit& box_;
    TextBox& control_;
    std::string shown_;    // the control's text that the box showed last
    bool edited_ = false;  // by the user, since that text was shown
};

}  // namespace sonavex::ui
