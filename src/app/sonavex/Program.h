#pragma once

#include <QString>
#include <exception>
#include <memory>
#include <optional>

#include "app/sonavex/ProgramAnalyzer.h"
#include "app/sonavex/ProgramMixers.h"
#include "core/ports/SoundSystem.h"
#include "core/report/DesktopErrorLog.h"
#include "core/report/MenuCommands.h"
#include "core/report/PrintCommand.h"
#include "core/settings/Settings.h"
#include "core/shell/frmMain.h"
#include "core/shell/frmSplash.h"
#include "core/support/Ending.h"
#include "platform/qt/BlockedClose.h"
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

// The program from its start to the end of its event loop. A QApplication must exist. Failures of the start
// do not leave as exceptions.
class Program {
public:
    Program();
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Starts the program until the window is shown. Returns an exit status if the program must end: its own,
    // or 1 after an error, which has been shown and logged and leaves the settings unchanged.
    std::optional<int> Open();
    // Open, then the event loop until the window is closed.
    int Run();

    // Valid if Open returned no status.
    frmMain& Form() { return *form_; }
    SoundCardMixers& Mixers() { return mixers_->Mixers(); }
    ui::MainWindow& Window() { return *window_; }
    ProgramAnalyzer& Analyzer() { return *analyzer_; }

private:
    void MakeForm();
    void Load();
    void ConnectDialogs();
    void ConnectMenus();
    void MakeAnalyzer();
    void ShowAbout();
    void CloseSplash();
    void ShowWindow();
    int GiveUp(const std::exception_ptr& error);
    QString SimulatedName() const;
    void StreamError(const std::exception_ptr& error);
    void ReportStore(const std::string& text);
    void RequestEnd(const EndProgram& end);

    // Destroyed in reverse.
    Ending ending_;
    QtDialogs dialogs_;
    QtEventLoop loop_;
    QtDesktop desktop_;
    QtSettingsStore store_;
    Settings settings_{store_};
    QtDesktopFiles desktopFiles_;
    QtDiagnostics diagnostics_;
    QtLauncher launcher_;
    QtPrinter printer_{ending_};
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
    std::unique_ptr<BlockedClose> blockedClose_;
    std::unique_ptr<ui::MixerDialogs> mixerDialogs_;
    std::unique_ptr<ProgramAnalyzer> analyzer_;
    std::unique_ptr<TerminationSignals> termination_;
    bool running_ = false;  // from the end of Open to the end of the shutdown
};

// Shows an error that even the start's handling did not catch, and writes it to standard error.
void ReportLastError(const std::exception_ptr& error);

}  // namespace sonavex::app
