#include "platform/combined/LayeredMixer.h"

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

class LayeredDevice : public DeviceMixer {
public:
    LayeredDevice(std::shared_ptr<DeviceMixer> front, std::shared_ptr<DeviceMixer> back)
        : front_(std::move(front)), back_(std::move(back)) {}

    MixerElement* Find(MixerFunction function) override { return LayerOf(function).Find(function); }
    bool Serves(MixerFunction function) override { return LayerOf(function).Serves(function); }
    // Restoring a level of the server can change the card's controls, so the card is restored last.
    std::vector<RawEntry> RawEntries() override {
        std::vector<RawEntry> entries = front_->RawEntries();
        for (const RawEntry& entry : back_->RawEntries())
            entries.push_back({"card " + entry.key, entry.element});
        return entries;
    }

private:
    // If the front has either record level, both belong to it: the back's would be the same control under
    // another name.
    DeviceMixer& LayerOf(MixerFunction function) {
        const bool record = function == MixerFunction::kMicRecord || function == MixerFunction::kLineRecord;
        const bool atFront = record ? front_->Find(MixerFunction::kMicRecord) != nullptr ||
                                          front_->Find(MixerFunction::kLineRecord) != nullptr
                                    : front_->Find(function) != nullptr;
        return atFront ? *front_ : *back_;
    }

    std::shared_ptr<DeviceMixer> front_;
    std::shared_ptr<DeviceMixer> back_;
};

}  // namespace

std::vector<std::string> LayeredMixer::Devices(MixerSide side) {
    std::vector<std::string> names = front_->Devices(side);
    for (const std::string& name : back_->Devices(side))
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    return names;
}

std::shared_ptr<DeviceMixer> LayeredMixer::Open(const MixerDevice& device) {
    std::shared_ptr<DeviceMixer> front = front_->Open(device);
    std::shared_ptr<DeviceMixer> back = back_->Open(device);
    if (front && back) return std::make_shared<LayeredDevice>(std::move(front), std::move(back));
    return front ? front : back;
}

std::string LayeredMixer::LastingName(const MixerDevice& device) {
    const std::string name = front_->LastingName(device);
    return name == device.name ? back_->LastingName(device) : name;
}

void LayeredMixer::OnChange(std::function<void()> handler) {
    front_->OnChange(handler);
    back_->OnChange(std::move(handler));
}

}  // namespace sonavex
