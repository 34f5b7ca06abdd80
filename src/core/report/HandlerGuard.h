#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "core/ports/Dialogs.h"
#include "core/ports/ErrorLog.h"
#include "core/support/EndProgram.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// Catches errors that escape a handler: shows and logs them, and the program continues.
class HandlerGuard {
public:
    HandlerGuard(Dialogs& dialogs, ErrorLog& log) : dialogs_(dialogs), log_(log) {}

    // Runs a control's handler. EndProgram is passed to OnEnd.
    void Run(const std::function<void()>& handler);

    // Logs and shows an error that ended the start or a step of the shutdown. EndProgram is not an error and
    // must not be passed here.
    void Fatal(const std::exception_ptr& error) { Show(AsRuntimeError(error)); }

    // Handles an error that escaped the notification callback or the tick. Each error is shown once until
    // BlockSucceeded; nothing is shown while a message is open.
    void StreamError(const std::exception_ptr& error);
    void BlockSucceeded() noexcept { shownStreamErrors_.clear(); }

    // Called when a message opens (true) and when it has closed (false).
    std::function<void(bool)> OnMessageOpen;
    // Called when the program must end.
    std::function<void(const EndProgram&)> OnEnd;

    // Converts any exception: 7 for exhausted memory, 5 with its text for any other.
    static RuntimeError AsRuntimeError(const std::exception_ptr& error);

private:
    void Show(const RuntimeError& error);

    Dialogs& dialogs_;
    ErrorLog& log_;
    std::vector<std::string> shownStreamErrors_;
    bool open_ = false;
};

}  // namespace sonavex
