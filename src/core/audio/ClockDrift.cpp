#include "core/audio/ClockDrift.h"

#include <algorithm>
#include <cmath>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

// A server's delay estimate drifts for about a minute after a start, and the residual scatter does not reveal
// it: never report earlier.
constexpr double kLeastSpanS = 60.0;
// Starts a new line after this time, because clocks follow the temperature.
constexpr double kMostSpanS = 600.0;
constexpr std::int64_t kLeastCount = 30;
constexpr double kKnownPpm = 3.0;
// Consecutive observations are correlated, so the textbook error of the slope is too small.
constexpr double kErrorFactor = 6.0;

double Seconds(std::chrono::nanoseconds time) noexcept {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

void ClockDrift::Restart() noexcept {
    count_ = 0;
    sumT_ = sumTT_ = sumL_ = sumLL_ = sumTL_ = span_ = 0.0;
}

void ClockDrift::Forget() noexcept {
    Restart();
    known_.reset();
}

void ClockDrift::Add(std::chrono::nanoseconds time, std::chrono::nanoseconds lead) noexcept {
    if (count_ == 0) {
        firstTime_ = time;
        firstLead_ = lead;
    }
    const double t = Seconds(time - firstTime_);
    const double l = 1e6 * Seconds(lead - firstLead_);
    ++count_;
    sumT_ += t;
    sumTT_ += t * t;
    sumL_ += l;
    sumLL_ += l * l;
    sumTL_ += t * l;
    span_ = t;
    if (span_ < kLeastSpanS || count_ < kLeastCount) return;
    Learn();
    if (span_ >= kMostSpanS) Restart();
}

// The slope in µs/s is the drift in ppm.
void ClockDrift::Learn() noexcept {
    const auto n = static_cast<double>(count_);
    const double tt = sumTT_ - sumT_ * sumT_ / n;
    const double tl = sumTL_ - sumT_ * sumL_ / n;
    const double ll = sumLL_ - sumL_ * sumL_ / n;
    const double slope = tl / tt;
    const double scatter = std::max(ll - slope * tl, 0.0) / (n - 2.0);
    if (kErrorFactor * std::sqrt(scatter / tt) <= kKnownPpm) known_ = slope;
}

std::string ClockNote(const std::string& inputClock, const std::string& outputClock,
                      std::optional<double> driftPpm) {
    const bool named = !inputClock.empty() && !outputClock.empty() && inputClock != outputClock;
    const bool apart = driftPpm && std::abs(*driftPpm) > kKnownPpm;
    if (!named && !apart) return {};
    std::string text = "input and output run on different clocks";
    if (!driftPpm) return text;
    if (!apart) return text + ", less than " + CStr(kKnownPpm) + " ppm apart";
    const auto ppm = static_cast<std::int32_t>(std::lround(std::clamp(std::abs(*driftPpm), 0.0, 1e6)));
    return text + ", the input's is " + CStr(ppm) + " ppm " + (*driftPpm > 0 ? "faster" : "slower");
}

}  // namespace sonavex
