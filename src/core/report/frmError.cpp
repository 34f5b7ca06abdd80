#include "core/report/frmError.h"

namespace sonavex {
namespace {

constexpr const char* kRunning = "Running DxDiag...";
constexpr const char* kNoProgram = "Unable to find 'DxDiag.exe'";
constexpr const char* kWillTerminate = "\r\rProgram will terminate.";

}  // namespace

frmError::frmError(const Environment& environment) : env_(environment) {
    cmdDirectX.Click.Handle([this] { cmdDirectX_Click(); });
    cmdNewSoundCard.Click.Handle([this] { cmdNewSoundCard_Click(); });
    Command1.Click.Handle([this] { Command1_Click(); });
    Command2.Click.Handle([this] { Command2_Click(); });
    Frame.SetCaption("Sound Device Error");
    cmdDirectX.SetCaption("Run DirectX Diag");
}

frmError::~frmError() {
    env_.diagnostics.Cancel();
}

void frmError::Form_Load() {
    env_.dialogs.SetBusyPointer(false);
    if (env_.state.FatalError) {
        cmdNewSoundCard.SetEnabled(false);
        env_.state.Message += kWillTerminate;
    }
    lblMessage.SetCaption(env_.state.Message);
}

void frmError::Unload() {
    env_.diagnostics.Cancel();
    if (OnUnloaded) OnUnloaded();
}

void frmError::cmdDirectX_Click() {
    lblStatus.SetCaption(kRunning);
    cmdDirectX.SetEnabled(false);
    env_.diagnostics.Start([this](const std::optional<std::string>& report) { TakeReport(report); });
}

void frmError::TakeReport(const std::optional<std::string>& report) {
    lblStatus.SetCaption(report ? Keep(*report) : kNoProgram);
    cmdDirectX.SetEnabled(true);
}

// Writes the report to its file and returns the status text.
std::string frmError::Keep(const std::string& report) {
    const std::string name = desktop_file::kDiagnostics;
    try {
        env_.files.Replace(name, report);
        return "A file named '" + name + "' has been created on your desktop";
    } catch (const RuntimeError& error) {
        return "The file '" + name + "' cannot be written on your desktop: " + error.what();
    }
}

void frmError::cmdNewSoundCard_Click() {
    if (env_.shared.EventsReady) {
        env_.settings.Save(keys::kInput, env_.inputDeviceId);
        env_.settings.Save(keys::kOutput, env_.outputDeviceId);
    } else {
        for (const SettingsKey& key : {keys::kInput, keys::kLineInput, keys::kOutput})
            env_.settings.Save(key, "");
    }
    Unload();
}

void frmError::Command1_Click() {
    env_.diagnostics.Cancel();
    throw EndProgram{1, true};
}

void frmError::Command2_Click() {
    env_.help.ShowTopic(help_topic::kSoundDeviceError);
}

}  // namespace sonavex
