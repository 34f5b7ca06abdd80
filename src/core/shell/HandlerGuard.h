#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "core/audio/ErrorLog.h"
#include "core/ports/Dialogs.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// The last stop of errors that escape a handler: says so, logs a line and lets the instrument live
// on. User-interface thread only.
class HandlerGuard {
public:
    HandlerGuard(Dialogs& dialogs, ErrorLog& log) : dialogs_(dialogs), log_(log) {}

    // Runs a control's handler. EndProgram passes through to OnEnd.
    void Run(const std::function<void()>& handler);

    // An error that ended the start or a step of the shutdown: logged and shown, whatever it is.
    // EndProgram is not an error and must not come here.
    void Fatal(const std::exception_ptr& error) { Show(AsRuntimeError(error)); }

    // An error that escaped the notification callback or the tick. Each error is shown once, until
    // BlockSucceeded; nothing is shown while a message is open.
    void StreamError(const std::exception_ptr& error);
    void BlockSucceeded() noexcept { shownStreamErrors_.clear(); }

    // Told when a message opens (true) and when it has been closed (false).
    std::function<void(bool)> OnMessageOpen;
    // The program is to end.
    std::function<void(const EndProgram&)> OnEnd;

    // "Run-time error '13':" with the text below.
    static std::string Text(const RuntimeError& error);
    // Every failure as a run-time error: 7 for exhausted memory, 5 with its text for any other.
    static RuntimeError AsRuntimeError(const std::exception_ptr& error);

private:
    void Show(const RuntimeError& error);

    Dialogs& dialogs_;
    ErrorLog& log_;
    std::vector<std::string> shownStreamErrors_;
    bool open_ = false;
};

}  // namespace sonavex
