#pragma once

#include <functional>
#include <string>

#include "core/controls/FormPlaces.h"
#include "core/mixer/DeviceLevels.h"
#include "core/mixer/HardwareMixerControl.h"
#include "core/mixer/LevelKeeper.h"
#include "core/mixer/MixerLocators.h"
#include "core/mixer/MixerSession.h"
#include "core/mixer/QuenbyVista.h"
#include "core/mixer/VistaSound.h"
#include "core/mixer/frmSound.h"
#include "core/mixer/frmSoundVista.h"
#include "core/mixer/frmVistaTone.h"
#include "core/ports/Dialogs.h"
#include "core/ports/MixerHardware.h"
#include "core/settings/Settings.h"

namespace sonavex {

// The mixers of both generations over any hardware: which devices they are bound to, their levels at
// start-up, what is saved of them, and their dialogs. The destructor restores the user's own levels, so
// that they are restored however the program ends.
class SoundCardMixers : public MixerSession {
public:
    // All must outlive this object.
    struct Needs {
        SettingsStore& store;
        Dialogs& dialogs;
        FormPlaces& places;
        MixerHardware& hardware;
        MixerJournal& journal;
    };

    explicit SoundCardMixers(const Needs& needs);
    ~SoundCardMixers() override;
    SoundCardMixers(const SoundCardMixers&) = delete;
    SoundCardMixers& operator=(const SoundCardMixers&) = delete;

    void PointMixersAt(const std::string& outputDeviceName, const std::string& inputDeviceName) override;
    void ReopenSoundCard(const std::string& outputDeviceName, const std::string& inputDeviceName) override;
    MixerDeviceNumbers DeviceNumbers() const override { return numbers_; }
    // A saved line that does not convert is reported. The levels before the error stay applied, and the
    // start-up continues.
    void CaptureAndApplySaved(bool newerGeneration) override;
    // Also refreshes the open dialogs.
    void SetUpSoundControls() override;
    void ShowSoundCard() override;
    void UnloadDialogs() override;
    void SaveAndRestoreInitial() override;
    void RestoreInitial() override;

    HardwareMixerControl OutputMixer;
    HardwareMixerControl InputMixer;
    QuenbyVista Library;
    std::string OutputDeviceName;
    std::string InputDeviceName;

    LegacyMixer Legacy{OutputMixer, InputMixer};
    SpeakerLocators Speaker;

    // State lines of the devices in use, from before the instrument changed them.
    std::string InitialInputMixerState;
    std::string InitialOutputMixerState;
    std::string InitialVistaMixerState;

    frmSound Sound;
    frmSoundVista SoundVista;
    frmVistaTone Tone;

private:
    void CaptureInitial();
    void Apply(const SettingsKey& key, const std::function<void(const std::string&)>& apply);
    void Save();
    void Restore();
    void Refresh();

    Needs needs_;
    Settings settings_;
    DeviceLevels levels_;
    LevelKeeper keeper_;
    MixerDeviceNumbers numbers_;
    bool newerGeneration_ = true;
    bool started_ = false;    // the initial state has been captured
    bool newDevice_ = false;  // PointMixersAt bound a device that was not in use before
};

}  // namespace sonavex
