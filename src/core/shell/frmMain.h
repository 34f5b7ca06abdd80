#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/audio/Instrument.h"
#include "core/audio/frmDevices.h"
#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/dsp/display/Baseline.h"
#include "core/generator/GeneratorPanel.h"
#include "core/mixer/MixerSession.h"
#include "core/ports/Desktop.h"
#include "core/report/HandlerGuard.h"
#include "core/report/MenuControls.h"
#include "core/support/EndProgram.h"
#include "core/support/Ending.h"

namespace sonavex {

// The main form: owns the shared state and the subsystems, starts them and shuts them down in order.
class frmMain {
public:
    static constexpr const char* kApplicationTitle = "Sonavex";

    // Path of the help file in the program's folder.
    static std::string HelpFileIn(const std::string& folder);

    // All referenced objects must outlive the form.
    struct Needs {
        SettingsStore& store;
        SoundSystem& sound;
        EventLoop& loop;
        Dialogs& dialogs;
        Desktop& desktop;
        ErrorLog& errorLog;
        MixerSession& mixers;
        Ending& ending;
    };

    explicit frmMain(const Needs& needs);
    ~frmMain();
    frmMain(const frmMain&) = delete;
    frmMain& operator=(const frmMain&) = delete;

    // Starts the program. Throws EndProgram when it must end, and RuntimeError for stored values that cannot
    // be used. Form_QueryUnload then undoes only the completed steps.
    void Form_Load();

    // Shuts down; after an incomplete start it undoes only the completed steps. A step that fails is logged
    // and shown, and the others still run. Does nothing the second time.
    void Form_QueryUnload();

    // Call when the user closes the window by any means: ends with status 0.
    void Unload() { End({}); }
    // Requests the end: closes every open dialog, runs the shutdown, then OnClosed with the status. The first
    // request counts. The shutdown waits until the calls that had opened dialogs have unwound, and until a
    // running tick or restart of the engine has ended.
    void End(const EndProgram& end);
    // Form_QueryUnload or EndAtOnce.
    void ShutDown(const EndProgram& end);
    std::function<void(int status)> OnClosed;
    // Called at the begin of the shutdown, while the devices are open. May be empty.
    std::function<void()> BeforeShutdown;

    void cmdExit_Click();
    void mnuExit_Click();
    void mnuSoundCard_Click();
    // The readings are marked as stopped while the user selects devices.
    void mnuSelectCard_Click();

    // Handles an error that escaped a handler of the sound system: StreamWatch takes a lost device, the guard
    // everything else. An error during a tick is shown after it.
    void StreamError(const std::exception_ptr& error);

    // Ends without the shutdown: stops the sound and restores the user's mixer levels, but stores nothing.
    void EndAtOnce();

    // Shows the device selection dialog and returns when it has closed. May throw EndProgram.
    std::function<void()> ShowDeviceDialog;
    // Dependencies of that dialog.
    frmDevices::Needs DevicesNeeds(DesktopFiles& files, Help& help);
    frmDevices::MainLabels DevicesLabels();

    Window Frame{"frmMain"};
    Label lblInput;
    Label lblOutput;
    Label lblSampleRate;
    TabStrip TabStrip1{2};
    CommandButton cmdExit;
    CommandButton cmdPrint;
    MenuItem mnuExit;
    MenuItem mnuPrint;
    MenuItem mnuSoundCard;
    MenuItem mnuSelectCard;
    MenuControls Menus;

    sonavex::Instrument Instrument;
    sonavex::Baseline Baseline;
    HandlerGuard Guard;
    sonavex::GeneratorPanel GeneratorPanel;
    // Why nothing is being measured; empty while blocks arrive.
    Label StreamTrouble;
    // What changes the samples between instrument and cards; empty if nothing is known.
    Label PathNote;
    // Bits of the samples that the devices deliver and take: "24 bit", or "in 24 · out 16 bit" if they
    // differ. Empty without devices.
    Label lblBits;

    std::string HelpFile;
    std::int16_t LastTabIndex = 0;

private:
    // Progress of the start; the shutdown undoes the completed steps.
    enum class Started { kNothing, kPosition, kGenerator, kDevices, kMixers, kTabs };

    void RefuseSecondInstance();
    void RestorePosition();
    void RestoreSampleRate();
    void RestoreIndexedRate();
    void CheckExtendedRate();
    bool StoredDevicesRunAt(std::optional<std::int32_t> extendedRateHz) const;
    void ShowDevices(const std::string& input, const std::string& output, std::int32_t rateHz);
    void LimitFrequencySliders(std::int32_t highestHz);
    void CreateSoundDevices();
    void ChooseDevices();
    void StartStream();
    void SelectLastTab();
    void ShowStreamState();
    void ShowPath();
    void FollowPath();
    void LeavePath();
    bool Busy() const;
    void CatchUp();
    void ShutdownStep(bool due, const std::function<void()>& step);
    void Reached(Started stage) noexcept { started_ = stage; }
    bool Has(Started stage) const noexcept { return started_ >= stage; }

    Needs needs_;
    Started started_ = Started::kNothing;
    bool unloaded_ = false;
    bool choosingDevices_ = false;
    std::string extendedRate_;  // as stored
    std::unique_ptr<Signal> endLater_;
    std::unique_ptr<Signal> catchUp_;
    std::vector<std::exception_ptr> lateErrors_;  // of the running tick
    EventLoop::TimerId pathTimer_ = 0;
};

}  // namespace sonavex
