#pragma once

#include <string>

#include "core/ports/Dialogs.h"

namespace sonavex {

// Message boxes of the toolkit. They wait in an event loop of their own, so signals and timers go on
// while one is open. A widget application must exist.
class QtDialogs : public Dialogs {
public:
    // The title in UTF-8, as all texts.
    explicit QtDialogs(std::string title);
    ~QtDialogs() override;
    QtDialogs(const QtDialogs&) = delete;
    QtDialogs& operator=(const QtDialogs&) = delete;

    // A carriage return, alone or with a line feed, is one line break. The text is shown as it is, also
    // when it looks like markup. The box has the usual pointer also while the program is busy.
    void Message(const std::string& text, MessageIcon icon) override;
    bool AskOkCancel(const std::string& text) override;
    bool AskYesNo(const std::string& text) override;
    // Counts: the busy pointer goes when it was taken back as often as it was set. Taking back what was
    // not set does nothing.
    void SetBusyPointer(bool busy) override;

private:
    std::string title_;
    int busy_ = 0;
};

}  // namespace sonavex
