#include "platform/simulated/SimulatedMixer.h"

#include <algorithm>
#include <utility>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

constexpr double kBoostGain = 10.0;  // +20 dB

RuntimeError Unplugged() {
    return {sound_error::kBufferLost, "The simulated sound card has been unplugged."};
}

bool IsTone(MixerFunction function) {
    return function == MixerFunction::kBass || function == MixerFunction::kMidRange ||
           function == MixerFunction::kTreble;
}

MixerGains::Pair Scaled(const std::vector<std::int32_t>& raw, double gain) {
    return {raw[0] * gain / SimulatedMixer::kFull, raw[1] * gain / SimulatedMixer::kFull};
}

}  // namespace

class SimulatedMixer::Element : public MixerElement {
public:
    Element(SimulatedMixer& mixer, MixerFunction function, const char* name, RawRange range,
            std::vector<std::int32_t> initial)
        : values(std::move(initial)), key(name), mixer_(mixer), function_(function), range_(range) {}

    RawRange Range() const override { return range_; }
    std::vector<std::int32_t> Read() override {
        if (!mixer_.Plugged()) throw Unplugged();
        return values;
    }
    void Write(const std::vector<std::int32_t>& wanted) override {
        if (!mixer_.Plugged()) throw Unplugged();
        ++mixer_.writes_;
        mixer_.SetValues(function_, wanted);
    }
    std::optional<GainRange> Gains() const override {
        if (!IsTone(function_)) return {};
        return GainRange{static_cast<double>(range_.minimum), static_cast<double>(range_.maximum)};
    }

    std::vector<std::int32_t> values;
    const char* key;

private:
    SimulatedMixer& mixer_;
    MixerFunction function_;
    RawRange range_;
};

// One side of the card, with the elements that existed when it was opened.
class SimulatedMixer::Device : public DeviceMixer {
public:
    Device(const std::map<MixerFunction, std::shared_ptr<Element>>& elements, MixerSide side) {
        for (const auto& [function, element] : elements)
            if (SideOf(function) == side) elements_.emplace(function, element);
    }
    MixerElement* Find(MixerFunction function) override {
        const auto found = elements_.find(function);
        return found == elements_.end() ? nullptr : found->second.get();
    }
    std::vector<RawEntry> RawEntries() override {
        std::vector<RawEntry> entries;
        for (const auto& [function, element] : elements_) entries.push_back({element->key, element.get()});
        return entries;
    }

private:
    std::map<MixerFunction, std::shared_ptr<Element>> elements_;
};

SimulatedMixer::SimulatedMixer(SimulatedSoundSystem& system, EventLoop& loop)
    : system_(system), changeSignal_(loop.CreateSignal([this] {
          const auto handler = changed_;
          if (handler) handler();
      })) {
    const RawRange level{0, kFull};
    const RawRange onOff{0, 1};
    const RawRange tone{-kToneDb, kToneDb};
    const std::vector<std::int32_t> full{kFull, kFull};
    const std::vector<std::int32_t> half{kFull / 2, kFull / 2};
    Add(MixerFunction::kMasterVolume, "Master Volume", level, full);
    Add(MixerFunction::kMasterMute, "Master Mute", onOff, {0});
    Add(MixerFunction::kWaveVolume, "Wave Volume", level, full);
    Add(MixerFunction::kWaveMute, "Wave Mute", onOff, {0});
    Add(MixerFunction::kLineVolume, "Line Volume", level, half);
    Add(MixerFunction::kLineMute, "Line Mute", onOff, {1});
    Add(MixerFunction::kMicVolume, "Microphone Volume", level, half);
    Add(MixerFunction::kMicMute, "Microphone Mute", onOff, {1});
    Add(MixerFunction::kBass, "Bass", tone, {0});
    Add(MixerFunction::kMidRange, "Mid Range", tone, {0});
    Add(MixerFunction::kTreble, "Treble", tone, {0});
    Add(MixerFunction::kMicRecord, "Microphone Record", level, full);
    Add(MixerFunction::kLineRecord, "Line Record", level, full);
    Add(MixerFunction::kMicBoost, "Microphone Boost", onOff, {0});
    Add(MixerFunction::kMonitorOff, "Monitor Off", onOff, {1});
    Add(MixerFunction::kMicSource, "Microphone Select", onOff, {0});
    Add(MixerFunction::kLineSource, "Line Select", onOff, {1});
    Apply();
}

