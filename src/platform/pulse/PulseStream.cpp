#include "platform/pulse/PulseStream.h"

#include <chrono>
#include <utility>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// A stalled stream counts as lost after this time. Every device starts sooner.
constexpr int kMostSecondsStill = 4;

constexpr auto kStreamFlags =
    static_cast<pa_stream_flags_t>(PA_STREAM_INTERPOLATE_TIMING | PA_STREAM_AUTO_TIMING_UPDATE |
                                   PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);

pa_sample_spec SampleSpec(std::uint32_t rateHz) noexcept {
    return {PA_SAMPLE_S32NE, rateHz, 2};
}

// A stream that is still being created cannot be disconnected yet.
void DisconnectWhenReady(pa_stream* stream, void*) {
    if (pa_stream_get_state(stream) == PA_STREAM_READY) pa_stream_disconnect(stream);
}

std::int32_t OpenErrorNumber(int paError) noexcept {
    switch (paError) {
        case PA_ERR_ACCESS:
        case PA_ERR_BUSY:
            return sound_error::kAllocated;
        case PA_ERR_NOTSUPPORTED:
        case PA_ERR_INVALID:
            return sound_error::kBadFormat;
        case PA_ERR_NOENTITY:
        case PA_ERR_KILLED:
            return sound_error::kNoDriver;
        case PA_ERR_CONNECTIONTERMINATED:
        case PA_ERR_CONNECTIONREFUSED:
            return sound_error::kBufferLost;
        default:
            return sound_error::kGeneric;
    }
}

}  // namespace

void RequirePulseFormat(const BufferDescription& description) {
    constexpr const char* kRefusal = "The sound server is used with 16-bit stereo PCM only.";
    RequireStereo16(description.format, kRefusal);
    const pa_sample_spec spec = SampleSpec(description.format.samplesPerSecond);
    if (pa_sample_spec_valid(&spec) == 0) throw RuntimeError(sound_error::kBadFormat, kRefusal);
}

PulseStream::PulseStream(PulseContext& context, EventLoop& loop, SoundDeviceInfo device, LostHandler onLost)
    : context_(context),
      loop_(loop),
      device_(std::move(device)),
      lostSignal_(loop.CreateSignal([this, handler = std::move(onLost)] {
          const bool removed = loss_.load() == Loss::kDeviceRemoved;
          handler({removed ? sound_error::kNoDriver : sound_error::kBufferLost, LossText()});
      })) {}

PulseStream::~PulseStream() {
    loop_.StopTimer(watch_);
    if (stream_ == nullptr) return;
    const PulseContext::Lock lock(context_);
    pa_stream_set_write_callback(stream_, nullptr, nullptr);
    pa_stream_set_read_callback(stream_, nullptr, nullptr);
    pa_stream_set_moved_callback(stream_, nullptr, nullptr);
    pa_stream_set_suspended_callback(stream_, nullptr, nullptr);
    pa_stream_set_underflow_callback(stream_, nullptr, nullptr);
    pa_stream_set_state_callback(stream_, DisconnectWhenReady, nullptr);
    path_.reset();
    DisconnectWhenReady(stream_, nullptr);
    pa_stream_unref(stream_);
}

void PulseStream::Create(pa_context* server, std::uint32_t rateHz, const char* title) {
    const pa_sample_spec spec = SampleSpec(rateHz);
    pa_proplist* const properties = pa_proplist_new();
    // Keeps the server from lowering the volume during telephone calls and from restoring the volume of an
    // earlier stream.
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "test");
    pa_proplist_sets(properties, "state.restore-props", "false");
    stream_ = pa_stream_new_with_proplist(server, title, &spec, nullptr, properties);
    pa_proplist_free(properties);
    if (stream_ == nullptr) throw OpenError(pa_context_errno(server));
    pa_stream_set_state_callback(stream_, OnState, this);
    pa_stream_set_moved_callback(stream_, OnMoved, this);
    pa_stream_set_suspended_callback(stream_, OnSuspended, this);
    pa_stream_set_underflow_callback(stream_, OnUnderflow, this);
}

void PulseStream::Open(std::uint32_t rateHz, const char* title, const Connector& connect,
                       const PulseDeadline& deadline) {
    const PulseContext::Lock lock(context_);
    pa_context* const server = context_.Connected(deadline);
    Create(server, rateHz, title);
    if (connect(stream_, device_.identifier.c_str(), kStreamFlags) < 0)
        throw OpenError(pa_context_errno(server));
    const bool settled =
        context_.WaitUntil(deadline, [this] { return pa_stream_get_state(stream_) != PA_STREAM_CREATING; });
    if (!settled)
        throw RuntimeError(sound_error::kGeneric,
                           "The sound server does not open the sound device '" + device_.description + "'.");
    if (pa_stream_get_state(stream_) != PA_STREAM_READY) throw OpenError(failure_);
    opened_ = true;
    watch_ = loop_.StartTimer(1s, [this] {
        WatchMovement();
        AskForPath();
    });
}

