#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/ports/EventLoop.h"
#include "platform/alsamixer/AlsaCardMixer.h"
#include "platform/mixer/MixerHardware.h"

namespace sonavex {

// The cards' own mixers. Changes by others show up within a tenth of a second while a card is open.
class AlsaMixer : public MixerHardware {
public:
    // Which devices there are, and which control of libasound ("hw:0") is that of a device; an empty
    // one for a device without card.
    struct Cards {
        std::function<std::vector<std::string>(MixerSide)> names;
        std::function<std::string(const MixerDevice&)> control;
    };

    // The loop must outlive this object.
    AlsaMixer(EventLoop& loop, Cards cards);
    ~AlsaMixer() override;
    AlsaMixer(const AlsaMixer&) = delete;
    AlsaMixer& operator=(const AlsaMixer&) = delete;

    std::vector<std::string> Devices(MixerSide side) override { return cards_.names(side); }
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override;
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
