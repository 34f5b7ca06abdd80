#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "core/ports/Dialogs.h"
#include "core/ports/ErrorLog.h"
#include "core/support/EndProgram.h"
#include "core/support/Ending.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// Catches errors that escape a handler: shows and logs them, and the program continues. EndProgram is not an
// error: it requests the end.
class HandlerGuard {
public:
    HandlerGuard(Dialogs& dialogs, ErrorLog& log, sonavex::Ending& ending)
        : dialogs_(dialogs), log_(log), ending_(ending) {}

    // Runs a control's handler. Does nothing once the end of the program is requested.
    void Run(const std::function<void()>& handler);

    // Logs and shows an error that ended the start or a step of the shutdown. EndProgram must not be passed
    // here. Returns normally when a request to end the program closes the message.
    void Fatal(const std::exception_ptr& error);

    // Handles an error that escaped the notification callback or the tick. Each error is shown once until
    // BlockSucceeded; nothing is shown while a message is open or once the end is requested.
    void StreamError(const std::exception_ptr& error);
    void BlockSucceeded() noexcept { shownStreamErrors_.clear(); }

    // Called when a message opens (true) and when it has closed (false).
    std::function<void(bool)> OnMessageOpen;
    // Called when a handler has requested the end of the program.
    std::function<void(const EndProgram&)> OnEnd;

    sonavex::Ending& Ending() const noexcept { return ending_; }

    // Converts any exception: 7 for exhausted memory, 5 with its text for any other.
    static RuntimeError AsRuntimeError(const std::exception_ptr& error);

private:
    void Show(const RuntimeError& error);
    void ShowOnce(const RuntimeError& error);
    void Guarded(const std::function<void()>& action, void (HandlerGuard::*show)(const RuntimeError&));

    Dialogs& dialogs_;
    ErrorLog& log_;
    sonavex::Ending& ending_;
    std::vector<std::string> shownStreamErrors_;
    bool open_ = false;
};

}  // namespace sonavex
