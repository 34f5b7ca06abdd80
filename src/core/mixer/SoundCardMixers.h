#pragma once

#include <functional>
#include <string>

#include "core/mixer/LevelKeeper.h"
#include "core/mixer/MixerLocators.h"
#include "core/mixer/MixerSession.h"
#include "core/mixer/VistaSound.h"
#include "core/mixer/frmSound.h"
#include "core/mixer/frmSoundVista.h"
#include "core/mixer/frmVistaTone.h"
#include "core/ports/Desktop.h"
#include "core/ports/Dialogs.h"
#include "core/ports/QuenbyVista.h"
#include "core/settings/Settings.h"

namespace sonavex {

// The mixers of both generations: which devices they are pointed at, what they were at start, what is
// saved of them, and their dialogs. At its end, however it comes, the user's own levels are back.
// User-interface thread only.
class SoundCardMixers : public MixerSession {
public:
    // What the mixers work with. Everything must outlive this object.
    struct World {
        SettingsStore& store;
        Desktop& desktop;
        Dialogs& dialogs;
        FormPlaces& places;
        MixerControl& outputMixer;
        MixerControl& inputMixer;
        QuenbyVista& library;
        DeviceLevels& levels;
        MixerJournal& journal;
    };

    explicit SoundCardMixers(const World& world);
    ~SoundCardMixers() override;
    SoundCardMixers(const SoundCardMixers&) = delete;
    SoundCardMixers& operator=(const SoundCardMixers&) = delete;

    void PointMixersAt(const std::string& outputDeviceName, const std::string& inputDeviceName) override;
    void ReopenSoundCard(const std::string& outputDeviceName, const std::string& inputDeviceName) override;
    // A saved line that does not convert is told of, and the start goes on with what was applied.
    void CaptureAndApplySaved() override;
    // Dialogs that are open show what was found.
    void SetUpSoundControls() override;
    void ShowSoundCard() override;
    void UnloadDialogs() override;
    void SaveAndRestoreInitial() override;
    void RestoreInitial() override;

    LegacyMixer Legacy;
    SpeakerLocators Speaker;

    // State lines of the devices in use, as they were before the instrument changed them.
    std::string InitialInputMixerState;
    std::string InitialOutputMixerState;
    std::string InitialVistaMixerState;

private:
    bool NewerGeneration() const;
    void CaptureInitial();
    void Apply(const SettingsKey& key, const std::function<void(const std::string&)>& apply);
    void Save();
    void PutInitialBack();
    void GiveBack();
    void Refresh();

    World world_;
    Settings settings_;
    LevelKeeper keeper_;
    std::string outputDeviceName_;
    std::string inputDeviceName_;
    bool started_ = false;    // the initial state has been captured
    bool otherCard_ = false;  // bound since the capture

public:
    // The dialogs.
    frmSound Sound;
    frmSoundVista SoundVista;
    frmVistaTone Tone;
};

}  // namespace sonavex
