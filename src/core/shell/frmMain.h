#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/audio/StreamEngine.h"
#include "core/audio/StreamWatch.h"
#include "core/audio/SweepTimer.h"
#include "core/audio/frmDevices.h"
#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/dsp/Baseline.h"
#include "core/generator/GeneratorPanel.h"
#include "core/mixer/MixerSession.h"
#include "core/ports/Desktop.h"
#include "core/report/MenuControls.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"
#include "core/shell/HandlerGuard.h"
#include "core/shell/Meter.h"

namespace sonavex {

// The main form: owns the instrument's shared state and subsystems, starts them and shuts them down in
// their order. User-interface thread only.
class frmMain {
public:
    static constexpr const char* kApplicationTitle = "Sonavex";

    // Path of the help file in the program's folder.
    static std::string HelpFileIn(const std::string& folder);

    // What the form works with. Everything must outlive it.
    struct World {
        SettingsStore& store;
        SoundSystem& sound;
        EventLoop& loop;
        Dialogs& dialogs;
        Desktop& desktop;
        ErrorLog& errorLog;
        MixerSession& mixers;
    };

    explicit frmMain(const World& world);
    ~frmMain();
    frmMain(const frmMain&) = delete;
    frmMain& operator=(const frmMain&) = delete;

    // The start. Throws EndProgram when the program is to end, and RuntimeError for stored values that
    // cannot be used; either way Form_QueryUnload then knows how far it came.
    void Form_Load();

    // The shutdown; of a start that ended early only the steps that belong to what was started. A step
    // that fails is logged and shown, the others run all the same. Does nothing the second time.
    void Form_QueryUnload();

    // The user closes the window, by whatever way: an end with status 0.
    void Unload() { End({}); }
    // Runs the shutdown that this end asks for and then OnUnloaded with its status; deferred until a tick or
    // a restart of the engine that is under way has ended. The first end asked for counts.
    void End(const EndProgram& end);
    // Form_QueryUnload or EndAtOnce.
    void ShutDown(const EndProgram& end);
    std::function<void(int status)> OnUnloaded;

    void cmdExit_Click();
    void mnuExit_Click();
    void mnuSoundCard_Click();
    // The readings are said to have stopped while the devices are being selected.
    void mnuSelectCard_Click();

    // An error that left a handler of the sound system: a lost device is the watch's, everything else the
    // guard's.
    void StreamError(const std::exception_ptr& error);

    // The end without the shutdown: stops the sound and gives the user's mixer levels back; stores nothing.
    void EndAtOnce();

    // Shows the device selection dialog and returns when it has closed. May throw EndProgram.
    std::function<void()> ShowDeviceDialog;
    // What that dialog works with.
    frmDevices::Environment DevicesEnvironment(DesktopFiles& files, Help& help);
    frmDevices::MainControls DevicesControls();

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

    SharedState Shared;
    Settings Stored;
    Meter Measurement;
    Baseline BaselineOptions;
    HandlerGuard Guard;
    std::unique_ptr<SweepTimer> HiTimer1;
    GeneratorPanel Signals;
    StreamEngine Engine;
    StreamWatch Watch;
    // Why nothing is measured at present; empty while blocks come.
    Label StreamTrouble;
    // What changes the samples between instrument and cards; empty when nothing is known to.
    Label PathNote;

    std::string HelpFile;
    std::int16_t LastTabIndex = 0;

private:
    // How far the start came; the shutdown undoes what lies before.
    enum class Started { kNothing, kPosition, kGenerator, kDevices, kMixers, kTabs };

    void RefuseSecondInstance();
    void RestorePosition();
    void RestoreSampleRate();
    void LimitFrequencySliders();
    void CreateSoundDevices();
    void ChooseDevices();
    void StartStream();
    void StartCapture();
    void SetVolume(std::int32_t hundredthsDb);
    void SelectLastTab();
    void ShowStreamState();
    void ShowPath();
    void FollowPath();
    void LeavePath();
    bool Busy() const;
    void ShutdownStep(bool due, const std::function<void()>& step);
    void Reached(Started stage) noexcept { started_ = stage; }
    bool Has(Started stage) const noexcept { return started_ >= stage; }

    World world_;
    Started started_ = Started::kNothing;
    bool unloaded_ = false;
    std::optional<EndProgram> end_;
    bool choosingDevices_ = false;
    std::unique_ptr<Signal> endLater_;
    EventLoop::TimerId pathTimer_ = 0;
};

}  // namespace sonavex
