#pragma once

#include <string>

#include "core/audio/ErrorLog.h"
#include "core/ports/Dialogs.h"

namespace sonavex::app {

// Failures of the sound devices as message boxes, and as lines on the standard error output.
class MessageErrorLog : public ErrorLog {
public:
    explicit MessageErrorLog(Dialogs& dialogs) : dialogs_(dialogs) {}

    std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override;
    void WriteLine(const std::string& line) override;
    void SetFatalError(bool fatal) override { fatal_ = fatal; }

private:
    Dialogs& dialogs_;
    bool fatal_ = false;
};

}  // namespace sonavex::app
