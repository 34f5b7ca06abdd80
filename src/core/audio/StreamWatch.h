#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "core/audio/ErrorLog.h"
#include "core/audio/StreamEngine.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex {

// Sees to it that a stream that has come to rest is never taken for one that runs: readings that stand
// still, for whatever reason, are marked; a device that is lost, or notifications that stay away, stop
// the engine, are recorded and told once, and the engine is started again when its devices are back.
// User-interface thread only.
class StreamWatch {
public:
    // Everything must outlive the watch.
    struct Environment {
        EventLoop& loop;
        SoundSystem& sound;
        StreamEngine& engine;
        ErrorLog& errorLog;
        SharedState& shared;
        Settings& settings;
    };

    explicit StreamWatch(const Environment& environment);
    ~StreamWatch();
    StreamWatch(const StreamWatch&) = delete;
    StreamWatch& operator=(const StreamWatch&) = delete;

    // From now on, until Stop. Losses are told to the watch by the sound system.
    void Start();
    void Stop();

    // To be called for every notification of the capture, whatever becomes of its block.
    void Notified();
    // To be called for every block that was processed and queued.
    void BlockQueued();
    // A device in use is lost. Dealt with at the next look, so that the mark is seen before a message.
    void DeviceLost(const RuntimeError& error);

    // The readings are of the past.
    bool Stopped() const noexcept { return stopped_; }
    // Why, for the user; empty while running.
    const std::string& Reason() const noexcept { return reason_; }
    // Records written so far: one a loss.
    std::uint64_t Losses() const noexcept { return losses_; }

    // Told when Stopped has changed. May be empty.
    std::function<void()> OnChanged;
    // The user is to choose devices: after the message about a loss, when the lost device is still listed,
    // or when its choice was given up. May be empty.
    std::function<void()> ChooseDevices;
    // Told when the watch has started the engine again. May be empty.
    std::function<void()> OnRestarted;
    // True while a dialog has the engine in its hands: nothing is stopped or started then. May be empty.
    std::function<bool()> Held;

    // The time without a notification after which the stream counts as stalled: 1 s, or three blocks.
    std::chrono::nanoseconds Patience() const;
    // The same for the first notification after a start: devices that slept need time to wake.
    std::chrono::nanoseconds StartPatience() const;

private:
    using Time = std::chrono::nanoseconds;

    void Look();
    void ForgiveHoldUp(Time now);
    void FollowStarts();
    void MarkStandstill(Time now);
    void LookForStall(Time now);
    void LookForReturn();
    void TryAgain();
    void GiveUp(const RuntimeError& error);
    void Report(const RuntimeError& error);
    bool DevicesListed();
    bool ChoiceGivenUp() const;
    bool Watching() const;
    void BeginPatience();
    void SetStopped(bool stopped, const std::string& reason);

    Environment env_;
    EventLoop::TimerId timer_ = 0;
    Time lastLook_{};
    Time lastNotification_{};
    Time lastBlock_{};
    Time nextTry_{};
    std::optional<RuntimeError> loss_;  // told and not yet dealt with
    std::uint64_t seenStarts_ = 0;
    bool awaitingFirst_ = true;
    bool stopped_ = false;
    bool reporting_ = false;
    // The engine was started again by the watch and has not yet delivered a block.
    bool onTrial_ = false;
    std::string reason_;
    std::uint64_t losses_ = 0;
};

}  // namespace sonavex
