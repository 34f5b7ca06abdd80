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
#include "core/ports/MixerHardware.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex {

// The complete mixer of the simulated card; its settings act on the signal of the card's loop. Levels are
// amplitudes from 0 to 65535, tones are whole decibels. The paths from the inputs and from the monitor to
// the output have a gain of 0.25, so that the loop oscillates only when the boost is on. Initially the
// loop passes samples unchanged: all levels full, the return paths muted, the line input selected.
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

    // Removes a control. Devices that are already open keep it.
    void Remove(MixerFunction function) { elements_.erase(function); }

    // Reads and sets values as another mixer program does.
    std::vector<std::int32_t> Values(MixerFunction function) const;
    void SetValues(MixerFunction function, const std::vector<std::int32_t>& values);
    // Number of writes through this mixer.
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
    std::unique_ptr<Signal> changeSignal_;
    int writes_ = 0;
};

}  // namespace sonavex
