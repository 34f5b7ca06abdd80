#pragma once

#include <functional>
#include <string>

#include "core/ports/Desktop.h"
#include "core/ports/DesktopFiles.h"
#include "core/ports/ErrorLog.h"
#include "core/ports/SoundSystem.h"
#include "core/report/ErrorState.h"
#include "core/settings/Settings.h"
#include "core/text/Dates.h"

namespace sonavex {

// Records failures of the sound devices in a file on the user's desktop and shows them. The selected devices
// of a record are the stored ones.
class DesktopErrorLog : public ErrorLog {
public:
    // All referenced objects must outlive the log.
    struct Needs {
        Settings& settings;
        SoundSystem& sound;
        Desktop& desktop;
        DesktopFiles& files;
        std::function<DateTime()> now;
    };

    explicit DesktopErrorLog(Needs needs);

    // Appends a record, stores the user's text in tStr and State(), and calls ShowDialog. A step that fails
    // does not stop the others; if the record cannot be written, the message says so. A second failure while
    // the dialog is open gets a record but no dialog. Throws only what ShowDialog throws. Returns 0.
    std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override;
    void WriteLine(const std::string& line) override;
    void SetFatalError(bool fatal) override { state_.FatalError = fatal; }

    ErrorState& State() noexcept { return state_; }

    // Shows State().Message and returns when the user has closed the dialog. May throw EndProgram.
    std::function<void()> ShowDialog;
    // Receives lines about errors that were shown elsewhere. They are not written to the file.
    std::function<void(const std::string&)> OnLine;

private:
    std::string Record(const std::string& message, const RuntimeError& error);
    std::string Devices();

    Needs needs_;
    ErrorState state_;
    bool dialogOpen_ = false;
};

}  // namespace sonavex