void PulseStream::ResetCaptureVolume(const PulseDeadline& deadline) {
    const PulseContext::Lock lock(context_);
    if (pa_stream_get_state(stream_) != PA_STREAM_READY) return;  // lost; OnState has reported it
    pa_context* const server = pa_stream_get_context(stream_);
    const std::uint32_t index = pa_stream_get_index(stream_);
    pa_cvolume volume;
    pa_cvolume_reset(&volume, 2);
    context_.Await(pa_context_set_source_output_volume(server, index, &volume, nullptr, nullptr), deadline);
    context_.Await(pa_context_set_source_output_mute(server, index, 0, nullptr, nullptr), deadline);
}

void PulseStream::FollowPath(PulseDirection direction, const PulseDeadline& deadline) {
    // The callbacks of the stream use the path.
    const PulseContext::Lock lock(context_);
    path_ = std::make_unique<PulsePath>(context_, direction, pa_stream_get_sample_spec(stream_)->rate);
    path_->Ask(stream_);
    try {
        path_->Await(deadline);
    } catch (const RuntimeError&) {
        // The stream runs although its path is not known yet. AskForPath requests it again.
    }
}

void PulseStream::AskForPath() {
    if (!path_) return;
    const PulseContext::Lock lock(context_);
    if (path_->FormatChanged()) return Lose(Loss::kChanged);
    path_->Ask(stream_);
}

RuntimeError PulseStream::OpenError(int paError) const {
    return {OpenErrorNumber(paError),
            "The sound device '" + device_.description + "' cannot be opened: " + pa_strerror(paError) + "."};
}

void PulseStream::OnState(pa_stream* stream, void* self) {
    auto& me = *static_cast<PulseStream*>(self);
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
        // A failed stream has no context after this callback.
        pa_context* const server = pa_stream_get_context(stream);
        me.failure_ = pa_context_errno(server);
        me.Lose(PA_CONTEXT_IS_GOOD(pa_context_get_state(server)) ? Loss::kDeviceRemoved : Loss::kServerGone);
    }
    me.context_.Wake();
}

void PulseStream::OnMoved(pa_stream* stream, void* self) {
    auto& me = *static_cast<PulseStream*>(self);
    if (me.device_.identifier != pa_stream_get_device_name(stream)) me.Lose(Loss::kMoved);
}

void PulseStream::OnSuspended(pa_stream* stream, void* self) {
    if (pa_stream_is_suspended(stream) > 0) static_cast<PulseStream*>(self)->Lose(Loss::kSuspended);
}

void PulseStream::OnUnderflow(pa_stream*, void* self) {
    static_cast<PulseStream*>(self)->underruns_.fetch_add(1, std::memory_order_relaxed);
}

void PulseStream::Lose(Loss loss) noexcept {
    Loss none = Loss::kNone;
    if (opened_ && loss_.compare_exchange_strong(none, loss)) lostSignal_->Raise();
}

void PulseStream::WatchMovement() noexcept {
    const std::uint32_t movements = movements_.load(std::memory_order_relaxed);
    secondsStill_ = movements == movementsSeen_ ? secondsStill_ + 1 : 0;
    movementsSeen_ = movements;
    if (secondsStill_ >= kMostSecondsStill) Lose(Loss::kStalled);
}

std::string PulseStream::LossText() const {
    const std::string device = "The sound device '" + device_.description + "' ";
    switch (loss_.load()) {
        case Loss::kServerGone:
            return "The connection to the sound server was lost. " + device + "cannot be reached.";
        case Loss::kDeviceRemoved:
            return device + "has been removed.";
        case Loss::kMoved:
            return device + "is no longer used: the sound server moved the stream to another one.";
        case Loss::kSuspended:
            return device + "has been suspended.";
        case Loss::kStalled:
            return device + "has stalled: the sound server no longer moves its samples.";
        case Loss::kChanged:
            return device + "has changed the format or the rate of its samples.";
        case Loss::kNone:
            break;
    }
    return device + "is in use.";
}

void PulseStream::RequireDevice() const {
    if (loss_.load() != Loss::kNone) throw RuntimeError(sound_error::kBufferLost, LossText());
}

}  // namespace sonavex
