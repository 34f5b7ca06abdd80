#include "core/mixer/SoundCardMixers.h"

#include "core/mixer/ControlNames.h"
#include "core/mixer/LegacyMixerState.h"
#include "core/text/Characters.h"
#include "core/text/ErrorText.h"

namespace sonavex {
namespace {

constexpr std::size_t kLongestValueShown = 80;

// A saved line can have any length; a message box cannot.
std::string Shortened(const std::string& value) {
    const std::string_view shown = Left(value, kLongestValueShown);
    return shown.size() == value.size() ? value : std::string(shown) + "...";
}

}  // namespace

SoundCardMixers::SoundCardMixers(const Needs& needs)
    : OutputMixer(needs.hardware, MixerSide::kPlayback),
      InputMixer(needs.hardware, MixerSide::kCapture),
      Library(needs.hardware),
      Sound(Legacy, needs.places),
      SoundVista({Library, OutputMixer, Speaker, OutputDeviceName, InputDeviceName, needs.places}),
      Tone(Library),
      needs_(needs),
      settings_(needs.store),
      levels_(needs.hardware),
      keeper_(levels_, needs.journal) {
    SoundVista.ShowTone = [this] { Tone.Show(); };
    needs_.hardware.OnChange([this] { Refresh(); });
}

SoundCardMixers::~SoundCardMixers() {
    needs_.hardware.OnChange({});
    keeper_.Restore();
}

void SoundCardMixers::PointMixersAt(const std::string& outputDeviceName, const std::string& inputDeviceName) {
    OutputDeviceName = outputDeviceName;
    InputDeviceName = inputDeviceName;
    newDevice_ =
        keeper_.Use({{MixerSide::kPlayback, outputDeviceName}, {MixerSide::kCapture, inputDeviceName}});
    numbers_ = {FindMixerDevice(OutputMixer, outputDeviceName), FindMixerDevice(InputMixer, inputDeviceName)};
    OutputMixer.SelectDevice(numbers_.PlayMixerDeviceNumber);
    InputMixer.SelectDevice(numbers_.MixerDeviceNumber);
    if (started_ && newDevice_ && !newerGeneration_) CaptureInitial();
}

void SoundCardMixers::ReopenSoundCard(const std::string& outputDeviceName,
                                      const std::string& inputDeviceName) {
    std::int32_t status = 0;
    Library.CloseSoundCard(status);
    Library.OpenSoundCard(outputDeviceName, inputDeviceName, "", status);
    if (started_ && newDevice_) CaptureInitial();
}

void SoundCardMixers::CaptureInitial() {
    if (newerGeneration_) {
        InitialVistaMixerState = VistaSound::GetVistaMixerState(Library);
        return;
    }
    InitialInputMixerState = GetLegacyMixerState(InputMixer);
    InitialOutputMixerState = GetLegacyMixerState(OutputMixer);
}

void SoundCardMixers::CaptureAndApplySaved(bool newerGeneration) {
    newerGeneration_ = newerGeneration;
    CaptureInitial();
    started_ = true;
    if (newerGeneration_) {
        Apply(keys::kVistaMixerState,
              [this](const std::string& line) { VistaSound::SetVistaMixerState(Library, line); });
        return;
    }
    Apply(keys::kInputMixerState, [this](const std::string& line) { SetLegacyMixerState(InputMixer, line); });
    Apply(keys::kOutputMixerState,
          [this](const std::string& line) { SetLegacyMixerState(OutputMixer, line); });
}

void SoundCardMixers::Apply(const SettingsKey& key, const std::function<void(const std::string&)>& apply) {
    const std::string line = settings_.Text(key);
    if (line.empty()) return;
    try {
        apply(line);
    } catch (const RuntimeError& error) {
        needs_.dialogs.Message(ErrorText(settings_.Located(error, key, Shortened(line))) +
                                   "\r\rThe saved mixer levels could not be applied completely.",
                               MessageIcon::kInformation);
    }
}

void SoundCardMixers::SetUpSoundControls() {
    if (newerGeneration_)
        Speaker = VistaSound::SetUpVistaSoundControls(OutputMixer);
    else
        sonavex::SetUpSoundControls(Legacy);
    Refresh();
}

void SoundCardMixers::ShowSoundCard() {
    if (newerGeneration_)
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
    Restore();
}

void SoundCardMixers::RestoreInitial() {
    if (!started_) return;
    started_ = false;
    Restore();
}

// Levels of an absent device, and of a control that the device lacks, are not worth saving: the levels
// saved before are kept.
void SoundCardMixers::Save() {
    const bool playback = keeper_.Present(MixerSide::kPlayback);
    const bool capture = keeper_.Present(MixerSide::kCapture);
    if (newerGeneration_) {
        if (!playback && !capture) return;
        const std::string saved = settings_.Text(keys::kVistaMixerState);
        settings_.Save(keys::kVistaMixerState, VistaSound::StateToSave(Library, saved));
        return;
    }
    if (playback) settings_.Save(keys::kOutputMixerState, GetLegacyMixerState(OutputMixer));
    if (capture) settings_.Save(keys::kInputMixerState, GetLegacyMixerState(InputMixer));
}

void SoundCardMixers::Restore() {
    std::int32_t status = 0;
    if (newerGeneration_) {
        VistaSound::SetVistaMixerState(Library, InitialVistaMixerState);
    } else {
        SetLegacyMixerState(OutputMixer, InitialOutputMixerState);
        SetLegacyMixerState(InputMixer, InitialInputMixerState);
    }
    keeper_.Restore();
    if (newerGeneration_) Library.CloseSoundCard(status);
}

// Updates the open dialogs after a change of levels or controls.
void SoundCardMixers::Refresh() {
    if (Sound.Loaded()) Sound.RefreshSoundControls();
    if (SoundVista.Loaded()) SoundVista.RefreshVistaSoundControls();
    if (Tone.Loaded()) Tone.RefreshToneControls();
}

}  // namespace sonavex
