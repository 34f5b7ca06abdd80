#include "platform/alsa/AlsaStream.h"

#include <pthread.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "core/ports/SoundErrors.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr int kLongestWaitMs = 100;
// A longer pass of the thread counts as this long, because it means that this program was stopped.
constexpr auto kLongestPass = 2 * std::chrono::milliseconds(kLongestWaitMs);
// A device that moves nothing for this time is lost. Every period is shorter.
constexpr auto kLongestStall = 2s;
// A device that is interrupted more often than this cannot be served.
constexpr int kMostRestarts = 20;
constexpr auto kRestartWindow = 1s;
constexpr int kRestMs = 1;
constexpr int kPriority = 5;

// Runs the thread before ordinary ones where the system allows it. A refusal does no harm.
void AskForPriority() noexcept {
    sched_param parameters{};
    parameters.sched_priority = kPriority;
    static_cast<void>(pthread_setschedparam(pthread_self(), SCHED_RR, &parameters));
}

}  // namespace

AlsaStream::AlsaStream(EventLoop& loop, const AlsaPcm& pcm, const std::string& deviceName, LostHandler onLost)
    : pcm_(pcm),
      deviceName_(deviceName),
      wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      lostSignal_(loop.CreateSignal([this, handler = std::move(onLost)] {
          const bool removed = loss_.load() == Loss::kRemoved;
          handler({removed ? sound_error::kNoDriver : sound_error::kBufferLost, LossText()});
      })) {
    if (wake_ < 0) throw RuntimeError(error_number::kOutOfMemory);
}

AlsaStream::~AlsaStream() {
    stopping_.store(true);
    eventfd_write(wake_, 1);
    if (thread_.joinable()) thread_.join();
    close(wake_);
}

void AlsaStream::Run(AlsaMover& mover) {
    mover_ = &mover;
    const int count = snd_pcm_poll_descriptors_count(pcm_.Handle());
    descriptors_.resize(1 + static_cast<std::size_t>(std::max(count, 0)));
    descriptors_.front() = {wake_, POLLIN, 0};
    const int error = mover.Start();
    if (error < 0)
        throw RuntimeError(
            error == -ENODEV ? sound_error::kBufferLost : sound_error::kGeneric,
            "The sound device '" + deviceName_ + "' does not start: " + snd_strerror(error) + ".");
    try {
        thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        throw RuntimeError(sound_error::kGeneric, "The thread of the sound device does not start.");
    }
}

void AlsaStream::Work() noexcept {
    AskForPriority();
    while (!stopping_.load()) {
        const Clock::time_point before = Clock::now();
        snd_pcm_sframes_t moved = Wait();
        if (stopping_.load()) return;
        if (moved == 0) moved = mover_->Move();
        if (moved < 0 && !Recover(static_cast<int>(moved))) return;
        if (Stalled(moved > 0, before)) return;
    }
}

// Waits until the device is ready, the stream ends or kLongestWaitMs has passed. Returns 0 or an error of
// libasound.
int AlsaStream::Wait() noexcept {
    pollfd* const ofPcm = descriptors_.data() + 1;
    const auto count = static_cast<unsigned>(descriptors_.size() - 1);
    const int filled = snd_pcm_poll_descriptors(pcm_.Handle(), ofPcm, count);
    if (filled < 0) return filled;
    if (poll(descriptors_.data(), 1 + static_cast<nfds_t>(filled), kLongestWaitMs) <= 0) return 0;
    unsigned short events = 0;
    const int error =
        snd_pcm_poll_descriptors_revents(pcm_.Handle(), ofPcm, static_cast<unsigned>(filled), &events);
    if (error < 0) return error;
    return (events & (POLLERR | POLLHUP | POLLNVAL)) != 0 ? ErrorOfState() : 0;
}

int AlsaStream::ErrorOfState() const noexcept {
    switch (snd_pcm_state(pcm_.Handle())) {
        case SND_PCM_STATE_XRUN:
            return -EPIPE;
        case SND_PCM_STATE_SUSPENDED:
            return -ESTRPIPE;
        case SND_PCM_STATE_DISCONNECTED:
            return -ENODEV;
        default:
            return 0;  // Move returns the error
    }
}

// False when the device is lost.
bool AlsaStream::Recover(int error) noexcept {
    switch (-error) {
        case EAGAIN:
        case EINTR:
            return true;
        case EPIPE:
            return Restart();
        case ESTRPIPE:
            return Lose(Loss::kSuspended);
        case ENODEV:
        case ENXIO:
            return Lose(Loss::kRemoved);
        default:
            return Lose(snd_pcm_state(pcm_.Handle()) == SND_PCM_STATE_DISCONNECTED ? Loss::kRemoved
                                                                                   : Loss::kFailing);
    }
}

bool AlsaStream::Restart() noexcept {
    xruns_.fetch_add(1, std::memory_order_relaxed);
    if (TooManyRestarts()) return Lose(Loss::kFailing);
    int error = snd_pcm_prepare(pcm_.Handle());
    if (error == 0) error = mover_->Start();
    // -EPIPE: another overrun has already occurred. The next Move returns it.
    if (error >= 0 || error == -EPIPE) return true;
    return Lose(error == -ENODEV || error == -ENXIO ? Loss::kRemoved : Loss::kFailing);
}

bool AlsaStream::TooManyRestarts() noexcept {
    const Clock::time_point now = Clock::now();
    if (now - restartsSince_ > kRestartWindow) {
        restartsSince_ = now;
        restarts_ = 0;
    }
    return ++restarts_ > kMostRestarts;
}

bool AlsaStream::Stalled(bool moved, Clock::time_point before) noexcept {
    const Clock::duration elapsed = Clock::now() - before;
    if (moved) {
        stalledFor_ = Clock::duration::zero();
        return false;
    }
    // Keeps the thread from spinning on a descriptor that reports itself ready for no reason.
    if (elapsed < std::chrono::milliseconds(kRestMs)) Rest();
    stalledFor_ += std::min<Clock::duration>(Clock::now() - before, kLongestPass);
    return stalledFor_ >= kLongestStall && !Lose(Loss::kStalled);
}

void AlsaStream::Rest() noexcept {
    poll(descriptors_.data(), 1, kRestMs);
}

// Always false: the stream has ended.
bool AlsaStream::Lose(Loss loss) noexcept {
    loss_.store(loss);
    lostSignal_->Raise();
    return false;
}

std::string AlsaStream::LossText() const {
    const std::string device = "The sound device '" + deviceName_ + "' ";
    switch (loss_.load()) {
        case Loss::kRemoved:
            return device + "has been removed.";
        case Loss::kSuspended:
            return device + "has been suspended.";
        case Loss::kStalled:
            return device + "has stalled: it no longer moves samples.";
        case Loss::kFailing:
            return device + "has failed: it did not resume after an interruption.";
        case Loss::kNone:
            break;
    }
    return device + "is in use.";
}

void AlsaStream::RequireDevice() const {
    if (loss_.load() != Loss::kNone) throw RuntimeError(sound_error::kBufferLost, LossText());
}

}  // namespace sonavex
