#pragma once

#include "core/audio/frmDevices.h"
#include "support/EngineBench.h"

namespace sonavex {

// The selection of devices over an engine on scripted devices: playback "out-a" and "out-b", capture "in-a"
// and "in-b". All calls go to one log.
struct DevicesRig : EngineBench {
    explicit DevicesRig(std::int32_t osMajorVersion = 10) : EngineBench(osMajorVersion) {
        form.OnClosed = [this] { ++unloads; };
        form.Frame.SetSize(500, 300);
        for (CommandButton* button : {&startCurrent, &startMemory}) {
            button->SetEnabled(true);
            button->Click.Handle([this, button] {
                log.Note("Press " + button->Caption());
                button->SetCaption("Start");
            });
        }
    }
    std::string Stored(const char* key) const { return store.Get("SoundCard", key, "(absent)"); }
    // Loads the form and clears the log.
    void Load() {
        form.Form_Load();
        log.Clear();
    }
    // Loads the form with the engine running on the first devices.
    void LoadRunning() {
        store.Save("SoundCard", "Output", "out-a");
        store.Save("SoundCard", "Input", "in-a");
        Start();
        Load();
    }

    Generator generator{shared};
    MenuItem mnuPrint;
    CheckBox chkMuteOutput;
    GeneratorPanel panel{{shared, settings, dialogs, generator, [](bool) {}}, mnuPrint, chkMuteOutput};
    CommandButton& startCurrent = panel.Controls.Command1;
    CommandButton& startMemory = panel.MemoryControls.cmdStartMemory;
    Label lblInput;
    Label lblOutput;
    Label lblSampleRate;
    frmDevices form{{shared, settings, sound, loop, dialogs, desktop, files, help, engine, panel,
                     [this] { log.Call("SetUpSoundControls"); }},
                    {lblInput, lblOutput, lblSampleRate}};
    int unloads = 0;
};

}  // namespace sonavex
