#include "platform/pulse/PulseContext.h"

#include <algorithm>
#include <utility>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

// A call on a sound system may last three seconds. Waiting is only a part of it.
constexpr pa_usec_t kCallLimit = 2 * PA_USEC_PER_SEC;

// After a timeout: the time for which waits are short, and their length.
constexpr pa_usec_t kImpatience = 4 * PA_USEC_PER_SEC;
constexpr pa_usec_t kImpatientLimit = PA_USEC_PER_SEC / 10;

constexpr const char* kNotAnswering = "The sound server does not answer.";

struct Alarm {
    pa_threaded_mainloop* loop;
    bool expired;
};

void RingAlarm(pa_mainloop_api*, pa_time_event*, const timeval*, void* alarm) {
    static_cast<Alarm*>(alarm)->expired = true;
    pa_threaded_mainloop_signal(static_cast<Alarm*>(alarm)->loop, 0);
}

void OnContextState(pa_context*, void* context) {
    static_cast<PulseContext*>(context)->Wake();
}

void OnOperationState(pa_operation*, void* context) {
    static_cast<PulseContext*>(context)->Wake();
}

}  // namespace

PulseDeadline::PulseDeadline() noexcept : time_(pa_rtclock_now() + kCallLimit) {}

PulseContext::PulseContext(std::string serverAddress)
    : serverAddress_(std::move(serverAddress)), loop_(pa_threaded_mainloop_new()) {
    if (loop_ == nullptr) throw RuntimeError(error_number::kOutOfMemory);
    if (pa_threaded_mainloop_start(loop_) == 0) return;
    pa_threaded_mainloop_free(loop_);
    throw RuntimeError(sound_error::kGeneric, "The thread of the sound server's connection does not start.");
}

PulseContext::~PulseContext() {
    pa_threaded_mainloop_stop(loop_);
    Drop();
    pa_threaded_mainloop_free(loop_);
}

pa_context* PulseContext::Connected(const PulseDeadline& deadline) {
    if (context_ != nullptr && pa_context_get_state(context_) == PA_CONTEXT_READY) return context_;
    Drop();
    Connect();
    const bool settled = WaitUntil(deadline, [this] {
        const pa_context_state_t state = pa_context_get_state(context_);
        return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
    });
    if (settled && pa_context_get_state(context_) == PA_CONTEXT_READY) {
        if (onConnected_) onConnected_(context_);
        return context_;
    }
    const std::string reason = settled ? pa_strerror(pa_context_errno(context_)) : "Timeout";
    const std::string place = serverAddress_.empty() ? "" : " at '" + serverAddress_ + "'";
    Drop();
    throw RuntimeError(sound_error::kUninitialized, "No sound server answers" + place + " (" + reason + ").");
}

void PulseContext::Connect() {
    context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Sonavex");
    if (context_ == nullptr) throw RuntimeError(error_number::kOutOfMemory);
    pa_context_set_state_callback(context_, OnContextState, this);
    const char* const address = serverAddress_.empty() ? nullptr : serverAddress_.c_str();
    // A refusal changes the state of the context.
    static_cast<void>(pa_context_connect(context_, address, PA_CONTEXT_NOAUTOSPAWN, nullptr));
}

void PulseContext::Drop() noexcept {
    if (context_ == nullptr) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_set_subscribe_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(std::exchange(context_, nullptr));
}

pa_usec_t PulseContext::EndOf(const PulseDeadline& deadline) const noexcept {
    const pa_usec_t now = pa_rtclock_now();
    return now < impatientUntil_ ? std::min(deadline.Time(), now + kImpatientLimit) : deadline.Time();
}

bool PulseContext::WaitUntil(const PulseDeadline& deadline, const std::function<bool()>& condition) {
    Alarm alarm{loop_, false};
    pa_time_event* const timer = pa_context_rttime_new(context_, EndOf(deadline), RingAlarm, &alarm);
    while (!condition() && !alarm.expired) pa_threaded_mainloop_wait(loop_);
    pa_threaded_mainloop_get_api(loop_)->time_free(timer);
    const bool met = condition();
    if (met)
        impatientUntil_ = 0;
    else if (pa_rtclock_now() >= impatientUntil_)
        impatientUntil_ = pa_rtclock_now() + kImpatience;
    return met;
}

void PulseContext::Await(pa_operation* operation, const PulseDeadline& deadline) {
    if (operation == nullptr) {
        const char* const reason = pa_strerror(pa_context_errno(context_));
        throw RuntimeError(sound_error::kGeneric, std::string("The sound server refused: ") + reason + ".");
    }
    pa_operation_set_state_callback(operation, OnOperationState, this);
    const bool ended =
        WaitUntil(deadline, [&] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    const bool done = pa_operation_get_state(operation) == PA_OPERATION_DONE;
    if (!ended) pa_operation_cancel(operation);
    pa_operation_unref(operation);
    if (!ended) throw RuntimeError(sound_error::kUninitialized, kNotAnswering);
    // The end of the connection cancelled the request.
    if (!done)
        throw RuntimeError(sound_error::kUninitialized, "The connection to the sound server was lost.");
}

}  // namespace sonavex
