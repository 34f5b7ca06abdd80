#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/audio/StreamEngine.h"
#include "core/audio/StreamWatch.h"
#include "core/audio/SweepTimer.h"
#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/dsp/Baseline.h"
#include "core/generator/GeneratorPanel.h"
#include "core/mixer/MixerSession.h"
#include "core/ports/Desktop.h"
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

    // The user closes the window, by whatever way: End(0).
    void Unload() { End(0); }
    // Runs the shutdown and then OnUnloaded with this status; deferred until a tick or a restart of the
    // engine that is under way has ended. The first status asked for counts.
    void End(int status);
    std::function<void(int status)> OnUnloaded;

    void cmdExit_Click();
    void mnuExit_Click();

    // Shows the device selection dialog and returns when it has closed.
    std::function<void()> ShowDeviceDialog;

    Window Frame{"frmMain"};
    Label lblInput;
    Label lblOutput;
    Label lblSampleRate;
    TabStrip TabStrip1{2};
    CommandButton cmdExit;
    MenuItem mnuExit;
    MenuItem mnuPrint;

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
    void StartStream();
    void SelectLastTab();
    void ShowStreamState();
    bool Busy() const;
    void ShutdownStep(bool due, const std::function<void()>& step);
    void Reached(Started stage) noexcept { started_ = stage; }
    bool Has(Started stage) const noexcept { return started_ >= stage; }

    World world_;
    Started started_ = Started::kNothing;
    bool unloaded_ = false;
    std::optional<int> endStatus_;
    std::unique_ptr<Signal> endLater_;
};

}  // namespace sonavex
