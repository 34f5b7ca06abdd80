#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace sonavex {

// Compares the clock of a device with that of the system. Lead = duration of the moved frames at their
// nominal rate minus the elapsed time. A fast clock makes it grow. Moved is for one audio thread, Lead for
// any; neither takes a lock or memory.
class ClockMeter {
public:
    using Clock = std::chrono::steady_clock;

    explicit ClockMeter(std::uint32_t rateHz) noexcept : rateHz_(rateHz) {}

    // The device took or delivered this many more frames at this time. `behind` counts the frames that it
    // took and has not played yet.
    void Moved(std::size_t frames, std::size_t behind, Clock::time_point now = Clock::now()) noexcept {
        total_ += frames;
        const auto reached = static_cast<std::int64_t>(total_) - static_cast<std::int64_t>(behind);
        if (leadNs_.load(std::memory_order_relaxed) == kUnknown) start_ = now;
        const auto passed = std::chrono::duration_cast<std::chrono::nanoseconds>(now - start_).count();
        leadNs_.store(Nanoseconds(reached) - passed, std::memory_order_relaxed);
    }

    // Null before the first frames.
    std::optional<std::chrono::nanoseconds> Lead() const noexcept {
        const std::int64_t lead = leadNs_.load(std::memory_order_relaxed);
        if (lead == kUnknown) return std::nullopt;
        return std::chrono::nanoseconds(lead);
    }

private:
    static constexpr std::int64_t kUnknown = std::numeric_limits<std::int64_t>::min();

    // Converts whole seconds and the rest separately, because the frames of a day times 1e9 would overflow.
    std::int64_t Nanoseconds(std::int64_t frames) const noexcept {
        return frames / rateHz_ * kSecondNs + frames % rateHz_ * kSecondNs / rateHz_;
    }
    static constexpr std::int64_t kSecondNs = 1'000'000'000;

    std::int64_t rateHz_;
    std::uint64_t total_ = 0;    // audio thread
    Clock::time_point start_{};  // audio thread
    std::atomic<std::int64_t> leadNs_{kUnknown};
};

}  // namespace sonavex
