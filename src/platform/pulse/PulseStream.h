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

namespace sonavex {

// Error 5, or kBadFormat unless the description asks for 16-bit stereo at a rate the server knows.
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
    void Open(std::uint32_t rateHz, const char* title, const Connector& connect);

    // Throws kBufferLost after a loss.
    void RequireDevice() const;

private:
    enum class Loss { kNone, kServerGone, kDeviceRemoved, kMoved, kSuspended };

    static void OnState(pa_stream* stream, void* self);
    static void OnMoved(pa_stream* stream, void* self);
    static void OnSuspended(pa_stream* stream, void* self);
    void Create(pa_context* server, std::uint32_t rateHz, const char* title);
    void Lose(Loss loss) noexcept;
    std::string LossText() const;
    RuntimeError OpenError(int paError) const;

    PulseContext& context_;
    SoundDeviceInfo device_;
    pa_stream* stream_ = nullptr;
    // Under the context's lock.
    bool opened_ = false;
    int failure_ = PA_OK;  // why the stream failed

    std::atomic<Loss> loss_{Loss::kNone};
    std::unique_ptr<Signal> lostBell_;
};

}  // namespace sonavex
