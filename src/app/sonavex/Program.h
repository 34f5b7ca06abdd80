#pragma once

#include <QString>
#include <exception>
#include <memory>
#include <optional>

#include "app/sonavex/MessageErrorLog.h"
#include "core/mixer/AbsentMixers.h"
#include "core/ports/SoundSystem.h"
#include "core/shell/frmMain.h"
#include "core/shell/frmSplash.h"
#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtSettingsStore.h"
#include "ui/MainWindow.h"

namespace sonavex::app {

// The program from its first message to the end of its event loop. An application object must exist.
// User-interface thread only; no failure of the start leaves it as an exception.
class Program {
public:
    Program();
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The start, until the window is shown. Gives the status to end with where the program is not to go
    // on: its own, or 1 after an error, which has been shown and logged and leaves the settings as they
    // were.
    std::optional<int> Open();
    // Open, and the event loop until the window is closed.
    int Run();

    // After Open gave no status.
    frmMain& Form() { return *form_; }
    ui::MainWindow& Window() { return *window_; }

private:
    void MakeForm();
    void Load();
    void ShowWindow();
    int GiveUp(const std::exception_ptr& error);
    void ShutDown();
    QString SimulatedName() const;
    void StreamError(const std::exception_ptr& error);

    // Destroyed in reverse.
    QtDialogs dialogs_;
    QtEventLoop loop_;
    QtDesktop desktop_;
    QtSettingsStore store_;
    MessageErrorLog errorLog_;
    AbsentMixers mixers_;
    frmSplash splash_{dialogs_, loop_};
    std::unique_ptr<SoundSystem> sound_;
    std::unique_ptr<frmMain> form_;
    std::unique_ptr<ui::MainWindow> window_;
    std::optional<int> endStatus_;
};

// What is left to do about an error that even the start's own handling did not catch: shows it and
// writes it to the standard error output.
void ReportLastError(const std::exception_ptr& error);

}  // namespace sonavex::app
