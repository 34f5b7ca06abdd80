#include "core/mixer/HardwareMixerControl.h"

#include <algorithm>
#include <span>
#include <utility>

#include "core/mixer/LevelScale.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

using Kind = HardwareMixerControl::Kind;

constexpr Kind kPlaybackKinds[] = {
    {MixerFunction::kWaveVolume, "Wave Volume", 1, mixer_type::kLevel},
    {MixerFunction::kWaveMute, "Wave Mute", 1, mixer_type::kSwitch},
    {MixerFunction::kLineVolume, "Line Volume", 2, mixer_type::kLevel},
    {MixerFunction::kLineMute, "Line Mute", 2, mixer_type::kSwitch},
    {MixerFunction::kMicVolume, "Microphone Volume", 3, mixer_type::kLevel},
    {MixerFunction::kMicMute, "Microphone Mute", 3, mixer_type::kSwitch},
    {MixerFunction::kMasterVolume, "Master Volume", 0, mixer_type::kLevel},
    {MixerFunction::kMasterMute, "Master Mute", 0, mixer_type::kSwitch},
};
constexpr Kind kCaptureKinds[] = {
    {MixerFunction::kMicRecord, "Microphone Volume", 1, mixer_type::kLevel},
    {MixerFunction::kLineRecord, "Line Volume", 2, mixer_type::kLevel},
    {MixerFunction::kMicBoost, "Microphone Boost", 1, mixer_type::kSwitch},
    {MixerFunction::kMonitorOff, "Monitor Off", 0, mixer_type::kSwitch},
    {MixerFunction::kMicSource, "Microphone Select", 0, mixer_type::kSwitch},
    {MixerFunction::kLineSource, "Line Select", 0, mixer_type::kSwitch},
};

std::span<const Kind> KindsOf(MixerSide side) {
    if (side == MixerSide::kPlayback) return kPlaybackKinds;
    return kCaptureKinds;
}

std::int32_t MaximumOf(std::int32_t type) {
    return type == mixer_type::kLevel ? 65535 : 1;
}

bool IsMaster(MixerFunction function) {
    return function == MixerFunction::kMasterVolume || function == MixerFunction::kMasterMute;
}

// The control's smallest step in percent; 1 for a placeholder or a control that does not answer.
std::int32_t StepOf(const MixerElement* element) {
    try {
        return element == nullptr ? 1 : StepPercent(element->Range());
    } catch (const RuntimeError&) {
        return 1;
    }
}

using Pending = std::array<std::optional<std::int32_t>, 2>;

// The pending value for a channel of the hardware. Even channels take the left value, odd ones the right.
// eitherSide: a channel without a value takes that of the other side.
std::optional<std::int32_t> WantedFor(std::size_t channel, const Pending& pending, bool eitherSide) {
    const std::optional<std::int32_t>& own = pending.at(channel % 2);
    return own || !eitherSide ? own : pending.at((channel + 1) % 2);
}

}  // namespace

std::int32_t HardwareMixerControl::DeviceCount() {
    names_ = hardware_.Devices(side_);
    std::stable_sort(names_.begin(), names_.end(), [](const std::string& left, const std::string& right) {
        return left.size() > right.size();
    });
    return static_cast<std::int32_t>(names_.size());
}

std::string HardwareMixerControl::DeviceName(std::int32_t number) {
    if (number < 0 || static_cast<std::size_t>(number) >= names_.size()) return {};
    return names_[static_cast<std::size_t>(number)];
}

void HardwareMixerControl::SelectDevice(std::int32_t number) {
    deviceName_ = DeviceName(number);
    controls_.clear();
    pending_ = {};
    device_ = deviceName_.empty() ? nullptr : hardware_.Open({side_, deviceName_});
    if (!device_) return;
    for (const Kind& kind : KindsOf(side_)) {
        MixerElement* const element = device_->Find(kind.function);
        if (element != nullptr || (IsMaster(kind.function) && !controls_.empty()))
            controls_.push_back({&kind, element});
    }
}

std::int16_t HardwareMixerControl::ControlCount() {
    return destination_ == 0 ? static_cast<std::int16_t>(controls_.size()) : std::int16_t{0};
}

void HardwareMixerControl::SetControl(std::int16_t control) {
    control_ = control;
    pending_ = {};
    if (const Entry* selected = Selected()) line_ = selected->kind->line;
}

const HardwareMixerControl::Entry* HardwareMixerControl::Selected() const {
    if (destination_ != 0 || control_ < 0 || static_cast<std::size_t>(control_) >= controls_.size())
        return nullptr;
    return &controls_[static_cast<std::size_t>(control_)];
}

std::string HardwareMixerControl::ControlName() {
    const Entry* const selected = Selected();
    return selected == nullptr ? "" : selected->kind->name;
}

MixerControlDescription HardwareMixerControl::Description() {
    const Entry* const selected = Selected();
    if (selected == nullptr) return {};
    return {selected->kind->type, 0, MaximumOf(selected->kind->type), StepOf(selected->element)};
}

std::int32_t HardwareMixerControl::Value(std::int16_t channel) {
    const Entry* const selected = Selected();
    if (selected == nullptr || selected->element == nullptr || channel < 0 || channel > 1) return -1;
    try {
        const std::vector<std::int32_t> values = selected->element->Read();
        const std::size_t place = std::min(static_cast<std::size_t>(channel), values.size() - 1);
        return ToScale(values[place], selected->element->Range(), MaximumOf(selected->kind->type));
    } catch (const RuntimeError&) {
        return -1;
    }
}

void HardwareMixerControl::SetValue(std::int16_t channel, std::int32_t value) {
    const Entry* const selected = Selected();
    if (selected == nullptr || channel < 0 || channel > 1) return;
    pending_[static_cast<std::size_t>(channel)] = std::clamp(value, 0, MaximumOf(selected->kind->type));
}

void HardwareMixerControl::Commit() {
    const Pending pending = std::exchange(pending_, {});
    const Entry* const selected = Selected();
    if (selected == nullptr || selected->element == nullptr) return;
    const std::int32_t full = MaximumOf(selected->kind->type);
    try {
        const RawRange range = selected->element->Range();
        const std::vector<std::int32_t> before = selected->element->Read();
        const bool eitherSide = before.size() == 1 || selected->kind->type == mixer_type::kSwitch;
        std::vector<std::int32_t> values = before;
        for (std::size_t channel = 0; channel < values.size(); ++channel) {
            const std::optional<std::int32_t> wanted = WantedFor(channel, pending, eitherSide);
            if (wanted && *wanted != ToScale(before[channel], range, full))
                values[channel] = FromScale(*wanted, range, full);
        }
        if (values != before) selected->element->Write(values);
    } catch (const RuntimeError&) {
        // The control keeps its value; the next Value reports the failure.
    }
}

}  // namespace sonavex
