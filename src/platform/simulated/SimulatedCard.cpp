#include "platform/simulated/SimulatedCard.h"

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

constexpr std::size_t kPeriodFrames = 256;

}  // namespace

void SimulatedCard::SetDeviceUnderTest(DeviceUnderTestModel model) {
    const std::lock_guard lock(mutex_);
    oneClock_.store(model.clockOffsetPpm == 0.0, std::memory_order_relaxed);
    device_ = DeviceUnderTest(std::move(model));
    bits_.store(device_.Bits(), std::memory_order_relaxed);
}

void SimulatedCard::SetMixerGains(const MixerGains& gains) {
    const std::lock_guard lock(mutex_);
    mixer_.SetGains(gains);
}

void SimulatedCard::SetRate(std::uint32_t rateHz) {
    const std::lock_guard lock(mutex_);
    mixer_.SetRate(rateHz);
}

void SimulatedCard::Connect(PlaybackRing& ring) {
    const std::lock_guard lock(mutex_);
    playback_ = &ring;
}

void SimulatedCard::Connect(CaptureRing& ring) {
    const std::lock_guard lock(mutex_);
    capture_ = &ring;
}

void SimulatedCard::Disconnect(const PlaybackRing& ring) {
    const std::lock_guard lock(mutex_);
    if (playback_ == &ring) playback_ = nullptr;
}

void SimulatedCard::Disconnect(const CaptureRing& ring) {
    const std::lock_guard lock(mutex_);
    if (capture_ == &ring) capture_ = nullptr;
}

void SimulatedCard::Step(std::size_t frames) {
    const std::lock_guard lock(mutex_);
    if (stalled_ || !plugged_) return;
    while (frames > 0) {
        const std::size_t period = std::min(frames, kPeriodFrames);
        StepPeriod(period);
        frames -= period;
    }
}

void SimulatedCard::StepPeriod(std::size_t frames) {
    played_.assign(2 * device_.FramesNeeded(frames), 0);
    captured_.resize(2 * frames);
    if (playback_ != nullptr) {
        playback_->SetBits(device_.Bits());
        playback_->Pull(played_.data(), played_.size() / 2, 0);
    }
    mixer_.ProcessOutput(played_, device_.Bits());
    device_.Process(std::span<const std::int32_t>(played_), captured_);
    mixer_.ProcessInput(captured_, device_.Bits());
    if (capture_ != nullptr) capture_->Push(captured_.data(), frames);
}

void SimulatedCard::SetStalled(bool stalled) {
    const std::lock_guard lock(mutex_);
    stalled_ = stalled;
}

void SimulatedCard::SetPlugged(bool plugged) {
    const std::lock_guard lock(mutex_);
    plugged_ = plugged;
    if (plugged_) return;
    playback_ = nullptr;
    capture_ = nullptr;
}

bool SimulatedCard::Plugged() const {
    const std::lock_guard lock(mutex_);
    return plugged_;
}

}  // namespace sonavex
