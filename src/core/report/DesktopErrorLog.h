#pragma once

#include <functional>
#include <string>

#include "core/audio/ErrorLog.h"
#include "core/ports/Desktop.h"
#include "core/ports/DesktopFiles.h"
#include "core/ports/SoundSystem.h"
#include "core/report/DateTime.h"
#include "core/report/ErrorState.h"
#include "core/settings/Settings.h"

namespace sonavex {

// Records failures of the sound devices in a file on the user's desktop, for whoever is asked for help,
// and has them shown. The selected devices of a record are the stored ones. User-interface thread only.
class DesktopErrorLog : public ErrorLog {
public:
    // What the log works with. Everything must outlive it.
    struct Environment {
        Settings& settings;
        SoundSystem& sound;
        Desktop& desktop;
        DesktopFiles& files;
        WallClock now;
    };

    explicit DesktopErrorLog(Environment environment);

    // Appends one record, puts what the user shall read into tStr and the state, and calls ShowDialog.
    // Nothing that fails keeps the rest from being done; where the record cannot be written the message
    // says so. While the dialog is open, another failure gets its record and no second dialog. Throws
    // only what ShowDialog throws. The result is 0.
    std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override;
    void WriteLine(const std::string& line) override;
    void SetFatalError(bool fatal) override { state_.FatalError = fatal; }

    ErrorState& State() noexcept { return state_; }

    // Shows State().Message and returns when the user has read it. May throw EndProgram.
    std::function<void()> ShowDialog;
    // Receives the lines about what was shown elsewhere. They are no part of the file.
    std::function<void(const std::string&)> OnLine;

private:
    std::string Record(const std::string& message, const RuntimeError& error);
    std::string Devices();

    Environment env_;
    ErrorState state_;
    bool dialogOpen_ = false;
};

}  // namespace sonavex
