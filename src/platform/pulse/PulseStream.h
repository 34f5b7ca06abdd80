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
#include "platform/ring/RingBuffers.h"

namespace sonavex {

// Throws kBadFormat unless the description asks for 16-bit stereo at a rate that servers know.
void RequirePulseFormat(const BufferDescription& description);

// A stream of 32-bit samples to or from a device of the server: opens it, detects its loss, closes it. The
// owner moves the samples in callbacks of libpulse.
class PulseStream : public RingDevice {
public:
    using LostHandler = std::function<void(const RuntimeError&)>;

    // onLost is called once, on the user-interface thread, when an opened stream loses its device.
    PulseStream(PulseContext& context, EventLoop& loop, SoundDeviceInfo device, LostHandler onLost);
    // Closes the stream without waiting for the server. No callback of the stream runs afterwards.
    ~PulseStream() override;
    PulseStream(const PulseStream&) = delete;
    PulseStream& operator=(const PulseStream&) = delete;

    // Installs the owner's callbacks and connects to the device. Returns the result of libpulse.
    using Connector = std::function<int(pa_stream*, const char* device, pa_stream_flags_t flags)>;
    // Opens the stream and waits until it runs. Call once. Throws when it does not run before the deadline.
    void Open(std::uint32_t rateHz, const char* title, const Connector& connect,
              const PulseDeadline& deadline);
    // For an open capture stream: sets full volume, because the server may remember another volume of an
    // earlier stream. The volume cannot be passed when such a stream is opened.
    void ResetCaptureVolume(const PulseDeadline& deadline);
    // For an open stream: from now on, PathNote and ClockName describe its path through the server.
    void FollowPath(PulseDirection direction, const PulseDeadline& deadline);

    std::string PathNote() const override { return path_ ? path_->Note() : std::string(); }
    // The clock of the card behind the device; empty when there is no card.
    std::string ClockName() const override { return path_ ? path_->ClockName() : std::string(); }
    // Those of the device's format.
    int Bits() const noexcept override { return path_ ? path_->Bits() : kUnknownBits; }
    void RequireDevice() const override;
    // How often the server ran out of samples of a playback stream.
    std::uint64_t Underruns() const override { return underruns_.load(std::memory_order_relaxed); }

    // Call whenever samples are moved. A stream that moves none for seconds counts as lost, because a
    // server that hangs reports nothing. Any thread.
    void CountMovement() noexcept { movements_.fetch_add(1, std::memory_order_relaxed); }

private:
    // Assumed before the server has answered.
    static constexpr int kUnknownBits = 16;
    enum class Loss { kNone, kServerGone, kDeviceRemoved, kMoved, kSuspended, kStalled, kChanged };

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
    // Under the context's lock.
    bool opened_ = false;
    int failure_ = PA_OK;  // libpulse's error when the stream failed

    std::atomic<Loss> loss_{Loss::kNone};
    std::unique_ptr<Signal> lostSignal_;

    std::atomic<std::uint32_t> movements_{0};
    std::atomic<std::uint64_t> underruns_{0};
    EventLoop::TimerId watch_ = 0;
    std::uint32_t movementsSeen_ = 0;
    int secondsStill_ = 0;
};

}  // namespace sonavex
