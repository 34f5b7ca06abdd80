#pragma once

#include <string>

namespace sonavex {

enum class MessageIcon { kNone, kInformation, kCritical };

// Message boxes, questions and the busy pointer.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Shows a message box with the application's title and waits until it is closed. Line breaks in the text
    // are carriage returns.
    virtual void Message(const std::string& text, MessageIcon icon) = 0;

    // Like Message, with OK and Cancel; true for OK.
    virtual bool AskOkCancel(const std::string& text) = 0;

    // Like Message, with Yes and No; true for Yes.
    virtual bool AskYesNo(const std::string& text) = 0;

    // Shows or removes the busy pointer.
    virtual void SetBusyPointer(bool busy) = 0;
};

}  // namespace sonavex
