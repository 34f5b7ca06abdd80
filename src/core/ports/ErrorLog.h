#pragma once

#include <cstdint>
#include <string>

#include "core/support/RuntimeError.h"

namespace sonavex {

// Where failures of the sound devices are recorded and shown. User-interface thread only.
class ErrorLog {
public:
    virtual ~ErrorLog() = default;

    // Records the message with the error that led to it (number 0 for none) and shows it. On return
    // tStr is what was shown.
    virtual std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) = 0;

    // Adds a line about something that was shown elsewhere.
    virtual void WriteLine(const std::string& line) = 0;

    // Whether the program cannot go on after the next message.
    virtual void SetFatalError(bool fatal) = 0;
};

}  // namespace sonavex
