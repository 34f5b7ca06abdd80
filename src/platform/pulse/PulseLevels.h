#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/EventLoop.h"
#include "platform/pulse/PulseContext.h"
#include "platform/pulse/PulseDevices.h"
#include "platform/pulse/PulsePorts.h"

namespace sonavex {

// Levels of a sink or source as the server reports them.
struct PulseLevelState {
    std::string name;                   // the server's
    std::string description;            // the one that users see
    std::vector<std::int32_t> volumes;  // one a channel, 65536 for full; may be more
    bool muted = false;
    std::vector<PulsePort> ports;
    std::string activePort;
    // Number of this machine's card behind the device; empty without one, and at another machine's server.
    std::string alsaCard;
};

// Reads and sets levels at the server, each by one request. RuntimeError when the server refuses or does not
// answer; after that every call fails at once for two seconds, so that a form full of levels does not wait
// for each of them.
class PulseLevels {
public:
    // An empty address stands for the environment's server.
    PulseLevels(EventLoop& loop, const std::string& serverAddress);
    ~PulseLevels();
    PulseLevels(const PulseLevels&) = delete;
    PulseLevels& operator=(const PulseLevels&) = delete;

    std::vector<PulseLevelState> List(PulseDirection direction);
    PulseLevelState Read(PulseDirection direction, const std::string& name);
    void SetVolumes(PulseDirection direction, const std::string& name,
                    const std::vector<std::int32_t>& volumes);
    void SetMuted(PulseDirection direction, const std::string& name, bool muted);
    void SetPort(PulseDirection direction, const std::string& name, const std::string& port);

    // The handler is called on the user-interface thread when the server has reported a change.
    void OnChange(std::function<void()> handler) { changed_ = std::move(handler); }

private:
    void Run(const std::function<void(pa_context*, const PulseDeadline&)>& request);
    void Subscribe(pa_context* server);
    void Command(const std::function<pa_operation*(pa_context*, pa_context_success_cb_t, void*)>& start);
    static void Changed(pa_context*, pa_subscription_event_type_t, uint32_t, void* levels);

    std::function<void()> changed_;
    std::unique_ptr<Signal> changeSignal_;
    PulseContext context_;
    std::chrono::steady_clock::time_point deadUntil_{};
    std::optional<RuntimeError> lastError_;
};

}  // namespace sonavex
