#include "platform/pulse/PulsePath.h"

#include <cmath>
#include <utility>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

void Append(std::string& note, const std::string& text) {
    if (!note.empty()) note += "; ";
    note += text;
}

bool IsSuspended(const pa_sink_info& sink) {
    return sink.state == PA_SINK_SUSPENDED;
}

bool IsSuspended(const pa_source_info& source) {
    return source.state == PA_SOURCE_SUSPENDED;
}

// A float has 24 bits, and a card makes no more of 32.
int BitsOf(pa_sample_format_t format) noexcept {
    switch (format) {
        case PA_SAMPLE_U8:
        case PA_SAMPLE_ALAW:
        case PA_SAMPLE_ULAW:
            return 8;
        case PA_SAMPLE_S16LE:
        case PA_SAMPLE_S16BE:
            return 16;
        default:
            return 24;
    }
}

// PulseAudio converts between a 32-bit stream and a device at the same rate by way of 16 bits to S16 of the
// machine's byte order, by way of floats otherwise.
bool PassesFloat(pa_sample_format_t format) noexcept {
    return format != PA_SAMPLE_S16NE && format != PA_SAMPLE_S32NE;
}

// "80 %", or "50 % and 150.5 %" where the channels differ.
std::string Percent(const std::vector<double>& channels) {
    std::string text;
    for (const double percent : channels) {
        const double tenths = std::round(10.0 * percent) / 10.0;
        // A volume that rounds to 100 % without being 100 % is shown unrounded.
        text += (text.empty() ? "" : " and ") + CStr(tenths == 100.0 && percent != 100.0 ? percent : tenths) +
                " %";
    }
    return text;
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

// One percentage when all channels have the same volume; none when that is 100 %.
PulsePath::Volume PulsePath::VolumeOf(const pa_cvolume& volume, int mute) {
    Volume taken;
    taken.muted = mute != 0;
    if (pa_cvolume_channels_equal_to(&volume, PA_VOLUME_NORM) != 0) return taken;
    const bool alike = pa_cvolume_channels_equal_to(&volume, volume.values[0]) != 0;
    for (unsigned i = 0; i < (alike ? 1U : volume.channels); ++i)
        taken.percent.push_back(100.0 * volume.values[i] / PA_VOLUME_NORM);
    return taken;
}

template <class Info>
void PulsePath::TakeCard(pa_context*, const Info* info, int, void* self) {
    if (info == nullptr) return;
    auto& me = *static_cast<PulsePath*>(self);
    const char* const card = pa_proplist_gets(info->proplist, "alsa.card");
    me.card_ = card == nullptr ? "" : card;
    me.virtual_ = IsVirtualDevice(info->proplist);
}

void PulsePath::TakeServer(pa_context*, const pa_server_info* info, void* self) {
    if (info == nullptr || info->server_name == nullptr) return;
    static_cast<PulsePath*>(self)->graphRateHz_ = GraphRateHz(*info);
}

void PulsePath::AskForCardOf(pa_context* server, const pa_sink_info& sink) {
    TakeCard(server, &sink, 0, this);
}

// A monitor runs on the clock of its sink. Its own properties name no card.
void PulsePath::AskForCardOf(pa_context* server, const pa_source_info& source) {
    if (source.monitor_of_sink == PA_INVALID_INDEX) return TakeCard(server, &source, 0, this);
    pa_operation* const operation =
        pa_context_get_sink_info_by_index(server, source.monitor_of_sink, TakeCard<pa_sink_info>, this);
    if (operation != nullptr) pending_.push_back(operation);
}

template <class Info>
void PulsePath::TakeDevice(pa_context* server, const Info* info, int, void* self) {
    if (info == nullptr) return;
    auto& me = *static_cast<PulsePath*>(self);
    me.deviceRateHz_ = info->sample_spec.rate;
    me.format_.Take(info->sample_spec);
    me.bits_.store(BitsOf(info->sample_spec.format), std::memory_order_relaxed);
    me.float_ = PassesFloat(info->sample_spec.format);
    me.AskForCardOf(server, *info);
    me.suspended_ = IsSuspended(*info);
    me.device_ = VolumeOf(info->volume, info->mute);
}

template <class Info>
void PulsePath::TakeStream(pa_context*, const Info* info, int, void* self) {
    if (info == nullptr) return;
    auto& me = *static_cast<PulsePath*>(self);
    // PipeWire reports a volume of 0 until it knows the volume.
    const bool zero = pa_cvolume_is_muted(&info->volume) != 0;
    if (std::exchange(me.zeroBefore_, zero) != zero && zero) return;
    me.stream_ = VolumeOf(info->volume, info->mute);
    // Some streams have no volume.
    if (info->has_volume == 0 || info->volume.channels == 0) me.stream_.percent.clear();
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
    pa_operation* const askedServer = pa_context_get_server_info(server, TakeServer, this);
    for (pa_operation* operation : {asked.first, asked.second, askedServer})
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
    else if (virtual_ && graphRateHz_ != 0 && graphRateHz_ != rateHz_)
        Append(note, "may be resampled: the sound server runs virtual devices at its own rate, " +
                         std::to_string(graphRateHz_) + " Hz by default");
    // PipeWire moves all samples as floats. PulseAudio's resampling is a larger change, and is named above.
    if (graphRateHz_ != 0 || (float_ && deviceRateHz_ == rateHz_))
        Append(note, "converted through float by the sound server");
    if (!device_.percent.empty()) Append(note, "volume of the device " + Percent(device_.percent));
    if (!stream_.percent.empty()) Append(note, "volume of the stream " + Percent(stream_.percent));
    if (suspended_) Append(note, "suspended by the sound server");
    if (device_.muted || stream_.muted) Append(note, "muted by the sound server");
    return note;
}

std::string PulsePath::ClockName() const {
    const PulseContext::Lock lock(context_);
    return card_.empty() ? std::string() : "card " + card_;
}

}  // namespace sonavex
