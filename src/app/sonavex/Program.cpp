#include "app/sonavex/Program.h"

#include <QApplication>
#include <algorithm>
#include <iostream>

#include "app/common/WantedSound.h"
#include "app/sonavex/SoundOffer.h"
#include "ui/SplashWindow.h"

namespace sonavex::app {
namespace {

constexpr const char* kComment = "Distortion meter and function generator";

ApplicationVersion Version() {
    return {SONAVEX_VERSION_MAJOR, SONAVEX_VERSION_MINOR, SONAVEX_VERSION_PATCH, kComment};
}

}  // namespace

Program::Program()
    : dialogs_(frmMain::kApplicationTitle),
      loop_([this](const std::exception_ptr& error) { StreamError(error); }),
      store_(QtSettingsStore::DefaultFile(),
             [this](const std::string& text) { dialogs_.Message(text, MessageIcon::kInformation); }),
      errorLog_(dialogs_) {}

Program::~Program() = default;

int Program::Run() {
    const std::optional<int> ended = Open();
    return ended ? *ended : QApplication::exec();
}

// The start is all or nothing for the settings: until it is through, nothing is written.
std::optional<int> Program::Open() {
    const QtSettingsStore::HoldWrites hold(store_);
    try {
        MakeForm();
        Load();
        if (!endStatus_) ShowWindow();
    } catch (const EndProgram& end) {
        ShutDown();
        return end.status;
    } catch (...) {
        return GiveUp(std::current_exception());
    }
    return endStatus_;
}

void Program::MakeForm() {
    sound_ = ChooseSound(WantedSoundFromEnvironment(), SoundMakers::Of(loop_), dialogs_);
    form_ = std::make_unique<frmMain>(
        frmMain::World{store_, *sound_, loop_, dialogs_, desktop_, errorLog_, mixers_});
    form_->OnUnloaded = [this](int status) {
        endStatus_ = status;
        QApplication::exit(status);
    };
}

void Program::Load() {
    ui::SplashWindow splashWindow(splash_);
    splash_.OnShow = [&splashWindow] { splashWindow.Refresh(); };
    splash_.Form_Load(Version());
    window_ = std::make_unique<ui::MainWindow>(*form_, SimulatedName());
    window_->TellSize();
    form_->Form_Load();
    splash_.Unload();
}

void Program::ShowWindow() {
    window_->ShowPlaced();
}

int Program::GiveUp(const std::exception_ptr& error) {
    if (form_)
        form_->Guard.Fatal(error);
    else
        HandlerGuard(dialogs_, errorLog_).Fatal(error);
    ShutDown();
    store_.DiscardChanges();
    return 1;
}

void Program::ShutDown() {
    if (form_) form_->Form_QueryUnload();
}

QString Program::SimulatedName() const {
    if (!sound_->Simulated()) return {};
    return QString::fromStdString(sound_->EnumeratePlayback().back().description);
}

void Program::StreamError(const std::exception_ptr& error) {
    if (form_) form_->Guard.StreamError(error);
}

void ReportLastError(const std::exception_ptr& error) {
    const RuntimeError runtimeError = HandlerGuard::AsRuntimeError(error);
    std::string line = HandlerGuard::Text(runtimeError);
    std::replace(line.begin(), line.end(), '\r', ' ');
    std::cerr << "sonavex: " << line << '\n';
    QtDialogs(frmMain::kApplicationTitle).Message(HandlerGuard::Text(runtimeError), MessageIcon::kCritical);
}

}  // namespace sonavex::app
