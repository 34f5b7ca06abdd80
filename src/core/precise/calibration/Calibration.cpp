#include "core/precise/calibration/Calibration.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "core/precise/calibration/Voltage.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::string_view kCalibrationSection = "Calibration";
constexpr std::size_t kDateCharacters = 19;

// The device is last, because its identifier may contain blanks.
std::string KeyOf(const CalibratedChannel& channel) {
    const bool input = channel.direction == CalibratedChannel::Direction::kInput;
    return std::string(input ? "Input" : "Output") + (channel.channel == 0 ? " Left " : " Right ") +
           CStr(channel.rateHz) + ' ' + channel.deviceId;
}

bool IsDate(std::string_view text) {
    constexpr std::string_view kPattern = "dddd-dd-dd dd:dd:dd";
    if (text.size() != kDateCharacters) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (kPattern[i] == 'd' ? !digit : text[i] != kPattern[i]) return false;
    }
    return true;
}

// "1.234 2026-11-22 17:05:00"
std::optional<Calibration> Parse(std::string_view text) {
    Calibration calibration;
    const char* const end = text.data() + text.size();
    const auto [rest, error] =
        std::from_chars(text.data(), end, calibration.fullScaleVolts, std::chars_format::general);
    if (error != std::errc() || rest == end || *rest != ' ') return std::nullopt;
    calibration.date = std::string(rest + 1, end);
    const bool plausible = calibration.fullScaleVolts >= 1e-9 && calibration.fullScaleVolts <= 1e9;
    if (!plausible || !IsDate(calibration.date)) return std::nullopt;
    return calibration;
}

std::string Shortest(double number) {
    std::array<char, 40> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

}  // namespace

Calibration Calibration::From(double dbfs, double volts, std::string date) {
    return {volts * std::pow(10.0, -dbfs / 20.0), std::move(date)};
}

double Calibration::Volts(double dbfs) const {
    return fullScaleVolts * std::pow(10.0, dbfs / 20.0);
}

double Calibration::Dbv(double dbfs) const {
    return dbfs + DbvOf(fullScaleVolts);
}

double Calibration::Dbu(double dbfs) const {
    return dbfs + DbuOf(fullScaleVolts);
}

double Calibration::DbfsOfVolts(double volts) const {
    return DbvOf(volts / fullScaleVolts);
}

std::optional<Calibration> Calibrations::Of(const CalibratedChannel& channel) const {
    if (channel.deviceId.empty()) return std::nullopt;
    const std::string key = KeyOf(channel);
    return Parse(settings_.Text({kCalibrationSection, key, ""}));
}

void Calibrations::Store(const CalibratedChannel& channel, const Calibration& calibration) {
    if (channel.deviceId.empty()) return;
    const std::string key = KeyOf(channel);
    settings_.Save({kCalibrationSection, key, ""},
                   Shortest(calibration.fullScaleVolts) + ' ' + calibration.date);
}

void Calibrations::Remove(const CalibratedChannel& channel) {
    if (channel.deviceId.empty()) return;
    const std::string key = KeyOf(channel);
    settings_.Save({kCalibrationSection, key, ""}, "");
}

}  // namespace sonavex
