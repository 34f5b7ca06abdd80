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

// Selection of the sound devices and the sampling rate.
class frmDevices {
public:
    // All referenced objects must outlive the form.
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
    // Labels of the main form. This form shows the devices in use there when it closes, or when it fails to
    // load while the engine runs.
    struct MainLabels {
        Label& lblInput;
        Label& lblOutput;
        Label& lblSampleRate;
    };

    frmDevices(const Needs& needs, const MainLabels& mainLabels);
    frmDevices(const frmDevices&) = delete;
    frmDevices& operator=(const frmDevices&) = delete;

    // Lists the devices and selects the stored ones. If they cannot be listed, shows a message and throws
    // EndProgram. RuntimeError for a stored rate or position that cannot be used; 5 for an index of a rate
    // that does not exist. The extended rates are those that both selected devices run at.
    void Form_Load();

    // Whether the form may close; if so, it has performed the steps of closing. While the engine does not run
    // the user is asked, and may end the program instead (EndProgram).
    bool Form_QueryUnload();

    // Closes the form if it may.
    void Unload();
    // Called when the form has closed.
    std::function<void()> OnClosed;

    // Applies the choice. A press while the engine is being rebuilt is ignored, and so is closing the form.
    void cmdOkay_Click();
    void cmdCancel_Click();
    void cmdHelp_Click();

    Window Frame{"frmDevices"};
    ComboBox cmbInputMixer;
    ComboBox cmbOutputMixer;
    ComboBox cmbSampleRate;
    Label Label5;  // warning for the newer generation
    CommandButton cmdOkay;
    CommandButton cmdCancel;
    CommandButton cmdHelp;

private:
    void Load();
    void RestorePosition();
    void Enumerate();
    void FillLists();
    void OfferRates(const std::string& wanted);
    RateList ExtendedRatesOfSelection() const;
    std::int32_t StoredRateIndex() const;
    void ShowDevicesInUse();
    void TakeRate();
    void Apply();

    Needs needs_;
    MainLabels main_;
    SoundDeviceList inputs_;  // as listed when the form was loaded
    SoundDeviceList outputs_;
    RateList extendedRates_;  // offered below the seven rates
    bool applying_ = false;
};

}  // namespace sonavex
