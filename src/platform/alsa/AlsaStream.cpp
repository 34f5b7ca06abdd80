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
// A time in which this program itself was held up counts for no more than this.
constexpr auto kLongestStillness = 2 * std::chrono::milliseconds(kLongestWaitMs);
// Longer than any device needs between two periods.
constexpr auto kMostStillness = 2s;
// An overrun is one bad moment; so many in a second are a device that cannot be served.
constexpr int kMostRestarts = 20;
constexpr auto kRestartWindow = 1s;
constexpr int kRestMs = 1;
constexpr int kPriority = 5;

// Served before ordinary threads where the system allows it; works without as well.
void AskForPriority() noexcept {
    sched_param parameters{};
    parameters.sched_priority = kPriority;
    static_cast<void>(pthread_setschedparam(pthread_self(), SCHED_RR, &parameters));
}

}  // namespace

AlsaStream::AlsaStream(EventLoop& loop, const std::string& deviceName, LostHandler onLost)
    : deviceName_(deviceName),
      wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      lostBell_(loop.CreateSignal([this, handler = std::move(onLost)] {
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

void AlsaStream::Run(AlsaPcm& pcm, AlsaMover& mover) {
    pcm_ = pcm.Handle();
    mover_ = &mover;
    const int count = snd_pcm_poll_descriptors_count(pcm_);
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
        if (StandsStill(moved > 0, before)) return;
    }
}

// Until the device or the owner wants something. 0 or an error of libasound.
int AlsaStream::Wait() noexcept {
    pollfd* const ofPcm = descriptors_.data() + 1;
    const auto count = static_cast<unsigned>(descriptors_.size() - 1);
    const int filled = snd_pcm_poll_descriptors(pcm_, ofPcm, count);
    if (filled < 0) return filled;
    if (poll(descriptors_.data(), 1 + static_cast<nfds_t>(filled), kLongestWaitMs) <= 0) return 0;
    unsigned short events = 0;
    const int error = snd_pcm_poll_descriptors_revents(pcm_, ofPcm, static_cast<unsigned>(filled), &events);
    if (error < 0) return error;
    return (events & (POLLERR | POLLHUP | POLLNVAL)) != 0 ? ErrorOfState() : 0;
}

int AlsaStream::ErrorOfState() const noexcept {
    switch (snd_pcm_state(pcm_)) {
        case SND_PCM_STATE_XRUN:
            return -EPIPE;
        case SND_PCM_STATE_SUSPENDED:
            return -ESTRPIPE;
        case SND_PCM_STATE_DISCONNECTED:
            return -ENODEV;
        default:
            return 0;  // moving the samples tells
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
            return Lose(snd_pcm_state(pcm_) == SND_PCM_STATE_DISCONNECTED ? Loss::kRemoved : Loss::kFailing);
    }
}

bool AlsaStream::Restart() noexcept {
    xruns_.fetch_add(1, std::memory_order_relaxed);
    if (TooManyRestarts()) return Lose(Loss::kFailing);
    int error = snd_pcm_prepare(pcm_);
    if (error == 0) error = mover_->Start();
    // Overrun already: noticed by the next move, and counted there.
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

bool AlsaStream::StandsStill(bool moved, Clock::time_point before) noexcept {
    const Clock::duration elapsed = Clock::now() - before;
    if (moved) {
        still_ = Clock::duration::zero();
        return false;
    }
    // A descriptor that is ready without a reason must not keep this thread busy.
    if (elapsed < std::chrono::milliseconds(kRestMs)) Rest();
    still_ += std::min<Clock::duration>(Clock::now() - before, kLongestStillness);
    return still_ >= kMostStillness && !Lose(Loss::kStalled);
}

void AlsaStream::Rest() noexcept {
    poll(descriptors_.data(), 1, kRestMs);
}

// Always false: the stream has ended.
bool AlsaStream::Lose(Loss loss) noexcept {
    loss_.store(loss);
    lostBell_->Raise();
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
            return device + "stands still: it moves no samples any more.";
        case Loss::kFailing:
            return device + "fails: it does not go on after an interruption.";
        case Loss::kNone:
            break;
    }
    return device + "is in use.";
}

void AlsaStream::RequireDevice() const {
    if (loss_.load() != Loss::kNone) throw RuntimeError(sound_error::kBufferLost, LossText());
}

}  // namespace sonavex
