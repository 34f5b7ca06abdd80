#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/ring/RingFrames.h"

namespace sonavex {

// Fine frames in order, from one thread that puts to another that takes. Neither waits, takes a lock or
// allocates memory. One of the two is the user-interface thread, which opens and closes the queue.
class FineQueue {
public:
    explicit FineQueue(std::size_t frames) : size_(frames) {}

    std::size_t Size() const noexcept { return size_; }
    bool Opened() const noexcept { return opened_.load(std::memory_order_acquire); }

    // User-interface thread. Opens an empty queue; does nothing when it is open. Allocates at the first time.
    void Open() {
        if (Opened()) return;
        frames_.resize(size_);
        first_.store(put_.load());
        opened_.store(true, std::memory_order_release);
    }
    void Close() noexcept { opened_.store(false, std::memory_order_release); }

    // Puts frameAt(0), frameAt(1) ... and returns how many of the frames had room. None in a closed queue.
    template <class FrameAt>
    std::size_t Put(FrameAt frameAt, std::size_t frames) noexcept {
        if (!Opened()) return 0;
        const std::uint64_t put = put_.load(std::memory_order_relaxed);
        const std::size_t room =
            size_ - static_cast<std::size_t>(put - taken_.load(std::memory_order_acquire));
        const std::size_t count = std::min(frames, room);
        std::size_t at = put % size_;
        for (std::size_t i = 0; i < count; ++i, at = After(at)) frames_[at] = frameAt(i);
        put_.store(put + count, std::memory_order_release);
        return count;
    }

    // Calls take(i, frame) with the oldest frames, at most as many as given. Returns how many there were.
    template <class TakeFrame>
    std::size_t Take(TakeFrame take, std::size_t frames) noexcept {
        if (!Opened()) return 0;
        // In this order: the queue may be opened again in between, and `first` must not exceed `put`.
        const std::uint64_t first = first_.load();
        const std::uint64_t put = put_.load(std::memory_order_acquire);
        const std::uint64_t from = std::max(taken_.load(std::memory_order_relaxed), first);
        const std::size_t count = std::min(frames, static_cast<std::size_t>(put - from));
        std::size_t at = from % size_;
        for (std::size_t i = 0; i < count; ++i, at = After(at)) take(i, frames_[at]);
        taken_.store(from + count, std::memory_order_release);
        return count;
    }

    // Whether anything was put since the queue was opened.
    bool Used() const noexcept { return put_.load(std::memory_order_relaxed) != first_.load(); }

private:
    std::size_t After(std::size_t frame) const noexcept { return frame + 1 == size_ ? 0 : frame + 1; }

    std::size_t size_;
    std::vector<FineFrame> frames_;
    std::atomic<bool> opened_{false};
    // Counts since construction.
    std::atomic<std::uint64_t> put_{0};
    std::atomic<std::uint64_t> taken_{0};
    std::atomic<std::uint64_t> first_{0};  // put_ when the queue was opened
};

}  // namespace sonavex
