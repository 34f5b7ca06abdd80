#include "core/mixer/SoundCardMixers.h"

#include "core/mixer/ControlNames.h"
#include "core/mixer/LegacyMixerState.h"
#include "core/text/Characters.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::int32_t kNewerGeneration = 6;
constexpr std::size_t kLongestValueShown = 80;

// A saved line may be of any length.
std::string Shortened(const std::string& value) {
    const std::string_view shown = Left(value, kLongestValueShown);
    return shown.size() == value.size() ? value : std::string(shown) + "...";
}

}  // namespace

SoundCardMixers::SoundCardMixers(const World& world)
    : Legacy{world.outputMixer, world.inputMixer},
      world_(world),
      settings_(world.store),
      keeper_(world.levels, world.journal),
      Sound(Legacy, world.places),
      SoundVista({world.library, world.outputMixer, Speaker, outputDeviceName_, inputDeviceName_},
                 world.places),
      Tone(world.library) {
    SoundVista.ShowTone = [this] { Tone.Show(); };
    world_.levels.OnChange([this] { Refresh(); });
}

SoundCardMixers::~SoundCardMixers() {
    world_.levels.OnChange({});
    keeper_.GiveBack();
}

bool SoundCardMixers::NewerGeneration() const {
    return world_.desktop.OsMajorVersion() >= kNewerGeneration;
}

void SoundCardMixers::PointMixersAt(const std::string& outputDeviceName, const std::string& inputDeviceName) {
    outputDeviceName_ = outputDeviceName;
    inputDeviceName_ = inputDeviceName;
    otherCard_ =
        keeper_.Use({{MixerSide::kPlayback, outputDeviceName}, {MixerSide::kCapture, inputDeviceName}});
    PlayMixerDeviceNumber = FindMixerDevice(world_.outputMixer, outputDeviceName);
    MixerDeviceNumber = FindMixerDevice(world_.inputMixer, inputDeviceName);
    world_.outputMixer.SelectDevice(PlayMixerDeviceNumber);
    world_.inputMixer.SelectDevice(MixerDeviceNumber);
    if (started_ && otherCard_ && !NewerGeneration()) CaptureInitial();
}

void SoundCardMixers::ReopenSoundCard(const std::string& outputDeviceName,
                                      const std::string& inputDeviceName) {
    std::int32_t status = 0;
    world_.library.CloseSoundCard(status);
    world_.library.OpenSoundCard(outputDeviceName, inputDeviceName, "", status);
    if (started_ && otherCard_) CaptureInitial();
}

void SoundCardMixers::CaptureInitial() {
    if (NewerGeneration()) {
        InitialVistaMixerState = VistaSound::GetVistaMixerState(world_.library);
        return;
    }
    InitialInputMixerState = GetLegacyMixerState(world_.inputMixer);
    InitialOutputMixerState = GetLegacyMixerState(world_.outputMixer);
}

void SoundCardMixers::CaptureAndApplySaved() {
    CaptureInitial();
    started_ = true;
    if (NewerGeneration()) {
        Apply(keys::kVistaMixerState,
              [this](const std::string& line) { VistaSound::SetVistaMixerState(world_.library, line); });
        return;
    }
    Apply(keys::kInputMixerState,
          [this](const std::string& line) { SetLegacyMixerState(world_.inputMixer, line); });
    Apply(keys::kOutputMixerState,
          [this](const std::string& line) { SetLegacyMixerState(world_.outputMixer, line); });
}

void SoundCardMixers::Apply(const SettingsKey& key, const std::function<void(const std::string&)>& apply) {
    const std::string line = settings_.Text(key);
    if (line.empty()) return;
    try {
        apply(line);
    } catch (const RuntimeError& error) {
        std::string text = "Run-time error '" + CStr(error.Number()) + "':\r\r" + error.what();
        text += ": section \"" + std::string(key.section) + "\", key \"" + std::string(key.key);
        text += "\", value \"" + Shortened(line) + "\" (" + world_.store.Location() + ")\r\r";
        text += "The saved mixer levels could not be applied completely.";
        world_.dialogs.Message(text, MessageIcon::kInformation);
    }
}

void SoundCardMixers::SetUpSoundControls() {
    if (NewerGeneration())
        Speaker = VistaSound::SetUpVistaSoundControls(world_.outputMixer);
    else
        sonavex::SetUpSoundControls(Legacy);
    Refresh();
}

void SoundCardMixers::ShowSoundCard() {
    if (NewerGeneration())
        SoundVista.Show();
    else
        Sound.Show();
}

void SoundCardMixers::UnloadDialogs() {
    Tone.Unload();
    SoundVista.Unload();
    Sound.Unload();
}

void SoundCardMixers::SaveAndRestoreInitial() {
    if (!started_) return;
    started_ = false;
    Save();
    GiveBack();
}

void SoundCardMixers::RestoreInitial() {
    if (!started_) return;
    started_ = false;
    GiveBack();
}

void SoundCardMixers::GiveBack() {
    PutInitialBack();
    keeper_.GiveBack();
    std::int32_t status = 0;
    if (NewerGeneration()) world_.library.CloseSoundCard(status);
}

// A card that is gone has no levels worth saving, nor has a control that the card lacks.
void SoundCardMixers::Save() {
    const bool playback = keeper_.Present(MixerSide::kPlayback);
    const bool capture = keeper_.Present(MixerSide::kCapture);
    if (NewerGeneration()) {
        if (!playback && !capture) return;
        const std::string saved = settings_.Text(keys::kVistaMixerState);
        settings_.Save(keys::kVistaMixerState, VistaSound::StateToSave(world_.library, saved));
        return;
    }
    if (playback) settings_.Save(keys::kOutputMixerState, GetLegacyMixerState(world_.outputMixer));
    if (capture) settings_.Save(keys::kInputMixerState, GetLegacyMixerState(world_.inputMixer));
}

void SoundCardMixers::PutInitialBack() {
    if (NewerGeneration()) {
        VistaSound::SetVistaMixerState(world_.library, InitialVistaMixerState);
        return;
    }
    SetLegacyMixerState(world_.outputMixer, InitialOutputMixerState);
    SetLegacyMixerState(world_.inputMixer, InitialInputMixerState);
}

// The levels, or where they are found, have changed: what is open shows it.
void SoundCardMixers::Refresh() {
    if (Sound.Loaded()) Sound.RefreshSoundControls();
    if (SoundVista.Loaded()) SoundVista.RefreshVistaSoundControls();
    if (Tone.Loaded()) Tone.RefreshToneControls();
}

}  // namespace sonavex
