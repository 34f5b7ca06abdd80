#pragma once

#include <QMessageBox>
#include <string>

#include "core/ports/Dialogs.h"
#include "core/support/Ending.h"

namespace sonavex {

// Qt's message boxes. An open box runs a nested event loop that delivers signals and timers. A request to end
// the program closes it as if it were cancelled; the call then throws EndProgram. A widget application must
// exist.
class QtDialogs : public Dialogs {
public:
    // Title of all boxes. Texts are in UTF-8. The request must outlive this object.
    QtDialogs(std::string title, Ending& ending);
    ~QtDialogs() override;
    QtDialogs(const QtDialogs&) = delete;
    QtDialogs& operator=(const QtDialogs&) = delete;

    // A carriage return, alone or with a line feed, is one line break. Markup in the text is not interpreted.
    // Over the box the pointer is an arrow even while the program is busy.
    void Message(const std::string& text, MessageIcon icon) override;
    bool AskOkCancel(const std::string& text) override;
    bool AskYesNo(const std::string& text) override;
    // Calls are counted: the busy pointer ends when it was reset as often as it was set. A reset without a
    // set has no effect.
    void SetBusyPointer(bool busy) override;

private:
    int ShowBox(const std::string& text, QMessageBox::Icon icon, QMessageBox::StandardButtons buttons);

    std::string title_;
    Ending& ending_;
    int busy_ = 0;
};

}  // namespace sonavex
