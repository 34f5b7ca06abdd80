#include "app/sonavex/Program.h"

#include <QApplication>
#include <QTimer>
#include <algorithm>
#include <iostream>

#include "app/common/Sound.h"
#include "app/common/Trace.h"
#include "core/report/frmAbout.h"
#include "core/support/EndProgram.h"
#include "core/text/ErrorText.h"
#include "platform/chm/ChmHelpBook.h"
#include "platform/plain/LocalTime.h"
#include "platform/plain/UserFolders.h"
#include "ui/AboutDialog.h"
#include "ui/PrintDialog.h"

namespace sonavex::app {
namespace {

constexpr const char* kJournalName = "sonavex-mixer-levels";
// 23 blocks are measured per second at 48 kHz.
constexpr std::chrono::milliseconds kReadingsShown{66};
constexpr const char* kComment = "Distortion meter and function generator";

ApplicationVersion Version() {
    return {SONAVEX_VERSION_MAJOR, SONAVEX_VERSION_MINOR, SONAVEX_VERSION_PATCH, kComment};
}

// The user's runtime folder, or the folder of the settings.
std::filesystem::path JournalFile() {
    const std::filesystem::path runtime = RuntimeFolder();
    return runtime.empty() ? QtSettingsStore::DefaultFile().replace_filename(kJournalName)
                           : runtime / kJournalName;
}

std::unique_ptr<HelpBook> OpenHelp(const std::string& file) {
    return std::make_unique<ChmHelpBook>(file);
}

void WriteLine(std::string line) {
    std::replace(line.begin(), line.end(), '\r', ' ');
    std::cerr << "sonavex: " << line << '\n';
}

}  // namespace

Program::Program()
    : dialogs_(frmMain::kApplicationTitle, ending_),
      loop_([this](const std::exception_ptr& error) { StreamError(error); }),
      store_(QtSettingsStore::DefaultFile(), [this](const std::string& text) { ReportStore(text); }),
      help_(
          dialogs_, [this] { return form_->HelpFile; }, OpenHelp) {}

Program::~Program() = default;

int Program::Run() {
    const std::optional<int> ended = Open();
    return ended ? *ended : QApplication::exec();
}

// Settings are written only after the complete start.
std::optional<int> Program::Open() {
    const QtSettingsStore::HoldWrites hold(store_);
    try {
        MakeForm();
        Load();
        ShowWindow();
    } catch (const EndProgram& end) {
        ending_.Request(end);
        CloseSplash();
        if (form_) form_->ShutDown(end);
        return end.status;
    } catch (...) {
        return GiveUp(std::current_exception());
    }
    running_ = true;
    return {};
}

void Program::MakeForm() {
    sound_ = OfferSound(
        SoundFromEnvironment(), [this](Sound sound) { return CreateSound(sound, loop_); }, dialogs_);
    errorLog_ = std::make_unique<DesktopErrorLog>(
        DesktopErrorLog::Needs{settings_, *sound_, desktop_, desktopFiles_, LocalDateTime});
    errorLog_->OnLine = WriteLine;
    mixers_ = std::make_unique<ProgramMixers>(*sound_, loop_, store_, desktop_, dialogs_, JournalFile());
    form_ = std::make_unique<frmMain>(
        frmMain::Needs{store_, *sound_, loop_, dialogs_, desktop_, *errorLog_, mixers_->Mixers(), ending_});
    form_->Instrument.Engine.Trace = TraceFromEnvironment();
    // Restores the user's levels after any request to end the program.
    termination_ = std::make_unique<TerminationSignals>(
        [this] { RequestEnd({.status = 0, .atOnce = false, .bySignal = true}); });
    form_->OnClosed = [this](int status) {
        running_ = false;
        QApplication::exit(status);
    };
    ConnectDialogs();
    ConnectMenus();
}

// Closes the splash before a dialog opens.
void Program::ConnectDialogs() {
    modalForms_ = std::make_unique<ui::ModalForms>(
        ui::ModalForms::Needs{*form_, errorLog_->State(), dialogs_, desktopFiles_, diagnostics_, help_});
    errorLog_->ShowDialog = [this] {
        CloseSplash();
        modalForms_->ShowError();
    };
    form_->ShowDeviceDialog = [this] {
        CloseSplash();
        modalForms_->ShowDevices();
    };
}

void Program::ConnectMenus() {
    menus_ = std::make_unique<MenuCommands>(
        MenuCommands::Needs{launcher_, dialogs_, help_, form_->Instrument.Shared, mixers_->Mixers(),
                            Version()},
        form_->Menus);
    menus_->ShowAbout = [this] { ShowAbout(); };
    print_ =
        std::make_unique<PrintCommand>(PrintCommand::Needs{printer_, dialogs_, desktop_, Today},
                                       form_->Instrument.Meter.Controls, form_->cmdPrint, form_->mnuPrint);
    print_->ShowPrintDialog = [this](frmPrint& form) { ui::PrintDialog(form, form_->Guard).Run(); };
}

void Program::ShowAbout() {
    frmAbout about(launcher_, dialogs_, frmMain::kApplicationTitle, Version());
    ui::AboutDialog(about, form_->Guard).Run();
}

void Program::CloseSplash() {
    splash_.OnShow = {};
    splash_.Unload();
    splashWindow_.reset();
}

void Program::Load() {
    splashWindow_ = std::make_unique<ui::SplashWindow>(splash_);
    splash_.OnShow = [this] { splashWindow_->Refresh(); };
    splash_.Form_Load(Version());
    ending_.ThrowIfRequested();
    window_ = std::make_unique<ui::MainWindow>(*form_, SimulatedName());
    window_->SetInterval(kReadingsShown);
    blockedClose_ = std::make_unique<BlockedClose>(*window_, BlockedClose::AtomsOfTheServer(), [this] {
        window_->CompleteEntries();
        RequestEnd({});
    });
    mixerDialogs_ = std::make_unique<ui::MixerDialogs>(mixers_->Mixers(), form_->Guard, *window_);
    MakeAnalyzer();
    window_->ReportSize();
    form_->Form_Load();
    ending_.ThrowIfRequested();
    CloseSplash();
}

void Program::MakeAnalyzer() {
    analyzer_ = std::make_unique<ProgramAnalyzer>(
        ProgramAnalyzer::Needs{*form_, loop_, dialogs_, *errorLog_, ending_, help_, *print_,
                               sound_->Simulated(), VersionNumber(Version())});
    form_->BeforeShutdown = [this] { analyzer_->Close(); };
    print_->SecondBlock = [this] { return analyzer_->Form().ReportBlock(); };
}

void Program::ShowWindow() {
    window_->ShowPlaced();
    analyzer_->Reopen();
}

int Program::GiveUp(const std::exception_ptr& error) {
    CloseSplash();
    if (form_) {
        form_->Guard.Fatal(error);
        form_->Form_QueryUnload();
    } else {
        ReportLastError(error);
    }
    store_.DiscardChanges();
    return 1;
}

QString Program::SimulatedName() const {
    if (!sound_->Simulated()) return {};
    return QString::fromStdString(sound_->EnumeratePlayback().back().description);
}

// Before and after the main loop the program ends by itself.
void Program::RequestEnd(const EndProgram& end) {
    if (running_)
        form_->End(end);
    else
        ending_.Request(end);
}

// Called by a timer of the toolkit, which no exception may pass. A message that opened within a step of a
// sweep would stop the sweep.
void Program::ReportStore(const std::string& text) {
    if (form_ && form_->Instrument.HiTimer1.Ticking() && window_) {
        QTimer::singleShot(1, window_.get(), [this, text] { ReportStore(text); });
        return;
    }
    try {
        dialogs_.Message(text, MessageIcon::kInformation);
    } catch (const EndProgram& end) {
        WriteLine(text);
        RequestEnd(end);
    }
}

void Program::StreamError(const std::exception_ptr& error) {
    if (form_) form_->StreamError(error);
}

void ReportLastError(const std::exception_ptr& error) {
    const RuntimeError runtimeError = HandlerGuard::AsRuntimeError(error);
    WriteLine(ErrorText(runtimeError));
    Ending ending;
    QtDialogs(frmMain::kApplicationTitle, ending).Message(ErrorText(runtimeError), MessageIcon::kCritical);
}

}  // namespace sonavex::app
