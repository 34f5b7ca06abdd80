#include "platform/simulated/MixerPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/simulated/DeviceUnderTest.h"

namespace sonavex {
namespace {

constexpr double kBassCornerHz = 250.0;
constexpr double kMidCentreHz = 1000.0;
constexpr double kTrebleCornerHz = 4000.0;
// Limits the corner frequencies at low sampling rates.
constexpr double kHighestPartOfRate = 0.2;
constexpr double kShelfQ = std::numbers::sqrt2 / 2.0;
constexpr double kMidQ = 0.8;

constexpr double kStep16 = 65536.0;

bool AnyGain(const MixerGains::Pair& gains) noexcept {
    return gains[0] != 0.0 || gains[1] != 0.0;
}

bool IsUnity(const MixerGains::Pair& gains) noexcept {
    return gains[0] == 1.0 && gains[1] == 1.0;
}

}  // namespace

double MixerPath::Filter::Run(double sample, std::size_t channel) noexcept {
    const double out = b0 * sample + s1[channel];
    s1[channel] = b1 * sample - a1 * out + s2[channel];
    s2[channel] = b2 * sample - a2 * out;
    return out;
}

void MixerPath::Filter::Design(const std::array<double, 3>& b, const std::array<double, 3>& a) noexcept {
    b0 = b[0] / a[0];
    b1 = b[1] / a[0];
    b2 = b[2] / a[0];
    a1 = a[1] / a[0];
    a2 = a[2] / a[0];
}

// Shelving filter by the bilinear transform. The high shelf is the mirrored low shelf.
void MixerPath::Filter::Shelf(double gainDb, double cornerHz, double rateHz, bool high) noexcept {
    inUse = gainDb != 0.0;
    const double turn = 2.0 * std::numbers::pi * std::min(cornerHz / rateHz, kHighestPartOfRate);
    const double gain = std::pow(10.0, gainDb / 40.0);
    const double slope = 2.0 * std::sqrt(gain) * std::sin(turn) / (2.0 * kShelfQ);
    const double cosine = high ? -std::cos(turn) : std::cos(turn);
    const double sign = high ? -1.0 : 1.0;
    Design(
        {gain * ((gain + 1.0) - (gain - 1.0) * cosine + slope),
         sign * 2.0 * gain * ((gain - 1.0) - (gain + 1.0) * cosine),
         gain * ((gain + 1.0) - (gain - 1.0) * cosine - slope)},
        {(gain + 1.0) + (gain - 1.0) * cosine + slope, sign * -2.0 * ((gain - 1.0) + (gain + 1.0) * cosine),
         (gain + 1.0) + (gain - 1.0) * cosine - slope});
}

void MixerPath::Filter::Peak(double gainDb, double centreHz, double rateHz) noexcept {
    inUse = gainDb != 0.0;
    const double turn = 2.0 * std::numbers::pi * std::min(centreHz / rateHz, kHighestPartOfRate);
    const double gain = std::pow(10.0, gainDb / 40.0);
    const double width = std::sin(turn) / (2.0 * kMidQ);
    const double middle = -2.0 * std::cos(turn);
    Design({1.0 + width * gain, middle, 1.0 - width * gain},
           {1.0 + width / gain, middle, 1.0 - width / gain});
}

void MixerPath::DesignTones() noexcept {
    tones_[0].Shelf(gains_.bassDb, kBassCornerHz, rateHz_, false);
    tones_[1].Peak(gains_.midDb, kMidCentreHz, rateHz_);
    tones_[2].Shelf(gains_.trebleDb, kTrebleCornerHz, rateHz_, true);
}

void MixerPath::SetGains(const MixerGains& gains) {
    gains_ = gains;
    DesignTones();
}

void MixerPath::SetRate(std::uint32_t rateHz) {
    rateHz_ = rateHz;
    DesignTones();
}

bool MixerPath::FeedsBack() const noexcept {
    return AnyGain(gains_.line) || AnyGain(gains_.mic) || AnyGain(gains_.monitor);
}

double MixerPath::FedBack(std::size_t index, std::size_t channel) const noexcept {
    const double input = index < input_.size() ? input_[index] : 0.0;
    const double recorded = index < recorded_.size() ? recorded_[index] : 0.0;
    return input * (gains_.line[channel] + gains_.mic[channel]) + recorded * gains_.monitor[channel];
}

void MixerPath::ProcessOutput(std::span<std::int32_t> samples, int bits) {
    const bool feedsBack = FeedsBack();
    const bool toned = std::any_of(tones_.begin(), tones_.end(), [](const Filter& f) { return f.inUse; });
    if (!feedsBack && !toned && IsUnity(gains_.wave) && IsUnity(gains_.master)) return;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::size_t channel = i % 2;
        double value = samples[i] * gains_.wave[channel];
        if (feedsBack) value += FedBack(i, channel);
        for (Filter& filter : tones_)
            if (filter.inUse) value = filter.Run(value, channel);
        samples[i] = Quantized(value * gains_.master[channel] / kStep16, bits);
    }
}

void MixerPath::ProcessInput(std::span<std::int32_t> samples, int bits) {
    const bool feedsBack = FeedsBack();
    if (feedsBack) input_.assign(samples.begin(), samples.end());
    if (!IsUnity(gains_.record))
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = Quantized(samples[i] * gains_.record[i % 2] / kStep16, bits);
    if (feedsBack) {
        recorded_.assign(samples.begin(), samples.end());
    } else {
        input_.clear();
        recorded_.clear();
    }
}

}  // namespace sonavex
