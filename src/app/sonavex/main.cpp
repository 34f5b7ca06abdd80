// sonavex: the instrument in its window.

#include <QApplication>
#include <exception>
#include <memory>

#include "app/sonavex/MessageErrorLog.h"
#include "app/sonavex/SoundOffer.h"
#include "core/mixer/AbsentMixers.h"
#include "core/shell/frmMain.h"
#include "core/shell/frmSplash.h"
#include "platform/qt/QtDesktop.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "platform/qt/QtSettingsStore.h"
#include "ui/FaceStyle.h"
#include "ui/MainWindow.h"
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
                 [this](const std::string& text) { dialogs_.Message(text, MessageIcon::kInformation); }),
          errorLog_(dialogs_) {}

    int Run() {
        if (!ChooseSound()) return 1;
        splash_.Form_Load(Version());
        ui::SplashWindow splashWindow(splash_);
        splashWindow.Refresh();
        form_ = std::make_unique<frmMain>(
            frmMain::World{store_, *sound_, loop_, dialogs_, desktop_, errorLog_, mixers_});
        form_->OnUnloaded = [] { QApplication::exit(0); };
        form_->Guard.OnEnd = [this](int status) { End(status); };
        ui::MainWindow window(*form_, SimulatedName());
        window.TellSize();
        if (!Load()) return 1;
        splash_.Unload();
        splashWindow.Refresh();
        window.ShowPlaced();
        return QApplication::exec();
    }

private:
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
        } catch (const EndProgram&) {
            form_->Form_QueryUnload();
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

    void End(int status) {
        form_->Form_QueryUnload();
        QApplication::exit(status);
    }

    QtDialogs dialogs_;
    QtEventLoop loop_;
    QtDesktop desktop_;
    QtSettingsStore store_;
    app::MessageErrorLog errorLog_;
    AbsentMixers mixers_;
    frmSplash splash_{dialogs_, loop_};
    std::unique_ptr<SoundSystem> sound_;
    std::unique_ptr<frmMain> form_;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setStyle(new ui::FaceStyle);
    QApplication::setApplicationName(frmMain::kApplicationTitle);
    try {
        Program program;
        return program.Run();
    } catch (const EndProgram& end) {
        return end.status;
    }
}
