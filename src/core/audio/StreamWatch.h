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

// Guards against stale readings. When blocks stop arriving, the readings are marked. A lost device and a
// stalled capture are losses. The owner's policy decides what a loss does: either the engine is stopped, the
// loss is logged and reported once, and the engine is restarted when its devices are back; or the watch ends
// and leaves the engine to its owner.
class StreamWatch {
public:
    // Decisions of the owner.
    struct Policy {
        // Minimum time allowed for the first notification after a start: suspended devices need time to wake.
        std::chrono::nanoseconds firstBlock = std::chrono::seconds(3);
        // Whether a loss is logged, reported and recovered from. If not, it is only counted.
        bool recover = true;
    };

    // All referenced objects must outlive the watch.
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

    // Watches until Stop. Meanwhile the sound system reports losses to the watch.
    void Start();
    void Stop();

    // Call for every notification of the capture, also if its block fails.
    void Notified();
    // Call for every block that was processed and queued.
    void BlockQueued();
    // Reports the loss of a device in use. It is handled at the next check, so that the mark is shown before
    // a message.
    void DeviceLost(const RuntimeError& error);

    // Whether the readings are stale.
    bool Stopped() const noexcept { return stopped_; }
    // Reason for the user; empty while running.
    const std::string& Reason() const noexcept { return reason_; }
    // Number of losses. A device that was restarted and failed before its first block counts once.
    std::uint64_t Losses() const noexcept { return losses_; }
    // Whether the last loss was a stall: the device was present and delivered nothing.
    bool Stalled() const noexcept { return stalled_; }

    // Called when Stopped has changed. May be empty.
    std::function<void()> OnChanged;
    // Called when the user must choose devices: after the message about a loss, if the lost device is still
    // listed or its choice was cleared. May be empty.
    std::function<void()> ChooseDevices;
    // Called when the watch has restarted the engine. May be empty.
    std::function<void()> OnRestarted;
    // Returns true while a dialog controls the engine: the watch then stops and starts nothing. May be empty.
    std::function<bool()> Held;
    // Returns true while a tick of the sweep yields: a check then only marks, and CatchUp completes it. May
    // be empty.
    std::function<bool()> Yielding;
    // Whether a check waits for CatchUp.
    bool Postponed() const noexcept { return postponed_; }
    // Call after a tick: completes a postponed check.
    void CatchUp();

    // Time without a notification after which the stream counts as stalled: three blocks, at least 1 s.
    std::chrono::nanoseconds Patience() const;
    // The same for the first notification after a start: the policy's time, or Patience if that is longer.
    std::chrono::nanoseconds StartPatience() const;

private:
    using Time = std::chrono::nanoseconds;

    void Check();
    void ExcludeBlockedTime(Time now);
    void FollowStarts();
    void MarkStale(Time now);
    void CheckForStall(Time now);
    void CheckForReturn();
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
    Time lastCheck_{};
    Time lastNotification_{};
    Time lastBlock_{};
    Time nextTry_{};
    std::optional<RuntimeError> loss_;  // reported and not yet handled
    std::uint64_t seenStarts_ = 0;
    bool awaitingFirst_ = true;
    bool stopped_ = false;
    bool stalled_ = false;
    bool reporting_ = false;
    bool postponed_ = false;
    // The watch has restarted the engine, and no block has arrived yet.
    bool onTrial_ = false;
    std::string reason_;
    std::uint64_t losses_ = 0;
};

}  // namespace sonavex
