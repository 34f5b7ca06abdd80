#include "platform/mixer/HardwareMixerLibrary.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/support/RuntimeError.h"
#include "platform/mixer/LevelScale.h"

namespace sonavex {
namespace {

constexpr std::int32_t kDone = 0;
constexpr std::int32_t kNoControl = 1;
constexpr std::int32_t kNoAnswer = 2;

// What a card without the control does.
constexpr std::int32_t kOpen = 100;
constexpr std::int32_t kShut = 0;

bool IsCapture(MixerFunction function) {
    return function >= MixerFunction::kMicRecord;
}

// A switch of several channels is on where every one is: a mute then leaves none open.
bool AllOn(const std::vector<std::int32_t>& values) {
    return std::all_of(values.begin(), values.end(), [](std::int32_t value) { return value != 0; });
}

// Runs what asks the card; false, with the status, when the card does not answer.
template <class Action>
void Ask(std::int32_t& status, Action action) {
    try {
        action();
        status = kDone;
    } catch (const RuntimeError&) {
        status = kNoAnswer;
    }
}

}  // namespace

void HardwareMixerLibrary::OpenSoundCard(const std::string& playbackDevice, const std::string& captureDevice,
                                         const std::string&, std::int32_t& status) {
    playback_ = hardware_.Open({MixerSide::kPlayback, playbackDevice});
    capture_ = hardware_.Open({MixerSide::kCapture, captureDevice});
    status = playback_ || capture_ ? kDone : kNoAnswer;
}

void HardwareMixerLibrary::CloseSoundCard(std::int32_t& status) {
    playback_.reset();
    capture_.reset();
    status = kDone;
}

MixerElement* HardwareMixerLibrary::Find(MixerFunction function, std::int32_t& status) {
    DeviceMixer* const device = (IsCapture(function) ? capture_ : playback_).get();
    status = device == nullptr ? kNoAnswer : kNoControl;
    if (device == nullptr) return nullptr;
    MixerElement* const element = device->Find(function);
    return element != nullptr && device->Serves(function) ? element : nullptr;
}

std::int32_t HardwareMixerLibrary::Level(MixerFunction function, std::int32_t absent, std::int32_t& status) {
    std::int32_t level = absent;
    if (MixerElement* const element = Find(function, status))
        Ask(status, [&] { level = PercentOf(element->Read(), element->Range()); });
    return level;
}

void HardwareMixerLibrary::SetLevel(MixerFunction function, std::int32_t level, std::int32_t& status) {
    MixerElement* const element = Find(function, status);
    if (element == nullptr) return;
    const std::int32_t wanted = std::clamp(level, kShut, kOpen);
    Ask(status, [&] {
        const std::vector<std::int32_t> values = element->Read();
        if (PercentOf(values, element->Range()) == wanted) return;
        element->Write(AtPercent(values, element->Range(), wanted));
    });
}

bool HardwareMixerLibrary::Switch(MixerFunction function, bool absent, std::int32_t& status) {
    bool on = absent;
    if (MixerElement* const element = Find(function, status))
        Ask(status, [&] { on = AllOn(element->Read()); });
    return on;
}

void HardwareMixerLibrary::SetSwitch(MixerFunction function, bool on, std::int32_t& status) {
    MixerElement* const element = Find(function, status);
    if (element == nullptr) return;
    Ask(status, [&] {
        const std::vector<std::int32_t> values = element->Read();
        if (AllOn(values) == on) return;
        element->Write(std::vector<std::int32_t>(values.size(), on ? 1 : 0));
    });
}

double HardwareMixerLibrary::Gain(MixerFunction function, std::int32_t& status) {
    double gainDb = 0.0;
    if (MixerElement* const element = Find(function, status))
        Ask(status, [&] {
            gainDb =
                ToGain(element->Read().front(), element->Range(), element->Gains().value_or(GainRange{}));
        });
    return gainDb;
}

void HardwareMixerLibrary::SetGain(MixerFunction function, double gainDb, std::int32_t& status) {
    MixerElement* const element = Find(function, status);
    if (element == nullptr) return;
    Ask(status, [&] {
        const std::vector<std::int32_t> values = element->Read();
        const GainRange gains = element->Gains().value_or(GainRange{});
        const std::vector<std::int32_t> wanted(values.size(), FromGain(gainDb, element->Range(), gains));
        if (wanted.front() != values.front()) element->Write(wanted);
    });
}

std::int32_t HardwareMixerLibrary::GetMasterVolume(std::int32_t& status) {
    return Level(MixerFunction::kMasterVolume, kOpen, status);
}

std::int32_t HardwareMixerLibrary::SetMasterVolume(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kMasterVolume, level, status);
    std::int32_t ignored = 0;
    return GetMasterVolume(ignored);
}

