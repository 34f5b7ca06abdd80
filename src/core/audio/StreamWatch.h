#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "core/audio/StreamEngine.h"
#include "core/ports/ErrorLog.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex {

// Guards against stale readings. When blocks stop coming, the readings are marked. A device that is lost,
// or a capture that stalls, is a loss. What a loss leads to is the owner's policy: either the engine is
// stopped, the loss is logged and reported once, and the engine is started again when its devices are
// back; or the watch ends and leaves the engine to its owner.
class StreamWatch {
public:
    // What the owner of the watch decides.
    struct Policy {
        // Least time that the first notification after a start may take: sleeping devices need time to wake.
        std::chrono::nanoseconds firstBlock = std::chrono::seconds(3);
        // Whether a loss is logged, reported and recovered from. Otherwise it is only counted.
        bool recover = true;
    };

    // Everything must outlive the watch.
    struct Needs {
        EventLoop& loop;
        SoundSystem& sound;
        StreamEngine& engine;
        ErrorLog& errorLog;
        SharedState& shared;
        Settings& settings;
    };

    StreamWatch(const Needs& needs, const Policy& policy);
    ~StreamWatch();
    StreamWatch(const StreamWatch&) = delete;
    StreamWatch& operator=(const StreamWatch&) = delete;

    // Watches from now on, until Stop. The sound system reports losses to the watch meanwhile.
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
    // Losses so far. A device that was started again and failed before its first block counts once.
    std::uint64_t Losses() const noexcept { return losses_; }
    // The last loss was a stall: the device was there and delivered nothing.
    bool Stalled() const noexcept { return stalled_; }

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
    // The same for the first notification after a start: the policy's time, or Patience if that is longer.
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
    void TakeLoss(const RuntimeError& error, bool stalled);
    void GiveUp(const RuntimeError& error);
    void Report(const RuntimeError& error);
    bool DevicesListed();
    bool ChoiceGivenUp() const;
    bool Watching() const;
    void BeginPatience();
    void SetStopped(bool stopped, const std::string& reason);

    Needs needs_;
    Policy policy_;
    EventLoop::TimerId timer_ = 0;
    Time lastLook_{};
    Time lastNotification_{};
    Time lastBlock_{};
    Time nextTry_{};
    std::optional<RuntimeError> loss_;  // told and not yet dealt with
    std::uint64_t seenStarts_ = 0;
    bool awaitingFirst_ = true;
    bool stopped_ = false;
    bool stalled_ = false;
    bool reporting_ = false;
    // The engine was started again by the watch and has not yet delivered a block.
    bool onTrial_ = false;
    std::string reason_;
    std::uint64_t losses_ = 0;
};

}  // namespace sonavex
