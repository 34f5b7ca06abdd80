#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sonavex {

// Frames in order, from one thread that puts to another that takes. Neither waits, takes a lock or allocates
// memory. One of the two is the user-interface thread, which opens, closes and cuts the queue.
//
// Frames are numbered in the order of Put. A queue that was cut:
//
//     first_      taken_       cutFrom_      cutTo_       put_
//   ----|------------|------------|------------|------------|---->
//        taken         waiting      passed over  waiting      not put yet
//
// Each mark is written by one thread and only grows: taken_ by the thread that takes, put_, cutFrom_ and
// cutTo_ by the thread that puts, first_ by the user-interface thread. Take writes taken_ once, at its end.
template <class Frame>
class FineQueue {
public:
    explicit FineQueue(std::size_t frames) : size_(frames) {}

    bool Opened() const noexcept { return opened_.load(std::memory_order_acquire); }

    // Opens an empty queue; does nothing when it is open. Allocates at the first time. Frames put before take
    // up room until the next Take or Discard.
    void Open() {
        if (Opened()) return;
        // Twice the size, because frames that are cut off stay in memory until the next Take.
        frames_.resize(std::bit_ceil(2 * size_));
        first_.store(put_.load());
        opened_.store(true, std::memory_order_release);
    }
    void Close() noexcept { opened_.store(false, std::memory_order_release); }

    // Puts frameAt(0), frameAt(1) ... and returns how many of the frames had room. None in a closed queue.
    template <class FrameAt>
    std::size_t Put(FrameAt frameAt, std::size_t frames) noexcept {
        if (!Opened()) return 0;
        const std::uint64_t put = put_.load(std::memory_order_relaxed);
        const std::uint64_t taken = taken_.load(std::memory_order_acquire);
        const std::uint64_t oldest = std::max({taken, first_.load(), cutTo_.load()});
        const std::size_t count = std::min({frames, size_ - static_cast<std::size_t>(put - oldest),
                                            frames_.size() - static_cast<std::size_t>(put - taken)});
        for (std::size_t i = 0; i < count; ++i) frames_[At(put + i)] = frameAt(i);
        put_.store(put + count, std::memory_order_release);
        return count;
    }

    // Calls take(i, frame) with the oldest frames, at most as many as given, until it returns false for a
    // frame, which then remains. Returns how many were taken.
    template <class TakeFrame>
    std::size_t Take(TakeFrame take, std::size_t frames) noexcept {
        if (!Opened()) return 0;
        // `put` last: the other thread may open or cut the queue meanwhile, and no mark may exceed `put`.
        const std::uint64_t first = first_.load();
        const std::uint64_t cutTo = cutTo_.load();
        const std::uint64_t cutFrom = cutFrom_.load();
        const std::uint64_t put = put_.load(std::memory_order_acquire);
        std::uint64_t next = std::max(taken_.load(std::memory_order_relaxed), first);
        std::size_t count = 0;
        for (; count < frames; ++count, ++next) {
            if (next >= cutFrom && next < cutTo && cutTo < put) next = cutTo;
            if (next == put || !take(count, frames_[At(next)])) break;
        }
        taken_.store(next, std::memory_order_release);
        return count;
    }

    // For the thread that takes: removes every frame.
    void Discard() noexcept { taken_.store(put_.load()); }

    // For the thread that puts: `keep` of the waiting frames remain, and those put from now on follow them.
    // The rest is taken only until a new frame arrives. Returns how many frames were cut off. A cut that has
    // not taken effect yet keeps its place. Frames behind the cut that a Take under way has passed already
    // are counted as cut off although they are taken: at most as many as that Take was called for.
    std::size_t Cut(std::size_t keep) noexcept {
        if (!Opened()) return 0;
        const std::uint64_t put = put_.load(std::memory_order_relaxed);
        const std::uint64_t next = Next();
        std::uint64_t from = cutTo_.load(std::memory_order_relaxed);
        if (next >= from) {
            from = std::min(next + keep, put);
            cutFrom_.store(from);
        }
        cutTo_.store(put);
        return static_cast<std::size_t>(put - from);
    }

    // Frames put and neither taken nor cut off.
    std::size_t Waiting() const noexcept {
        const std::uint64_t next = Next();
        const std::uint64_t cutFrom = std::max(cutFrom_.load(), next);
        const std::uint64_t cut = cutTo_.load() > cutFrom ? cutTo_.load() - cutFrom : 0;
        return Opened() ? static_cast<std::size_t>(put_.load() - next - cut) : 0;
    }
    // Whether anything was put since the queue was opened.
    bool Used() const noexcept { return put_.load(std::memory_order_relaxed) != first_.load(); }

private:
    std::size_t At(std::uint64_t frame) const noexcept { return frame & (frames_.size() - 1); }
    std::uint64_t Next() const noexcept { return std::max(taken_.load(), first_.load()); }

    std::size_t size_;
    std::vector<Frame> frames_;  // a power of two
    std::atomic<bool> opened_{false};
    // Counts since construction.
    std::atomic<std::uint64_t> put_{0};
    std::atomic<std::uint64_t> taken_{0};  // including those passed over
    std::atomic<std::uint64_t> first_{0};  // put_ when the queue was opened
    // Frames in [cutFrom_, cutTo_) are passed over once there are frames behind them.
    std::atomic<std::uint64_t> cutFrom_{0};
    std::atomic<std::uint64_t> cutTo_{0};
};

}  // namespace sonavex
