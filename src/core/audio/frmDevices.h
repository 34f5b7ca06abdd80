#pragma once

#include <functional>
#include <string>

#include "core/audio/StreamEngine.h"
#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/generator/Generator.h"
#include "core/ports/Desktop.h"
#include "core/ports/DesktopFiles.h"
#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/ports/Help.h"
#include "core/ports/SoundSystem.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// Selection of the sound devices and the sampling rate. User-interface thread only.
class frmDevices {
public:
    // What the form works with. Everything must outlive it.
    struct Environment {
        SharedState& shared;
        Settings& settings;
        SoundSystem& sound;
        EventLoop& loop;
        Dialogs& dialogs;
        Desktop& desktop;
        DesktopFiles& files;
        Help& help;
        StreamEngine& engine;
        const Generator& generator;
        // Finds the mixer controls of the devices in use.
        std::function<void()> setUpSoundControls;
    };
    // Controls of the main form that this one writes or presses.
    struct MainControls {
        Label& lblInput;
        Label& lblOutput;
        Label& lblSampleRate;
        CommandButton& startCurrent;
        CommandButton& startMemory;
    };

    frmDevices(const Environment& environment, const MainControls& mainControls);
    frmDevices(const frmDevices&) = delete;
    frmDevices& operator=(const frmDevices&) = delete;

    // Lists the devices and selects the stored ones. When they cannot be listed, throws EndProgram after
    // the message; RuntimeError for a stored rate or position that cannot be used.
    void Form_Load();

    // Whether the form may close; if so, it has done what its closing asks for. While the engine does not
    // run the user is asked, and may end the program instead (EndProgram).
    bool Form_QueryUnload();

    // Closes the form if it may.
    void Unload();
    // The form is closed.
    std::function<void()> OnUnloaded;

    // Takes the choice over. A press while an earlier one still rebuilds the engine is ignored, as is
    // closing the form then.
    void cmdOkay_Click();
    void cmdCancel_Click();
    void cmdHelp_Click();

    Window Frame{"frmDevices"};
    ComboBox cmbInputMixer;
    ComboBox cmbOutputMixer;
    ComboBox cmbSampleRate;
    Label Label5;  // what the newer generation is warned of
    CommandButton cmdOkay;
    CommandButton cmdCancel;
    CommandButton cmdHelp;

private:
    void RestorePosition();
    void Enumerate();
    void FillLists();
    void TakeRate();
    void StopPlaying();
    void Apply();

    Environment env_;
    MainControls main_;
    SoundDeviceList inputs_;  // as enumerated when the form was loaded
    SoundDeviceList outputs_;
    bool applying_ = false;
};

}  // namespace sonavex
