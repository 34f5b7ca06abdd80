#include "core/mixer/QuenbyVista.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/mixer/LevelScale.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

constexpr std::int32_t kDone = 0;
constexpr std::int32_t kNoControl = 1;
constexpr std::int32_t kNoAnswer = 2;

constexpr std::int32_t kFullLevel = 100;
constexpr std::int32_t kNoLevel = 0;

// A switch is on when every channel is on: a partial mute does not count as muted.
bool AllOn(const std::vector<std::int32_t>& values) {
    return std::all_of(values.begin(), values.end(), [](std::int32_t value) { return value != 0; });
}

// Runs the action. Its RuntimeError becomes a status.
template <class Action>
void Try(std::int32_t& status, Action action) {
    try {
        action();
        status = kDone;
    } catch (const RuntimeError&) {
        status = kNoAnswer;
    }
}

}  // namespace

void QuenbyVista::OpenSoundCard(const std::string& playbackDevice, const std::string& captureDevice,
                                const std::string& reserved, std::int32_t& status) {
    status = kNoAnswer;
    if (!reserved.empty()) return;
    playback_ = hardware_.Open({MixerSide::kPlayback, playbackDevice});
    capture_ = hardware_.Open({MixerSide::kCapture, captureDevice});
    if (playback_ || capture_) status = kDone;
}

void QuenbyVista::CloseSoundCard(std::int32_t& status) {
    playback_.reset();
    capture_.reset();
    status = kDone;
}

MixerElement* QuenbyVista::Find(MixerFunction function, std::int32_t& status) {
    DeviceMixer* const device = (SideOf(function) == MixerSide::kCapture ? capture_ : playback_).get();
    status = device == nullptr ? kNoAnswer : kNoControl;
    if (device == nullptr) return nullptr;
    MixerElement* const element = device->Find(function);
    return element != nullptr && device->Serves(function) ? element : nullptr;
}

std::int32_t QuenbyVista::Level(MixerFunction function, std::int32_t fallback, std::int32_t& status) {
    std::int32_t level = fallback;
    if (MixerElement* const element = Find(function, status))
        Try(status, [&] { level = PercentOf(element->Read(), element->Range()); });
    return level;
}

void QuenbyVista::SetLevel(MixerFunction function, std::int32_t level, std::int32_t& status) {
    MixerElement* const element = Find(function, status);
    if (element == nullptr) return;
    const std::int32_t wanted = std::clamp(level, kNoLevel, kFullLevel);
    Try(status, [&] {
        const std::vector<std::int32_t> values = element->Read();
        if (PercentOf(values, element->Range()) == wanted) return;
        const std::vector<std::int32_t> nearest = AtPercent(values, element->Range(), wanted);
        if (nearest != values) element->Write(nearest);
    });
}

bool QuenbyVista::Switch(MixerFunction function, bool fallback, std::int32_t& status) {
    bool on = fallback;
    if (MixerElement* const element = Find(function, status))
        Try(status, [&] { on = AllOn(element->Read()); });
    return on;
}

void QuenbyVista::SetSwitch(MixerFunction function, bool on, std::int32_t& status) {
    MixerElement* const element = Find(function, status);
    if (element == nullptr) return;
    Try(status, [&] {
        const std::vector<std::int32_t> values = element->Read();
        if (AllOn(values) == on) return;
        element->Write(std::vector<std::int32_t>(values.size(), on ? 1 : 0));
    });
}

double QuenbyVista::Gain(MixerFunction function, std::int32_t& status) {
    double gainDb = 0.0;
    if (MixerElement* const element = Find(function, status))
        Try(status, [&] {
            gainDb =
                ToGain(element->Read().front(), element->Range(), element->Gains().value_or(GainRange{}));
        });
    return gainDb;
}

void QuenbyVista::SetGain(MixerFunction function, double gainDb, std::int32_t& status) {
    MixerElement* const element = Find(function, status);
    if (element == nullptr) return;
    Try(status, [&] {
        const std::vector<std::int32_t> values = element->Read();
        const GainRange gains = element->Gains().value_or(GainRange{});
        const std::vector<std::int32_t> wanted(values.size(), FromGain(gainDb, element->Range(), gains));
        if (wanted.front() != values.front()) element->Write(wanted);
    });
}

