#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace sonavex {

// Drift of the input's clock relative to the output's in ppm: the slope of a least-squares line through the
// difference of their leads over time.
class ClockDrift {
public:
    // Starts a new line after an interruption. A known drift stays known.
    void Restart() noexcept;
    // Resets everything for another stream.
    void Forget() noexcept;

    // Adds an observation: the lead of the input's clock over the output's at a time. Times must ascend.
    void Add(std::chrono::nanoseconds time, std::chrono::nanoseconds lead) noexcept;

    // The drift, once known to 3 ppm; positive if the input's clock is faster.
    std::optional<double> Ppm() const noexcept { return known_; }

private:
    void Learn() noexcept;

    std::chrono::nanoseconds firstTime_{};
    std::chrono::nanoseconds firstLead_{};
    // Sums over the observations since the last restart; times in s, leads in µs.
    std::int64_t count_ = 0;
    double sumT_ = 0.0;
    double sumTT_ = 0.0;
    double sumL_ = 0.0;
    double sumLL_ = 0.0;
    double sumTL_ = 0.0;
    double span_ = 0.0;
    std::optional<double> known_;
};

// Note for the user about the clocks of input and output, from their names (empty: unknown) and their drift.
// Empty if both are the same clock, or if nothing distinguishes them.
std::string ClockNote(const std::string& inputClock, const std::string& outputClock,
                      std::optional<double> driftPpm);

}  // namespace sonavex
