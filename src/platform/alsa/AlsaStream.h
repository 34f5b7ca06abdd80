#pragma once

#include <alsa/asoundlib.h>
#include <poll.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/ports/EventLoop.h"
#include "core/support/RuntimeError.h"
#include "platform/alsa/AlsaPcm.h"
#include "platform/ring/RingBuffers.h"

namespace sonavex {

// Moves the samples of a stream. Its functions neither wait, lock nor allocate.
class AlsaMover {
public:
    virtual ~AlsaMover() = default;
    // Starts a prepared PCM: at first, and again after each overrun or underrun. Returns 0 or an error
    // of libasound.
    virtual int Start() noexcept = 0;
    // Moves the samples that can be moved now. Returns the frames moved, or an error of libasound.
    virtual snd_pcm_sframes_t Move() noexcept = 0;
};

// A thread that moves the samples of one PCM and detects its loss: a device that is removed, suspended,
// stalled for 2 s, or interrupted too often. The thread ends with the loss. After Run, the mover's
// functions are called on that thread only; everything else is for the user-interface thread.
class AlsaStream : public RingDevice {
public:
    using LostHandler = std::function<void(const RuntimeError&)>;

    // The PCM must outlive this object. onLost is called once, on the user-interface thread, when the
    // device is lost.
    AlsaStream(EventLoop& loop, const AlsaPcm& pcm, const std::string& deviceName, LostHandler onLost);
    // Ends the thread, within about 0.1 s at most.
    ~AlsaStream() override;
    AlsaStream(const AlsaStream&) = delete;
    AlsaStream& operator=(const AlsaStream&) = delete;

    // Starts the PCM and the thread. Call once. The mover must outlive this object. Throws kGeneric or
    // kBufferLost when the PCM does not start.
    void Run(AlsaMover& mover);

    void RequireDevice() const override;
    std::string PathNote() const override { return pcm_.Note(); }
    std::string ClockName() const override { return pcm_.ClockName(); }
    int Bits() const noexcept override { return pcm_.Bits(); }
    // Overruns or underruns: how often the device was served too late and samples were lost.
    std::uint64_t Underruns() const override { return xruns_.load(std::memory_order_relaxed); }

private:
    using Clock = std::chrono::steady_clock;
    enum class Loss { kNone, kRemoved, kSuspended, kStalled, kFailing };

    void Work() noexcept;
    int Wait() noexcept;
    int ErrorOfState() const noexcept;
    bool Recover(int error) noexcept;
    bool Restart() noexcept;
    bool TooManyRestarts() noexcept;
    bool Stalled(bool moved, Clock::time_point before) noexcept;
    void Rest() noexcept;
    bool Lose(Loss loss) noexcept;
    std::string LossText() const;

    const AlsaPcm& pcm_;
    std::string deviceName_;
    AlsaMover* mover_ = nullptr;
    int wake_;                         // event descriptor that ends every wait
    std::vector<pollfd> descriptors_;  // wake_, then the descriptors of the PCM

    std::atomic<bool> stopping_{false};
    std::atomic<std::uint64_t> xruns_{0};
    std::atomic<Loss> loss_{Loss::kNone};
    std::unique_ptr<Signal> lostSignal_;

    // Audio thread.
    Clock::duration stalledFor_{0};
    Clock::time_point restartsSince_;
    int restarts_ = 0;

    std::thread thread_;
};

}  // namespace sonavex
