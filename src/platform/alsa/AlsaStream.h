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

namespace sonavex {

// What moves the samples of a stream. None of it waits, locks or allocates.
class AlsaMover {
public:
    virtual ~AlsaMover() = default;
    // Makes a prepared PCM run: at first, and again after each overrun or underrun. 0 or an error of
    // libasound.
    virtual int Start() noexcept = 0;
    // Moves what can be moved now. Frames, or an error of libasound.
    virtual snd_pcm_sframes_t Move() noexcept = 0;
};

// A thread that keeps one PCM moving and watches it. It ends with the loss of the device: removed,
// suspended, standing still or failing again and again. What the mover does belongs to that thread
// from Run on; everything else is for the user-interface thread.
class AlsaStream {
public:
    using LostHandler = std::function<void(const RuntimeError&)>;

    // onLost is called on the user-interface thread, once, when the device can no longer be reached.
    AlsaStream(EventLoop& loop, const std::string& deviceName, LostHandler onLost);
    // Ends the thread; it waits for nothing longer than a moment.
    ~AlsaStream();
    AlsaStream(const AlsaStream&) = delete;
    AlsaStream& operator=(const AlsaStream&) = delete;

    // Starts the PCM and the thread; to be called once. Both objects must outlive this one. Throws
    // kGeneric or kBufferLost when it does not start.
    void Run(AlsaPcm& pcm, AlsaMover& mover);

    // Throws kBufferLost after a loss.
    void RequireDevice() const;

    // Times the device was not served soon enough, so that samples were lost.
    std::uint64_t Xruns() const noexcept { return xruns_.load(std::memory_order_relaxed); }

private:
    using Clock = std::chrono::steady_clock;
    enum class Loss { kNone, kRemoved, kSuspended, kStalled, kFailing };

    void Work() noexcept;
    int Wait() noexcept;
    int ErrorOfState() const noexcept;
    bool Recover(int error) noexcept;
    bool Restart() noexcept;
    bool TooManyRestarts() noexcept;
    bool StandsStill(bool moved, Clock::time_point before) noexcept;
    void Rest() noexcept;
    bool Lose(Loss loss) noexcept;
    std::string LossText() const;

    std::string deviceName_;
    snd_pcm_t* pcm_ = nullptr;
    AlsaMover* mover_ = nullptr;
    int wake_;                         // descriptor that ends every wait
    std::vector<pollfd> descriptors_;  // wake_, then those of the PCM

    std::atomic<bool> stopping_{false};
    std::atomic<std::uint64_t> xruns_{0};
    std::atomic<Loss> loss_{Loss::kNone};
    std::unique_ptr<Signal> lostBell_;

    // Audio thread.
    Clock::duration still_{0};
    Clock::time_point restartsSince_;
    int restarts_ = 0;

    std::thread thread_;
};

}  // namespace sonavex