bool HardwareMixerLibrary::GetMasterMute(std::int32_t& status) {
    return Switch(MixerFunction::kMasterMute, false, status);
}

void HardwareMixerLibrary::SetMasterMute(bool mute, std::int32_t& status) {
    SetSwitch(MixerFunction::kMasterMute, mute, status);
}

std::int32_t HardwareMixerLibrary::GetLinePlayBack(std::int32_t& status) {
    return Level(MixerFunction::kLineVolume, kShut, status);
}

void HardwareMixerLibrary::SetLinePlayBack(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kLineVolume, level, status);
}

bool HardwareMixerLibrary::GetLinePlayBackMute(std::int32_t& status) {
    return Switch(MixerFunction::kLineMute, true, status);
}

void HardwareMixerLibrary::SetLinePlayBackMute(bool mute, std::int32_t& status) {
    SetSwitch(MixerFunction::kLineMute, mute, status);
}

std::int32_t HardwareMixerLibrary::GetMicPlayBack(std::int32_t& status) {
    return Level(MixerFunction::kMicVolume, kShut, status);
}

void HardwareMixerLibrary::SetMicPlayBack(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kMicVolume, level, status);
}

bool HardwareMixerLibrary::GetMicPlayBackMute(std::int32_t& status) {
    return Switch(MixerFunction::kMicMute, true, status);
}

void HardwareMixerLibrary::SetMicPlayBackMute(bool mute, std::int32_t& status) {
    SetSwitch(MixerFunction::kMicMute, mute, status);
}

bool HardwareMixerLibrary::GetMicBoost(std::int32_t& status) {
    return Switch(MixerFunction::kMicBoost, false, status);
}

void HardwareMixerLibrary::SetMicBoost(bool boost, std::int32_t& status) {
    SetSwitch(MixerFunction::kMicBoost, boost, status);
}

bool HardwareMixerLibrary::GetNoMonitor(std::int32_t& status) {
    return Switch(MixerFunction::kMonitorOff, true, status);
}

void HardwareMixerLibrary::SetNoMonitor(bool noMonitor, std::int32_t& status) {
    SetSwitch(MixerFunction::kMonitorOff, noMonitor, status);
}

double HardwareMixerLibrary::GetBass(std::int32_t& status) {
    return Gain(MixerFunction::kBass, status);
}

void HardwareMixerLibrary::SetBass(double gainDb, std::int32_t& status) {
    SetGain(MixerFunction::kBass, gainDb, status);
}

double HardwareMixerLibrary::GetMidRange(std::int32_t& status) {
    return Gain(MixerFunction::kMidRange, status);
}

void HardwareMixerLibrary::SetMidRange(double gainDb, std::int32_t& status) {
    SetGain(MixerFunction::kMidRange, gainDb, status);
}

double HardwareMixerLibrary::GetTreble(std::int32_t& status) {
    return Gain(MixerFunction::kTreble, status);
}

void HardwareMixerLibrary::SetTreble(double gainDb, std::int32_t& status) {
    SetGain(MixerFunction::kTreble, gainDb, status);
}

// Of the first tone control that the card has.
void HardwareMixerLibrary::GetEQRange(double& minimumDb, double& maximumDb, std::int32_t& status) {
    minimumDb = 0.0;
    maximumDb = 0.0;
    for (const MixerFunction tone :
         {MixerFunction::kBass, MixerFunction::kMidRange, MixerFunction::kTreble}) {
        MixerElement* const element = Find(tone, status);
        const std::optional<GainRange> gains = element == nullptr ? std::nullopt : element->Gains();
        if (!gains) continue;
        minimumDb = gains->minimumDb;
        maximumDb = gains->maximumDb;
        status = kDone;
        return;
    }
}

std::int32_t HardwareMixerLibrary::GetMicRecordVolume(std::int32_t& status) {
    return Level(MixerFunction::kMicRecord, kOpen, status);
}

void HardwareMixerLibrary::SetMicRecordVolume(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kMicRecord, level, status);
}

std::int32_t HardwareMixerLibrary::GetLineRecordVolume(std::int32_t& status) {
    return Level(MixerFunction::kLineRecord, kOpen, status);
}

void HardwareMixerLibrary::SetLineRecordVolume(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kLineRecord, level, status);
}

}  // namespace sonavex
