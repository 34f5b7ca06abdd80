#pragma once

#include <functional>
#include <string>

#include "core/audio/StreamEngine.h"
#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/Window.h"
#include "core/generator/GeneratorPanel.h"
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
    // Everything must outlive the form.
    struct Needs {
        SharedState& shared;
        Settings& settings;
        SoundSystem& sound;
        EventLoop& loop;
        Dialogs& dialogs;
        Desktop& desktop;
        DesktopFiles& files;
        Help& help;
        StreamEngine& engine;
        GeneratorPanel& generatorPanel;
        // Finds the mixer controls of the devices in use.
        std::function<void()> setUpSoundControls;
    };
    // Labels of the main form that this one writes when it closes.
    struct MainLabels {
        Label& lblInput;
        Label& lblOutput;
        Label& lblSampleRate;
    };

    frmDevices(const Needs& needs, const MainLabels& mainLabels);
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
    std::function<void()> OnClosed;

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
    void Apply();

    Needs needs_;
    MainLabels main_;
    SoundDeviceList inputs_;  // as enumerated when the form was loaded
    SoundDeviceList outputs_;
    bool applying_ = false;
};

}  // namespace sonavex
