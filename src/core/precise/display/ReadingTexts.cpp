#include "core/precise/display/ReadingTexts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numbers>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr const char* kBoundSign = "\u2264 ";
constexpr const char* kSpreadSign = "\u00b1 ";
constexpr int kPercentDigits = 3;
constexpr int kMostPercentDecimals = 9;
constexpr double kLeastShortSpread = 1e-9;

std::string_view WithoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool EndsWithUnit(std::string_view text, std::string_view unit) {
    const auto small = [](char letter) { return std::tolower(static_cast<unsigned char>(letter)); };
    const auto same = [&small](char one, char other) { return small(one) == small(other); };
    return text.size() >= unit.size() && std::equal(unit.rbegin(), unit.rend(), text.rbegin(), same);
}

// The factor of what follows the number; empty if it is neither suffix nor unit.
std::optional<double> FactorOf(std::string_view suffix, std::string_view unit) {
    suffix = WithoutBlanks(suffix);
    if (EndsWithUnit(suffix, unit)) suffix = WithoutBlanks(suffix.substr(0, suffix.size() - unit.size()));
    if (suffix.empty()) return 1.0;
    if (suffix == "k" || suffix == "K") return 1e3;
    if (suffix == "M") return 1e6;
    if (suffix == "m") return 1e-3;
    return std::nullopt;
}

}  // namespace

std::string SpreadText(double uncertainty, int decimals) {
    return WithDecimals(std::max(uncertainty, std::pow(10.0, -decimals)), decimals);
}

ValueText TextOf(const Value& value, int decimals, int spreadDecimals) {
    if (!value.value) return {};
    if (value.atMost) return {kBoundSign + RoundedUp(*value.value, 1), "", true};
    ValueText text{WithDecimals(*value.value, decimals), "", false};
    if (value.uncertainty) text.spread = kSpreadSign + SpreadText(*value.uncertainty, spreadDecimals);
    return text;
}

std::string ShortSpread(double uncertainty) {
    std::array<char, 16> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), std::max(uncertainty, kLeastShortSpread),
                      std::chars_format::scientific, 0);
    return kSpreadSign + std::string(digits.data(), end.ptr);
}

std::string PercentText(const Value& percent) {
    if (!percent.value) return {};
    const double size = std::abs(*percent.value);
    const int digits = size > 0.0 ? static_cast<int>(std::floor(std::log10(size))) : 0;
    const int shown = percent.atMost ? 1 : kPercentDigits;
    const int decimals = std::clamp(shown - 1 - digits, 0, kMostPercentDecimals);
    if (percent.atMost) return kBoundSign + RoundedUp(*percent.value, decimals);
    return WithDecimals(*percent.value, decimals);
}

Value PercentOfDecibels(const Value& decibels) {
    Value percent = decibels;
    if (!percent.value) return percent;
    percent.value = 100.0 * std::pow(10.0, *decibels.value / 20.0);
    if (percent.uncertainty) *percent.uncertainty *= *percent.value * std::numbers::ln10 / 20.0;
    return percent;
}

std::optional<double> QuantityIn(std::string_view text, std::string_view unit) {
    text = WithoutBlanks(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || !std::isfinite(number)) return std::nullopt;
    const auto factor = FactorOf(text.substr(static_cast<std::size_t>(end - text.data())), unit);
    if (!factor) return std::nullopt;
    return number * *factor;
}

}  // namespace sonavex
