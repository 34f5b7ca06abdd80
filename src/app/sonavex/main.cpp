// sonavex: the instrument in its window.

#include <QApplication>
#include <exception>
#include <iostream>
#include <memory>

#include "app/sonavex/MissingHelp.h"
#include "app/sonavex/SoundOffer.h"
#include "core/mixer/AbsentMixers.h"
#include "core/report/DesktopErrorLog.h"
#include "core/shell/frmMain.h"
#include "core/shell/frmSplash.h"
#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtDesktopFiles.h"
#include "platform/qt/QtDiagnostics.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/qt/QtWallClock.h"
#include "ui/FaceStyle.h"
#include "ui/MainWindow.h"
#include "ui/ModalForms.h"
#include "ui/SplashWindow.h"

namespace {

using namespace sonavex;

constexpr const char* kComment = "Distortion meter and function generator";

ApplicationVersion Version() {
    return {SONAVEX_VERSION_MAJOR, SONAVEX_VERSION_MINOR, SONAVEX_VERSION_PATCH, kComment};
}

// The program from its first message to the end of its event loop. Members are destroyed in reverse.
class Program {
public:
    Program()
        : dialogs_(frmMain::kApplicationTitle),
          loop_([this](const std::exception_ptr& error) { StreamError(error); }),
          store_(QtSettingsStore::DefaultFile(),
                 [this](const std::string& text) { dialogs_.Message(text, MessageIcon::kInformation); }) {}

    int Run() {
        if (!ChooseSound()) return 1;
        splash_.Form_Load(Version());
        ui::SplashWindow splashWindow(splash_);
        splashWindow.Refresh();
        CreateForms();
        form_->ShowDeviceDialog = [&] {
            splash_.Unload();
            splashWindow.Refresh();
            modalForms_->ShowDevices();
        };
        form_->OnUnloaded = [] { QApplication::exit(0); };
        form_->Guard.OnEnd = [this](const EndProgram& end) { End(end); };
        ui::MainWindow window(*form_, SimulatedName());
        window.TellSize();
        if (!Load()) return 1;
        splash_.Unload();
        splashWindow.Refresh();
        window.ShowPlaced();
        return QApplication::exec();
    }

private:
    void CreateForms() {
        errorLog_ = std::make_unique<DesktopErrorLog>(
            DesktopErrorLog::Environment{settings_, *sound_, desktop_, desktopFiles_, LocalDateTime});
        errorLog_->OnLine = [](const std::string& line) { std::cerr << "sonavex: " << line << '\n'; };
        form_ = std::make_unique<frmMain>(
            frmMain::World{store_, *sound_, loop_, dialogs_, desktop_, *errorLog_, mixers_});
        modalForms_ = std::make_unique<ui::ModalForms>(
            ui::ModalForms::World{*form_, errorLog_->State(), dialogs_, desktopFiles_, diagnostics_, help_});
        errorLog_->ShowDialog = [this] { modalForms_->ShowError(); };
    }

    bool ChooseSound() {
        try {
            sound_ = app::ChooseSound(loop_, dialogs_);
            return true;
        } catch (const RuntimeError& error) {
            dialogs_.Message(error.what(), MessageIcon::kCritical);
            return false;
        }
    }

    // The start is all or nothing for the settings: until it is through, nothing is written.
    bool Load() {
        const QtSettingsStore::HoldWrites hold(store_);
        try {
            form_->Form_Load();
            return true;
        } catch (const EndProgram& end) {
            Unload(end);
            throw;
        } catch (const RuntimeError& error) {
            dialogs_.Message(HandlerGuard::Text(error), MessageIcon::kCritical);
            store_.DiscardChanges();
            return false;
        }
    }

    QString SimulatedName() const {
        if (!sound_->Simulated()) return {};
        return QString::fromStdString(sound_->EnumeratePlayback().back().description);
    }

    void StreamError(const std::exception_ptr& error) {
        if (form_) form_->Guard.StreamError(error);
    }

    void Unload(const EndProgram& end) {
        if (end.atOnce)
            form_->EndAtOnce();
        else
            form_->Form_QueryUnload();
    }

    void End(const EndProgram& end) {
        Unload(end);
        QApplication::exit(end.status);
    }

    QtDialogs dialogs_;
    QtEventLoop loop_;
    QtDesktop desktop_;
    QtSettingsStore store_;
    Settings settings_{store_};
    QtDesktopFiles desktopFiles_;
    QtDiagnostics diagnostics_;
    app::MissingHelp help_{dialogs_, desktop_};
    AbsentMixers mixers_;
    frmSplash splash_{dialogs_, loop_};
    std::unique_ptr<SoundSystem> sound_;
    std::unique_ptr<DesktopErrorLog> errorLog_;
    std::unique_ptr<frmMain> form_;
    std::unique_ptr<ui::ModalForms> modalForms_;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(new ui::FaceStyle);
    QApplication::setApplicationName(frmMain::kApplicationTitle);
    // The main form ends the program; a dialog before it is no last window.
    QApplication::setQuitOnLastWindowClosed(false);
    try {
        Program program;
        return program.Run();
    } catch (const EndProgram& end) {
        return end.status;
    }
}
