#pragma once

#include <pulse/pulseaudio.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/pulse/PulseContext.h"
#include "platform/pulse/PulsePath.h"

namespace sonavex {

// Throws kBadFormat unless the description asks for 16-bit stereo at a rate that servers know.
void RequirePulseFormat(const BufferDescription& description);

// One stream of samples to or from a device: opened, watched, closed. What moves the samples is the
// owner's. User-interface thread only.
class PulseStream {
public:
    using LostHandler = std::function<void(const RuntimeError&)>;

    // onLost is called on the user-interface thread, once, when the stream that was opened can no
    // longer reach its device.
    PulseStream(PulseContext& context, EventLoop& loop, SoundDeviceInfo device, LostHandler onLost);
    // Closes the stream; no callback of it runs afterwards. Waits for no server.
    ~PulseStream();
    PulseStream(const PulseStream&) = delete;
    PulseStream& operator=(const PulseStream&) = delete;

    // Installs the owner's callbacks and connects to the device; returns what libpulse returned.
    using Connector = std::function<int(pa_stream*, const char* device, pa_stream_flags_t flags)>;
    // Opens the stream and waits until it runs. To be called once; throws when it does not run.
    void Open(std::uint32_t rateHz, const char* title, const Connector& connect,
              const PulseDeadline& deadline);
    // For an open stream from a device: full volume, whatever an earlier recording was given. A
    // volume cannot be passed on opening such a stream.
    void ResetCaptureVolume(const PulseDeadline& deadline);

    // For an open stream: what the server does to its samples is told by PathNote from now on.
    void FollowPath(PulseDirection direction, const PulseDeadline& deadline);
    std::string PathNote() const { return path_ ? path_->Note() : std::string(); }
    // Of the card behind the device; empty when there is none.
    std::string ClockName() const { return path_ ? path_->ClockName() : std::string(); }

    // Throws kBufferLost after a loss.
    void RequireDevice() const;

    // Times that the server ran out of samples of a stream to a device.
    std::uint64_t Underruns() const noexcept { return underruns_.load(std::memory_order_relaxed); }
    // To be called by whatever moves samples: a stream that stands still for seconds counts as lost,
    // because a server that hangs says nothing. Any thread.
    void CountMovement() noexcept { movements_.fetch_add(1, std::memory_order_relaxed); }

private:
    enum class Loss { kNone, kServerGone, kDeviceRemoved, kMoved, kSuspended, kStalled };

    static void OnState(pa_stream* stream, void* self);
    static void OnMoved(pa_stream* stream, void* self);
    static void OnSuspended(pa_stream* stream, void* self);
    static void OnUnderflow(pa_stream* stream, void* self);
    void Create(pa_context* server, std::uint32_t rateHz, const char* title);
    void Lose(Loss loss) noexcept;
    void WatchMovement() noexcept;
    void AskForPath();
    std::string LossText() const;
    RuntimeError OpenError(int paError) const;

    PulseContext& context_;
    EventLoop& loop_;
    SoundDeviceInfo device_;
    pa_stream* stream_ = nullptr;
    std::unique_ptr<PulsePath> path_;
    // Changed under the context's lock.
    bool opened_ = false;
    int failure_ = PA_OK;  // why the stream failed

    std::atomic<Loss> loss_{Loss::kNone};
    std::unique_ptr<Signal> lostBell_;

    std::atomic<std::uint32_t> movements_{0};
    std::atomic<std::uint64_t> underruns_{0};
    EventLoop::TimerId watch_ = 0;
    std::uint32_t movementsSeen_ = 0;
    int secondsStill_ = 0;
};

}  // namespace sonavex
