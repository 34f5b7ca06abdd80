#include "core/report/frmError.h"

#include "core/support/EndProgram.h"

namespace sonavex {
namespace {

constexpr const char* kRunning = "Running DxDiag...";
constexpr const char* kNoProgram = "Unable to find 'DxDiag.exe'";
constexpr const char* kWillTerminate = "\r\rProgram will terminate.";

}  // namespace

frmError::frmError(const Needs& needs) : needs_(needs) {
    cmdDirectX.Click.Handle([this] { cmdDirectX_Click(); });
    cmdNewSoundCard.Click.Handle([this] { cmdNewSoundCard_Click(); });
    Command1.Click.Handle([this] { Command1_Click(); });
    Command2.Click.Handle([this] { Command2_Click(); });
    Frame.SetCaption("Sound Device Error");
    cmdDirectX.SetCaption("Run DirectX Diag");
}

frmError::~frmError() {
    needs_.diagnostics.Cancel();
}

void frmError::Form_Load() {
    needs_.dialogs.SetBusyPointer(false);
    if (needs_.state.FatalError) {
        cmdNewSoundCard.SetEnabled(false);
        needs_.state.Message += kWillTerminate;
    }
    lblMessage.SetCaption(needs_.state.Message);
}

void frmError::Unload() {
    needs_.diagnostics.Cancel();
    if (OnClosed) OnClosed();
}

void frmError::cmdDirectX_Click() {
    lblStatus.SetCaption(kRunning);
    cmdDirectX.SetEnabled(false);
    needs_.diagnostics.Start([this](const std::optional<std::string>& report) { TakeReport(report); });
}

void frmError::TakeReport(const std::optional<std::string>& report) {
    lblStatus.SetCaption(report ? Keep(*report) : kNoProgram);
    cmdDirectX.SetEnabled(true);
}

// Writes the report to its file and returns the status text.
std::string frmError::Keep(const std::string& report) {
    const std::string name = desktop_file::kDiagnostics;
    try {
        needs_.files.Replace(name, report);
        return "A file named '" + name + "' has been created on your desktop";
    } catch (const RuntimeError& error) {
        return "The file '" + name + "' cannot be written on your desktop: " + error.what();
    }
}

void frmError::cmdNewSoundCard_Click() {
    if (needs_.shared.EventsReady) {
        needs_.settings.Save(keys::kInput, needs_.inputDeviceId);
        needs_.settings.Save(keys::kOutput, needs_.outputDeviceId);
    } else {
        for (const SettingsKey& key : {keys::kInput, keys::kLineInput, keys::kOutput})
            needs_.settings.Save(key, "");
    }
    Unload();
}

void frmError::Command1_Click() {
    needs_.diagnostics.Cancel();
    throw EndProgram{1, true};
}

void frmError::Command2_Click() {
    needs_.help.ShowTopic(help_topic::kSoundDeviceError);
}

}  // namespace sonavex
