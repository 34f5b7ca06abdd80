#pragma once

#include <string>

namespace sonavex {

enum class MessageIcon { kNone, kInformation, kCritical };

// What the instrument says to the user outside its own forms, and asks. User-interface thread only.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Shows a message box titled with the application's title and waits for it to be closed. Line
    // breaks in the text are carriage returns.
    virtual void Message(const std::string& text, MessageIcon icon) = 0;

    // The same with OK and Cancel; true for OK.
    virtual bool AskOkCancel(const std::string& text) = 0;

    // The same with Yes and No; true for Yes.
    virtual bool AskYesNo(const std::string& text) = 0;

    // The busy pointer, until it is taken back.
    virtual void SetBusyPointer(bool busy) = 0;
};

// Thrown to end the program at once from wherever the decision falls; only the program's entry
// point catches it.
struct EndProgram {
    int status = 0;
    // Nothing more is stored; the user's own mixer levels are given back all the same.
    bool atOnce = false;
};

}  // namespace sonavex
