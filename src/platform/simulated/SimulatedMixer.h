#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/EventLoop.h"
#include "platform/mixer/MixerHardware.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex {

// The complete mixer of the simulated card; its settings act on the card's loop. Levels count from 0
// to 65535 and are amplitudes, tones are whole decibels. The paths from an input to the output, and
// the monitor, are damped to a quarter, so that the loop does not howl before the boost is added.
// After making it the card is a piece of wire: all levels full, nothing muted but those paths, the
// line input selected.
class SimulatedMixer : public MixerHardware {
public:
    static constexpr std::int32_t kFull = 65535;
    static constexpr std::int32_t kToneDb = 12;
    static constexpr double kReturnGain = 0.25;

    // Both must outlive this object.
    SimulatedMixer(SimulatedSoundSystem& system, EventLoop& loop);
    ~SimulatedMixer() override;
    SimulatedMixer(const SimulatedMixer&) = delete;
    SimulatedMixer& operator=(const SimulatedMixer&) = delete;

    std::vector<std::string> Devices(MixerSide side) override;
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override;
    void OnChange(std::function<void()> handler) override { changed_ = std::move(handler); }

    // A control that the card shall not have, from the next opening on.
    void Remove(MixerFunction function) { elements_.erase(function); }

    // Values as another mixer program would read and set them.
    std::vector<std::int32_t> Values(MixerFunction function) const;
    void SetValues(MixerFunction function, const std::vector<std::int32_t>& values);
    // How often a control has been written.
    int Writes() const noexcept { return writes_; }

private:
    class Element;
    class Device;

    void Add(MixerFunction function, const char* name, RawRange range, std::vector<std::int32_t> values);
    void Apply();
    bool Plugged() const { return system_.Card().Plugged(); }

    SimulatedSoundSystem& system_;
    std::map<MixerFunction, std::shared_ptr<Element>> elements_;
    std::function<void()> changed_;
    std::unique_ptr<Signal> bell_;
    int writes_ = 0;
};

}  // namespace sonavex
