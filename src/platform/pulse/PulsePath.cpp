#include "platform/pulse/PulsePath.h"

#include <cmath>
#include <utility>

namespace sonavex {
namespace {

void Append(std::string& note, const std::string& text) {
    if (!note.empty()) note += "; ";
    note += text;
}

}  // namespace

PulsePath::PulsePath(PulseContext& context, PulseDirection direction, std::uint32_t rateHz)
    : context_(context), direction_(direction), rateHz_(rateHz), deviceRateHz_(rateHz) {}

PulsePath::~PulsePath() {
    const PulseContext::Lock lock(context_);
    Forget();
}

void PulsePath::Forget() noexcept {
    for (pa_operation* operation : pending_) {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
    pending_.clear();
}

PulsePath::Volume PulsePath::VolumeOf(const pa_cvolume& volume, int mute) noexcept {
    const double share = static_cast<double>(pa_cvolume_avg(&volume)) / PA_VOLUME_NORM;
    return {static_cast<std::uint32_t>(std::lround(100.0 * share)), mute != 0};
}

template <class Info>
void PulsePath::TakeDevice(pa_context*, const Info* info, int, void* self) {
    if (info == nullptr) return;
    auto& me = *static_cast<PulsePath*>(self);
    me.deviceRateHz_ = info->sample_spec.rate;
    const char* const card = pa_proplist_gets(info->proplist, "alsa.card");
    me.card_ = card == nullptr ? "" : card;
    me.device_ = VolumeOf(info->volume, info->mute);
}

template <class Info>
void PulsePath::TakeStream(pa_context*, const Info* info, int, void* self) {
    if (info == nullptr) return;
    static_cast<PulsePath*>(self)->stream_ = VolumeOf(info->volume, info->mute);
}

void PulsePath::Ask(pa_stream* stream) {
    if (pa_stream_get_state(stream) != PA_STREAM_READY) return;
    Forget();
    pa_context* const server = pa_stream_get_context(stream);
    const std::uint32_t device = pa_stream_get_device_index(stream);
    const std::uint32_t index = pa_stream_get_index(stream);
    const std::pair<pa_operation*, pa_operation*> asked =
        direction_ == PulseDirection::kPlayback
            ? std::pair{pa_context_get_sink_info_by_index(server, device, TakeDevice<pa_sink_info>, this),
                        pa_context_get_sink_input_info(server, index, TakeStream<pa_sink_input_info>, this)}
            : std::pair{
                  pa_context_get_source_info_by_index(server, device, TakeDevice<pa_source_info>, this),
                  pa_context_get_source_output_info(server, index, TakeStream<pa_source_output_info>, this)};
    for (pa_operation* operation : {asked.first, asked.second})
        if (operation != nullptr) pending_.push_back(operation);
}

void PulsePath::Await(const PulseDeadline& deadline) {
    while (!pending_.empty()) {
        pa_operation* const operation = pending_.back();
        pending_.pop_back();
        context_.Await(operation, deadline);
    }
}

std::string PulsePath::Note() const {
    const PulseContext::Lock lock(context_);
    std::string note;
    if (deviceRateHz_ != rateHz_)
        Append(note,
               "resampled by the sound server, the device runs at " + std::to_string(deviceRateHz_) + " Hz");
    if (device_.percent != 100)
        Append(note, "volume of the device " + std::to_string(device_.percent) + " %");
    if (stream_.percent != 100)
        Append(note, "volume of the stream " + std::to_string(stream_.percent) + " %");
    if (device_.muted || stream_.muted) Append(note, "muted by the sound server");
    return note;
}

std::string PulsePath::ClockName() const {
    const PulseContext::Lock lock(context_);
    return card_.empty() ? std::string() : "card " + card_;
}

}  // namespace sonavex