SimulatedMixer::~SimulatedMixer() = default;

void SimulatedMixer::Add(MixerFunction function, const char* name, RawRange range,
                         std::vector<std::int32_t> values) {
    elements_.emplace(function, std::make_shared<Element>(*this, function, name, range, std::move(values)));
}

std::vector<std::string> SimulatedMixer::Devices(MixerSide) {
    if (!Plugged()) return {};
    return {SimulatedSoundSystem::kDescription};
}

std::shared_ptr<DeviceMixer> SimulatedMixer::Open(const MixerDevice& device) {
    if (!Plugged() || device.name != SimulatedSoundSystem::kDescription) return nullptr;
    return std::make_shared<Device>(elements_, device.side);
}

std::vector<std::int32_t> SimulatedMixer::Values(MixerFunction function) const {
    const auto found = elements_.find(function);
    return found == elements_.end() ? std::vector<std::int32_t>{} : found->second->values;
}

void SimulatedMixer::SetValues(MixerFunction function, const std::vector<std::int32_t>& values) {
    const auto element = elements_.find(function);
    if (element == elements_.end()) return;
    const bool mic = function == MixerFunction::kMicSource;
    if (mic || function == MixerFunction::kLineSource) {
        const auto other = elements_.find(mic ? MixerFunction::kLineSource : MixerFunction::kMicSource);
        if (values.front() == 0) return;
        if (other != elements_.end()) other->second->values = {0};
    }
    const RawRange range = element->second->Range();
    std::transform(values.begin(), values.end(), element->second->values.begin(),
                   [&](std::int32_t value) { return std::clamp(value, range.minimum, range.maximum); });
    Apply();
    changeSignal_->Raise();
}

void SimulatedMixer::Apply() {
    const auto on = [this](MixerFunction function) {
        const std::vector<std::int32_t> values = Values(function);
        return !values.empty() && values.front() != 0;
    };
    const auto level = [&](MixerFunction function, double gain) {
        const std::vector<std::int32_t> values = Values(function);
        return values.empty() ? MixerGains::Pair{gain, gain} : Scaled(values, gain);
    };
    const auto tone = [this](MixerFunction function) {
        const std::vector<std::int32_t> values = Values(function);
        return values.empty() ? 0.0 : static_cast<double>(values.front());
    };
    const double boost = on(MixerFunction::kMicBoost) ? kBoostGain : 1.0;
    const auto unmuted = [&](MixerFunction mute, double gain) { return on(mute) ? 0.0 : gain; };
    MixerGains gains;
    gains.wave = level(MixerFunction::kWaveVolume, unmuted(MixerFunction::kWaveMute, 1.0));
    gains.master = level(MixerFunction::kMasterVolume, unmuted(MixerFunction::kMasterMute, 1.0));
    gains.line = level(MixerFunction::kLineVolume, unmuted(MixerFunction::kLineMute, kReturnGain));
    gains.mic = level(MixerFunction::kMicVolume, unmuted(MixerFunction::kMicMute, kReturnGain * boost));
    const double monitor = unmuted(MixerFunction::kMonitorOff, kReturnGain);
    gains.monitor = {monitor, monitor};
    gains.record = on(MixerFunction::kMicSource) ? level(MixerFunction::kMicRecord, boost)
                                                 : level(MixerFunction::kLineRecord, 1.0);
    gains.bassDb = tone(MixerFunction::kBass);
    gains.midDb = tone(MixerFunction::kMidRange);
    gains.trebleDb = tone(MixerFunction::kTreble);
    system_.Card().SetMixerGains(gains);
}

}  // namespace sonavex
