#pragma once

#include <pulse/pulseaudio.h>

#include <functional>
#include <string>
#include <utility>

#include "core/support/RuntimeError.h"

namespace sonavex {

// A text of the server; empty where it has none.
inline std::string PulseText(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

// Until when the waits of one public call may last, together.
class PulseDeadline {
public:
    PulseDeadline() noexcept;
    pa_usec_t Time() const noexcept { return time_; }

private:
    pa_usec_t time_;  // of pa_rtclock_now
};

// The connection to the sound server and the thread that serves it. Connects when first needed,
// never starts a server, and replaces a connection that was lost at the next need. Everything is
// for the user-interface thread, under a Lock where the comment says so; callbacks that others
// install at the server run on the connection's thread, which then holds the lock.
class PulseContext {
public:
    // An empty address stands for the environment's server.
    explicit PulseContext(std::string serverAddress);
    // Waits for no server.
    ~PulseContext();
    PulseContext(const PulseContext&) = delete;
    PulseContext& operator=(const PulseContext&) = delete;

    // Keeps the connection's thread out.
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

    // Called, under lock, with every connection that has been established; before the first one.
    void OnConnected(std::function<void(pa_context*)> handler) { onConnected_ = std::move(handler); }

    // The connection, established if need be. Under lock. Throws kUninitialized when no server
    // answers in time.
    pa_context* Connected(const PulseDeadline& deadline);

    // Waits, under lock, until the condition holds (true) or the time is over (false). The condition
    // is looked at again after each Wake. For some seconds after a wait that was in vain the next ones
    // are short: a server that stands still is not to hold up the window call after call.
    bool WaitUntil(const PulseDeadline& deadline, const std::function<bool()>& condition);
    // Lets WaitUntil look again; for callbacks.
    void Wake() noexcept { pa_threaded_mainloop_signal(loop_, 0); }

    // Waits, under lock, for the end of a request and releases it. Throws when the server refused
    // or did not answer; no callback of the request runs any more then.
    void Await(pa_operation* operation, const PulseDeadline& deadline);

private:
    pa_usec_t EndOf(const PulseDeadline& deadline) const noexcept;
    void Connect();
    void Drop() noexcept;

    std::string serverAddress_;
    std::function<void(pa_context*)> onConnected_;
    pa_threaded_mainloop* loop_;
    pa_context* context_ = nullptr;
    pa_usec_t impatientUntil_ = 0;  // of pa_rtclock_now
};

}  // namespace sonavex
