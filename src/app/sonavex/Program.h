#pragma once

#include <QString>
#include <exception>
#include <memory>
#include <optional>

#include "app/sonavex/ProgramMixers.h"
#include "core/ports/SoundSystem.h"
#include "core/report/DesktopErrorLog.h"
#include "core/report/MenuCommands.h"
#include "core/report/PrintCommand.h"
#include "core/settings/Settings.h"
#include "core/shell/frmMain.h"
#include "core/shell/frmSplash.h"
#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtDesktopFiles.h"
#include "platform/qt/QtDiagnostics.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtLauncher.h"
#include "platform/qt/QtPrinter.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/qt/TerminationSignals.h"
#include "ui/HelpViewer.h"
#include "ui/MainWindow.h"
#include "ui/MixerDialogs.h"
#include "ui/ModalForms.h"
#include "ui/SplashWindow.h"

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
    SoundCardMixers& Mixers() { return mixers_->Session(); }
    ui::MainWindow& Window() { return *window_; }

private:
    void MakeForm();
    void Load();
    void ConnectDialogs();
    void ConnectMenus();
    void ShowAbout();
    void CloseSplash();
    void ShowWindow();
    int GiveUp(const std::exception_ptr& error);
    QString SimulatedName() const;
    void StreamError(const std::exception_ptr& error);

    // Destroyed in reverse.
    QtDialogs dialogs_;
    QtEventLoop loop_;
    QtDesktop desktop_;
    QtSettingsStore store_;
    Settings settings_{store_};
    QtDesktopFiles desktopFiles_;
    QtDiagnostics diagnostics_;
    QtLauncher launcher_;
    QtPrinter printer_;
    ui::HelpViewer help_;
    frmSplash splash_{dialogs_, loop_};
    std::unique_ptr<ui::SplashWindow> splashWindow_;
    std::unique_ptr<SoundSystem> sound_;
    std::unique_ptr<DesktopErrorLog> errorLog_;
    std::unique_ptr<ProgramMixers> mixers_;
    std::unique_ptr<frmMain> form_;
    std::unique_ptr<ui::ModalForms> modalForms_;
    std::unique_ptr<MenuCommands> menus_;
    std::unique_ptr<PrintCommand> print_;
    std::unique_ptr<ui::MainWindow> window_;
    std::unique_ptr<ui::MixerDialogs> mixerDialogs_;
    std::unique_ptr<TerminationSignals> termination_;
    std::optional<int> endStatus_;
};

// What is left to do about an error that even the start's own handling did not catch: shows it and
// writes it to the standard error output.
void ReportLastError(const std::exception_ptr& error);

}  // namespace sonavex::app
