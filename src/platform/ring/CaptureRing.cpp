#include "platform/ring/CaptureRing.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace sonavex {

void CaptureRing::SetPositions(std::vector<Position> positions) {
    if (running_.load()) throw RuntimeError(error_number::kInvalidCall);
    for (const Position& position : positions)
        if (position.offset < 0 || position.offset >= frames_.Bytes() || !position.signal)
            throw RuntimeError(error_number::kInvalidCall);
    positions_ = std::move(positions);
}

void CaptureRing::Start() noexcept {
    if (running_.load()) return;
    fine_.Discard();
    rewind_.store(true);
    running_.store(true);
}

void CaptureRing::Stop() noexcept {
    running_.store(false);
    // A push takes no longer than copying one device period.
    while (pushing_.load()) std::this_thread::yield();
}

template <class FrameAt>
bool CaptureRing::PushFrames(FrameAt frameAt, std::size_t frames, bool missing) noexcept {
    pushing_.store(true);
    const bool running = running_.load();
    if (running) {
        if (rewind_.exchange(false)) next_ = 0;
        for (std::size_t i = 0; i < frames; ++i) {
            frames_.Store(next_, frameAt(i));
            Notify(next_);
            next_ = next_ + 1 == frames_.Size() ? 0 : next_ + 1;
        }
        const std::uint64_t before = captured_.fetch_add(frames, std::memory_order_relaxed);
        if (!missing) PutFine(frameAt, frames, before);
    }
    pushing_.store(false);
    return running;
}

template <class FrameAt>
void CaptureRing::PutFine(FrameAt frameAt, std::size_t frames, std::uint64_t number) noexcept {
    if (!fine_.Opened()) return;
    const std::size_t put = fine_.Put(
        [&](std::size_t i) {
            return NumberedFrame{Fine(frameAt(i)), number + i};
        },
        frames);
    fineLost_.fetch_add(frames - put, std::memory_order_relaxed);
}

void CaptureRing::CaptureFine(bool on) {
    if (on == fine_.Opened()) return;
    on ? fine_.Open() : fine_.Close();
    fine_.Discard();
}

FineRun CaptureRing::TakeFine(std::span<std::int32_t> samples) noexcept {
    FineRun run;
    const auto take = [&](std::size_t i, const NumberedFrame& frame) {
        if (i == 0) run.firstFrame = frame.number;
        if (frame.number != run.firstFrame + i) return false;
        std::copy(frame.samples.begin(), frame.samples.end(), &samples[2 * i]);
        return true;
    };
    run.samples = 2 * fine_.Take(take, samples.size() / 2);
    return run;
}

void CaptureRing::Notify(std::size_t frame) noexcept {
    for (const Position& position : positions_) {
        if (static_cast<std::size_t>(position.offset / kFrameBytes) != frame) continue;
        completed_.fetch_add(1, std::memory_order_relaxed);
        if (!position.signal->Raise()) lost_.fetch_add(1, std::memory_order_relaxed);
    }
}

void CaptureRing::NoteMovedBits(const std::int32_t* samples, std::size_t frames) noexcept {
    std::uint32_t moved = 0;
    for (std::size_t i = 0; i < 2 * frames; ++i)
        moved |= static_cast<std::uint32_t>(samples[i] ^ std::exchange(last_[i % 2], samples[i]));
    moved_.fetch_or(moved, std::memory_order_relaxed);
}

void CaptureRing::Push(const std::int16_t* samples, std::size_t frames) noexcept {
    PushFrames([&](std::size_t i) { return Frame16{samples[2 * i], samples[2 * i + 1]}; }, frames);
}

void CaptureRing::Push(const std::int32_t* samples, std::size_t frames) noexcept {
    PushFrames([&](std::size_t i) { return FineFrame{samples[2 * i], samples[2 * i + 1]}; }, frames);
    NoteMovedBits(samples, frames);
}

void CaptureRing::PushSilence(std::size_t frames) noexcept {
    if (PushFrames([](std::size_t) { return FineFrame{}; }, frames, true))
        missing_.fetch_add(frames, std::memory_order_relaxed);
}

void CaptureRing::Read(std::int32_t offset, std::span<std::int16_t> samples) const {
    const std::size_t first = frames_.CheckedRange(offset, samples.size());
    for (std::size_t i = 0; i < samples.size() / 2; ++i) {
        const Frame16 frame = frames_.Load16(first + i);
        std::copy(frame.begin(), frame.end(), &samples[2 * i]);
    }
}

CaptureStatistics CaptureRing::Statistics() const noexcept {
    return {captured_.load(), completed_.load(), lost_.load(), missing_.load(), fineLost_.load()};
}

}  // namespace sonavex
