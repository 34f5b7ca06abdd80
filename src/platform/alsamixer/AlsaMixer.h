#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/ports/EventLoop.h"
#include "core/ports/MixerHardware.h"
#include "platform/alsamixer/AlsaCardMixer.h"

namespace sonavex {

// The mixers of the cards themselves. While a card is open, changes made by other programs are reported
// within 100 ms.
class AlsaMixer : public MixerHardware {
public:
    // names: the devices. control: libasound's control of a device, such as "hw:0"; empty for a device
    // without a card. lastingName: as MixerHardware::LastingName; names never change when it is empty.
    struct Cards {
        std::function<std::vector<std::string>(MixerSide)> names;
        std::function<std::string(const MixerDevice&)> control;
        std::function<std::string(const MixerDevice&)> lastingName{};
    };

    // The loop must outlive this object.
    AlsaMixer(EventLoop& loop, Cards cards);
    ~AlsaMixer() override;
    AlsaMixer(const AlsaMixer&) = delete;
    AlsaMixer& operator=(const AlsaMixer&) = delete;

    std::vector<std::string> Devices(MixerSide side) override { return cards_.names(side); }
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override;
    std::string LastingName(const MixerDevice& device) override {
        return cards_.lastingName ? cards_.lastingName(device) : device.name;
    }
    void OnChange(std::function<void()> handler) override { changed_ = std::move(handler); }

private:
    std::shared_ptr<AlsaCardMixer> OpenCard(const std::string& control);
    void LookForChanges();

    EventLoop& loop_;
    Cards cards_;
    std::map<std::string, std::weak_ptr<AlsaCardMixer>> open_;  // by control
    std::function<void()> changed_;
    EventLoop::TimerId timer_ = 0;
};

}  // namespace sonavex
