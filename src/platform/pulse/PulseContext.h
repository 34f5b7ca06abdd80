#pragma once

#include <pulse/pulseaudio.h>

#include <functional>
#include <string>
#include <utility>

#include "core/support/RuntimeError.h"

namespace sonavex {

// A text of the server; empty for a null pointer.
inline std::string PulseText(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

// The time by which all waits of one public call must have ended.
class PulseDeadline {
public:
    PulseDeadline() noexcept;
    pa_usec_t Time() const noexcept { return time_; }

private:
    pa_usec_t time_;  // on the clock of pa_rtclock_now
};

// The connection to the sound server and the thread that serves it. It connects when it is first needed,
// never starts a server, and connects again after a loss. All functions are for the user-interface thread,
// under a Lock where the comment says so. Callbacks that are installed at the server run on the connection's
// thread, which holds the lock meanwhile.
class PulseContext {
public:
    // An empty address stands for the environment's server.
    explicit PulseContext(std::string serverAddress);
    // Does not wait for the server.
    ~PulseContext();
    PulseContext(const PulseContext&) = delete;
    PulseContext& operator=(const PulseContext&) = delete;

    // Excludes the connection's thread while it exists.
    class Lock {
    public:
        explicit Lock(PulseContext& context) noexcept : loop_(context.loop_) {
            pa_threaded_mainloop_lock(loop_);
        }
        ~Lock() { pa_threaded_mainloop_unlock(loop_); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pa_threaded_mainloop* loop_;
    };

    // The handler is called, under lock, with each connection that has been established. Call before the
    // first one.
    void OnConnected(std::function<void(pa_context*)> handler) { onConnected_ = std::move(handler); }

    // The connection; connects when there is none. Under lock. Throws kUninitialized when no server answers
    // before the deadline.
    pa_context* Connected(const PulseDeadline& deadline);

    // Waits, under lock, until the condition holds (true) or the deadline has passed (false). The condition
    // is evaluated after each Wake. For some seconds after a timeout, further waits are short, so that a
    // server that hangs does not block the window in every call.
    bool WaitUntil(const PulseDeadline& deadline, const std::function<bool()>& condition);
    // For callbacks: makes WaitUntil evaluate its condition.
    void Wake() noexcept { pa_threaded_mainloop_signal(loop_, 0); }

    // Waits, under lock, for the end of a request and releases it. Throws when the server refused or did
    // not answer; no callback of the request runs afterwards.
    void Await(pa_operation* operation, const PulseDeadline& deadline);

private:
    pa_usec_t EndOf(const PulseDeadline& deadline) const noexcept;
    void Connect();
    void Drop() noexcept;

    std::string serverAddress_;
    std::function<void(pa_context*)> onConnected_;
    pa_threaded_mainloop* loop_;
    pa_context* context_ = nullptr;
    pa_usec_t impatientUntil_ = 0;  // waits are short until then; on the clock of pa_rtclock_now
};

}  // namespace sonavex
