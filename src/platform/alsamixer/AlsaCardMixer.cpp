#include "platform/alsamixer/AlsaCardMixer.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

// libasound prints to the standard error output unless it has a handler; its results say the same.
void DiscardMessage(const char*, int, const char*, int, const char*, ...) {}

snd_mixer_t* OpenEmpty() {
    snd_mixer_t* mixer = nullptr;
    CheckAlsa(snd_mixer_open(&mixer, 0));
    return mixer;
}

}  // namespace

void CheckAlsa(int result) {
    if (result >= 0) return;
    throw RuntimeError(sound_error::kGeneric,
                       std::string("The sound card's mixer does not answer (") + snd_strerror(result) + ").");
}

AlsaCardMixer::AlsaCardMixer(const std::string& ctl) : ctl_(ctl) {
    snd_lib_error_set_handler(DiscardMessage);
    mixer_.reset(OpenEmpty());
    CheckAlsa(snd_mixer_attach(mixer_.get(), ctl.c_str()));
    CheckAlsa(snd_mixer_selem_register(mixer_.get(), nullptr, nullptr));
    CheckAlsa(snd_mixer_load(mixer_.get()));
    for (snd_mixer_elem_t* element = snd_mixer_first_elem(mixer_.get()); element != nullptr;
         element = snd_mixer_elem_next(element))
        elements_.push_back(element);
    for (snd_mixer_elem_t* element : elements_) {
        snd_mixer_elem_set_callback_private(element, this);
        snd_mixer_elem_set_callback(element, ElementEvent);
    }
    snd_mixer_set_callback_private(mixer_.get(), this);
    snd_mixer_set_callback(mixer_.get(), CardEvent);
}

// Closing removes every element, which calls Forget: the other members must still exist.
AlsaCardMixer::~AlsaCardMixer() {
    mixer_.reset();
}

bool AlsaCardMixer::Holds(const snd_mixer_elem_t* element) const noexcept {
    return std::find(elements_.begin(), elements_.end(), element) != elements_.end();
}

void AlsaCardMixer::Forget(const snd_mixer_elem_t* element) {
    std::erase(elements_, element);
    altered_ = true;
}

int AlsaCardMixer::ElementEvent(snd_mixer_elem_t* element, unsigned mask) {
    auto* const card = static_cast<AlsaCardMixer*>(snd_mixer_elem_get_callback_private(element));
    if (mask == SND_CTL_EVENT_MASK_REMOVE) card->Forget(element);
    return 0;
}

// A new element is used when the card is opened again.
int AlsaCardMixer::CardEvent(snd_mixer_t* mixer, unsigned mask, snd_mixer_elem_t*) {
    auto* const card = static_cast<AlsaCardMixer*>(snd_mixer_get_callback_private(mixer));
    if ((mask & SND_CTL_EVENT_MASK_ADD) != 0) card->altered_ = true;
    return 0;
}

bool AlsaCardMixer::TakeChange() noexcept {
    return std::exchange(changed_, false);
}

void AlsaCardMixer::Lose() {
    gone_ = true;
    throw RuntimeError(sound_error::kBufferLost, "The sound card of the mixer is gone.");
}

bool AlsaCardMixer::Pending() {
    const int count = snd_mixer_poll_descriptors_count(mixer_.get());
    if (count <= 0) return false;
    std::vector<pollfd> descriptors(static_cast<std::size_t>(count));
    snd_mixer_poll_descriptors(mixer_.get(), descriptors.data(), static_cast<unsigned>(count));
    if (poll(descriptors.data(), static_cast<nfds_t>(count), 0) <= 0) return false;
    for (const pollfd& descriptor : descriptors)
        if ((descriptor.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) Lose();
    return true;
}

bool AlsaCardMixer::Decibels(const std::string& control, long minimum, long maximum, long& minimumDb,
                             long& maximumDb) {
    snd_hctl_t* cardControls = nullptr;
    if (snd_mixer_get_hctl(mixer_.get(), ctl_.c_str(), &cardControls) < 0) return false;
    for (snd_hctl_elem_t* element = snd_hctl_first_elem(cardControls); element != nullptr;
         element = snd_hctl_elem_next(element)) {
        if (control != snd_hctl_elem_get_name(element)) continue;
        std::array<unsigned, 256> tlv{};
        unsigned* scale = nullptr;
        return snd_hctl_elem_tlv_read(element, tlv.data(), sizeof tlv) >= 0 &&
               snd_tlv_parse_dB_info(tlv.data(), sizeof tlv, &scale) > 0 &&
               snd_tlv_get_dB_range(scale, minimum, maximum, &minimumDb, &maximumDb) >= 0;
    }
    return false;
}

void AlsaCardMixer::Update() {
    if (gone_) Lose();
    if (!Pending()) return;
    const int events = snd_mixer_handle_events(mixer_.get());
    if (events < 0) Lose();
    changed_ = changed_ || events > 0;
}

}  // namespace sonavex
