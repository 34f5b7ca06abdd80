#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace sonavex {

// How much faster the input's clock runs than the output's, in parts per million: the slope of a least
// squares line through the difference of their leads over time. User-interface thread only.
class ClockDrift {
public:
    // What was seen so far belongs to another run of the stream; what was known stays known.
    void Restart() noexcept;
    // Another stream: nothing is known.
    void Forget() noexcept;

    // At this time the input's clock had gained so much more than the output's. Times in order.
    void Add(std::chrono::nanoseconds time, std::chrono::nanoseconds lead) noexcept;

    // Once it is known to 3 ppm; positive when the input's clock is the faster one.
    std::optional<double> Ppm() const noexcept { return known_; }

private:
    void Learn() noexcept;

    std::chrono::nanoseconds firstTime_{};
    std::chrono::nanoseconds firstLead_{};
    // Over the observations since the last restart; times in s, leads in µs.
    std::int64_t count_ = 0;
    double sumT_ = 0.0;
    double sumTT_ = 0.0;
    double sumL_ = 0.0;
    double sumLL_ = 0.0;
    double sumTL_ = 0.0;
    double span_ = 0.0;
    std::optional<double> known_;
};

// What there is to say to the user about the clocks of input and output, by their names (empty: not
// known) and their drift; empty when they are one, or when nothing tells them apart.
std::string ClockNote(const std::string& inputClock, const std::string& outputClock,
                      std::optional<double> driftPpm);

}  // namespace sonavex