std::int32_t QuenbyVista::GetMasterVolume(std::int32_t& status) {
    return Level(MixerFunction::kMasterVolume, kFullLevel, status);
}

std::int32_t QuenbyVista::SetMasterVolume(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kMasterVolume, level, status);
    std::int32_t ignored = 0;
    return GetMasterVolume(ignored);
}

bool QuenbyVista::GetMasterMute(std::int32_t& status) {
    return Switch(MixerFunction::kMasterMute, false, status);
}

void QuenbyVista::SetMasterMute(bool mute, std::int32_t& status) {
    SetSwitch(MixerFunction::kMasterMute, mute, status);
}

std::int32_t QuenbyVista::GetLinePlayBack(std::int32_t& status) {
    return Level(MixerFunction::kLineVolume, kNoLevel, status);
}

void QuenbyVista::SetLinePlayBack(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kLineVolume, level, status);
}

bool QuenbyVista::GetLinePlayBackMute(std::int32_t& status) {
    return Switch(MixerFunction::kLineMute, true, status);
}

void QuenbyVista::SetLinePlayBackMute(bool mute, std::int32_t& status) {
    SetSwitch(MixerFunction::kLineMute, mute, status);
}

std::int32_t QuenbyVista::GetMicPlayBack(std::int32_t& status) {
    return Level(MixerFunction::kMicVolume, kNoLevel, status);
}

void QuenbyVista::SetMicPlayBack(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kMicVolume, level, status);
}

bool QuenbyVista::GetMicPlayBackMute(std::int32_t& status) {
    return Switch(MixerFunction::kMicMute, true, status);
}

void QuenbyVista::SetMicPlayBackMute(bool mute, std::int32_t& status) {
    SetSwitch(MixerFunction::kMicMute, mute, status);
}

bool QuenbyVista::GetMicBoost(std::int32_t& status) {
    return Switch(MixerFunction::kMicBoost, false, status);
}

void QuenbyVista::SetMicBoost(bool boost, std::int32_t& status) {
    SetSwitch(MixerFunction::kMicBoost, boost, status);
}

bool QuenbyVista::GetNoMonitor(std::int32_t& status) {
    return Switch(MixerFunction::kMonitorOff, true, status);
}

void QuenbyVista::SetNoMonitor(bool noMonitor, std::int32_t& status) {
    SetSwitch(MixerFunction::kMonitorOff, noMonitor, status);
}

double QuenbyVista::GetBass(std::int32_t& status) {
    return Gain(MixerFunction::kBass, status);
}

void QuenbyVista::SetBass(double gainDb, std::int32_t& status) {
    SetGain(MixerFunction::kBass, gainDb, status);
}

double QuenbyVista::GetMidRange(std::int32_t& status) {
    return Gain(MixerFunction::kMidRange, status);
}

void QuenbyVista::SetMidRange(double gainDb, std::int32_t& status) {
    SetGain(MixerFunction::kMidRange, gainDb, status);
}

double QuenbyVista::GetTreble(std::int32_t& status) {
    return Gain(MixerFunction::kTreble, status);
}

void QuenbyVista::SetTreble(double gainDb, std::int32_t& status) {
    SetGain(MixerFunction::kTreble, gainDb, status);
}

void QuenbyVista::GetEQRange(double& minimumDb, double& maximumDb, std::int32_t& status) {
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

std::int32_t QuenbyVista::GetMicRecordVolume(std::int32_t& status) {
    return Level(MixerFunction::kMicRecord, kFullLevel, status);
}

void QuenbyVista::SetMicRecordVolume(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kMicRecord, level, status);
}

std::int32_t QuenbyVista::GetLineRecordVolume(std::int32_t& status) {
    return Level(MixerFunction::kLineRecord, kFullLevel, status);
}

void QuenbyVista::SetLineRecordVolume(std::int32_t level, std::int32_t& status) {
    SetLevel(MixerFunction::kLineRecord, level, status);
}

std::int32_t QuenbyVista::StepPercent(MixerFunction level) {
    std::int32_t step = 1;
    std::int32_t status = 0;
    if (MixerElement* const element = Find(level, status))
        Try(status, [&] { step = sonavex::StepPercent(element->Range()); });
    return step;
}

}  // namespace sonavex
