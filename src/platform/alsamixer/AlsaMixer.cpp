#include "platform/alsamixer/AlsaMixer.h"

#include <chrono>
#include <utility>

#include "core/support/RuntimeError.h"
#include "platform/alsamixer/AlsaFunctions.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kPollInterval = 100ms;

class AlsaDeviceMixer : public DeviceMixer {
public:
    AlsaDeviceMixer(std::shared_ptr<AlsaCardMixer> card, const MixerDevice& device)
        : functions_(std::move(card), device.side, device.name) {}
    MixerElement* Find(MixerFunction function) override { return functions_.Find(function); }
    bool Serves(MixerFunction function) override { return functions_.Serves(function); }
    std::vector<RawEntry> RawEntries() override { return functions_.RawEntries(); }

private:
    AlsaFunctions functions_;
};

}  // namespace

AlsaMixer::AlsaMixer(EventLoop& loop, Cards cards) : loop_(loop), cards_(std::move(cards)) {}

AlsaMixer::~AlsaMixer() {
    loop_.StopTimer(timer_);
}

std::shared_ptr<AlsaCardMixer> AlsaMixer::OpenCard(const std::string& control) {
    std::shared_ptr<AlsaCardMixer> card = open_[control].lock();
    if (card && !card->Gone()) card->Update();
    if (!card || card->Gone() || card->Altered()) {
        card = std::make_shared<AlsaCardMixer>(control);
        open_[control] = card;
    }
    card->Update();
    if (timer_ == 0) timer_ = loop_.StartTimer(kPollInterval, [this] { LookForChanges(); });
    return card;
}

std::shared_ptr<DeviceMixer> AlsaMixer::Open(const MixerDevice& device) {
    const std::string control = cards_.control(device);
    if (control.empty()) return nullptr;
    try {
        return std::make_shared<AlsaDeviceMixer>(OpenCard(control), device);
    } catch (const RuntimeError&) {
        return nullptr;
    }
}

// The loss of a card is reported as one change.
void AlsaMixer::LookForChanges() {
    bool changed = false;
    std::erase_if(open_, [](const auto& entry) { return entry.second.expired(); });
    for (const auto& [control, weak] : open_) {
        const std::shared_ptr<AlsaCardMixer> card = weak.lock();
        if (card->Gone()) continue;
        try {
            card->Update();
        } catch (const RuntimeError&) {
            card->NoteChange();
        }
        changed = card->TakeChange() || changed;
    }
    if (open_.empty()) loop_.StopTimer(std::exchange(timer_, 0));
    const auto handler = changed_;
    if (changed && handler) handler();
}

}  // namespace sonavex
