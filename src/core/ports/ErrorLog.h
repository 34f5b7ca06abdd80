#pragma once

#include <cstdint>
#include <string>

#include "core/support/RuntimeError.h"

namespace sonavex {

// Records and shows failures of the sound devices.
class ErrorLog {
public:
    virtual ~ErrorLog() = default;

    // Records the message with its error (number 0 for none) and shows it. On return tStr is the shown text.
    virtual std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) = 0;

    // Adds a line about an error that was shown elsewhere.
    virtual void WriteLine(const std::string& line) = 0;

    // Sets whether the program must end after the next message.
    virtual void SetFatalError(bool fatal) = 0;
};

}  // namespace sonavex
