#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace sonavex {

// Compares a device's clock with the system's: how much further the frames that the device has moved
// reach, at their nominal rate, than the time that has passed since the first of them. A device whose
// clock is fast gains. Moved is for one audio thread, Lead for any; neither locks nor allocates.
class ClockMeter {
public:
    using Clock = std::chrono::steady_clock;

    explicit ClockMeter(std::uint32_t rateHz) noexcept : rateHz_(rateHz) {}

    // The device has moved so many frames more, at this time; `behind` of all that were ever moved it
    // has still to play.
    void Moved(std::size_t frames, std::size_t behind, Clock::time_point now = Clock::now()) noexcept {
        total_ += frames;
        const auto reached = static_cast<std::int64_t>(total_) - static_cast<std::int64_t>(behind);
        if (leadNs_.load(std::memory_order_relaxed) == kUnknown) start_ = now;
        const auto passed = std::chrono::duration_cast<std::chrono::nanoseconds>(now - start_).count();
        leadNs_.store(Nanoseconds(reached) - passed, std::memory_order_relaxed);
    }

    // Nothing before the first frames.
    std::optional<std::chrono::nanoseconds> Lead() const noexcept {
        const std::int64_t lead = leadNs_.load(std::memory_order_relaxed);
        if (lead == kUnknown) return std::nullopt;
        return std::chrono::nanoseconds(lead);
    }

private:
    static constexpr std::int64_t kUnknown = std::numeric_limits<std::int64_t>::min();

    // Whole seconds first: the product of a day's frames and a second would overflow.
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
