#include "platform/pulse/PulseLevels.h"

#include <algorithm>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr auto kRestAfterFailure = 2s;

// Info is pa_sink_info or pa_source_info.
template <class Info>
PulseLevelState StateOf(const Info& info) {
    PulseLevelState state;
    state.name = PulseText(info.name);
    state.description = PulseText(info.description);
    for (std::uint8_t channel = 0; channel < info.volume.channels; ++channel)
        state.volumes.push_back(static_cast<std::int32_t>(info.volume.values[channel]));
    state.muted = info.mute != 0;
    for (std::uint32_t i = 0; i < info.n_ports; ++i) {
        const auto& port = *info.ports[i];
        state.ports.push_back(
            {PulseText(port.name),
             InputOfPort(static_cast<int>(port.type), PulseText(port.name), PulseText(port.description))});
    }
    if (info.active_port != nullptr) state.activePort = PulseText(info.active_port->name);
    state.alsaCard = PulseText(pa_proplist_gets(info.proplist, "alsa.card"));
    return state;
}

template <class Info>
void TakeState(pa_context*, const Info* info, int, void* list) {
    if (info != nullptr) static_cast<std::vector<PulseLevelState>*>(list)->push_back(StateOf(*info));
}

// Another machine counts its own cards.
void KeepCardsOf(pa_context* server, std::vector<PulseLevelState>& states) {
    if (pa_context_is_local(server) == 1) return;
    for (PulseLevelState& state : states) state.alsaCard.clear();
}

void TakeSuccess(pa_context*, int success, void* done) {
    *static_cast<bool*>(done) = success != 0;
}

pa_cvolume VolumeOf(const std::vector<std::int32_t>& volumes) {
    pa_cvolume volume;
    pa_cvolume_init(&volume);
    volume.channels = static_cast<std::uint8_t>(std::min<std::size_t>(volumes.size(), PA_CHANNELS_MAX));
    for (std::uint8_t channel = 0; channel < volume.channels; ++channel)
        volume.values[channel] = static_cast<pa_volume_t>(
            std::clamp<std::int64_t>(volumes[channel], PA_VOLUME_MUTED, PA_VOLUME_MAX));
    return volume;
}

}  // namespace

PulseLevels::PulseLevels(EventLoop& loop, const std::string& serverAddress)
    : changeSignal_(loop.CreateSignal([this] {
          const auto handler = changed_;
          if (handler) handler();
      })),
      context_(serverAddress) {
    context_.OnConnected([this](pa_context* server) { Subscribe(server); });
}

PulseLevels::~PulseLevels() = default;

void PulseLevels::Changed(pa_context*, pa_subscription_event_type_t, uint32_t, void* levels) {
    static_cast<PulseLevels*>(levels)->changeSignal_->Raise();
}

// A server that does not take the subscription shows its changes on demand only.
void PulseLevels::Subscribe(pa_context* server) {
    pa_context_set_subscribe_callback(server, Changed, this);
    const auto mask =
        static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE);
    pa_operation* const operation = pa_context_subscribe(server, mask, nullptr, nullptr);
    if (operation != nullptr) pa_operation_unref(operation);
}

void PulseLevels::Run(const std::function<void(pa_context*, const PulseDeadline&)>& request) {
    if (lastError_ && std::chrono::steady_clock::now() < deadUntil_) throw *lastError_;
    lastError_.reset();
    const PulseDeadline deadline;
    const PulseContext::Lock lock(context_);
    try {
        request(context_.Connected(deadline), deadline);
    } catch (const RuntimeError& error) {
        if (error.Number() == sound_error::kUninitialized) {
            lastError_ = error;
            deadUntil_ = std::chrono::steady_clock::now() + kRestAfterFailure;
        }
        throw;
    }
}

std::vector<PulseLevelState> PulseLevels::List(PulseDirection direction) {
    std::vector<PulseLevelState> list;
    Run([&](pa_context* server, const PulseDeadline& deadline) {
        context_.Await(direction == PulseDirection::kPlayback
                           ? pa_context_get_sink_info_list(server, TakeState<pa_sink_info>, &list)
                           : pa_context_get_source_info_list(server, TakeState<pa_source_info>, &list),
                       deadline);
        KeepCardsOf(server, list);
    });
    return list;
}

PulseLevelState PulseLevels::Read(PulseDirection direction, const std::string& name) {
    std::vector<PulseLevelState> found;
    Run([&](pa_context* server, const PulseDeadline& deadline) {
        context_.Await(
            direction == PulseDirection::kPlayback
                ? pa_context_get_sink_info_by_name(server, name.c_str(), TakeState<pa_sink_info>, &found)
                : pa_context_get_source_info_by_name(server, name.c_str(), TakeState<pa_source_info>, &found),
            deadline);
        KeepCardsOf(server, found);
    });
    if (found.empty() || found.front().volumes.empty())
        throw RuntimeError(sound_error::kNoDriver, "There is no sound device '" + name + "'.");
    return found.front();
}

void PulseLevels::Command(
    const std::function<pa_operation*(pa_context*, pa_context_success_cb_t, void*)>& start) {
    bool done = false;
    Run([&](pa_context* server, const PulseDeadline& deadline) {
        context_.Await(start(server, TakeSuccess, &done), deadline);
    });
    if (!done) throw RuntimeError(sound_error::kGeneric, "The sound server did not take the level.");
}

void PulseLevels::SetVolumes(PulseDirection direction, const std::string& name,
                             const std::vector<std::int32_t>& volumes) {
    const pa_cvolume volume = VolumeOf(volumes);
    const auto set = direction == PulseDirection::kPlayback ? pa_context_set_sink_volume_by_name
                                                            : pa_context_set_source_volume_by_name;
    Command([&](pa_context* server, pa_context_success_cb_t finished, void* data) {
        return set(server, name.c_str(), &volume, finished, data);
    });
}

void PulseLevels::SetMuted(PulseDirection direction, const std::string& name, bool muted) {
    const auto set = direction == PulseDirection::kPlayback ? pa_context_set_sink_mute_by_name
                                                            : pa_context_set_source_mute_by_name;
    Command([&](pa_context* server, pa_context_success_cb_t finished, void* data) {
        return set(server, name.c_str(), muted ? 1 : 0, finished, data);
    });
}

void PulseLevels::SetPort(PulseDirection direction, const std::string& name, const std::string& port) {
    const auto set = direction == PulseDirection::kPlayback ? pa_context_set_sink_port_by_name
                                                            : pa_context_set_source_port_by_name;
    Command([&](pa_context* server, pa_context_success_cb_t finished, void* data) {
        return set(server, name.c_str(), port.c_str(), finished, data);
    });
}

}  // namespace sonavex
