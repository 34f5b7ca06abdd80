#include <gtest/gtest.h>

#include <cmath>

#include "ui/widgets/Theme.h"

namespace sonavex {
namespace {

constexpr double kLeastContrast = 4.5;

// Relative luminance of sRGB, 0 to 1, as WCAG 2.1 defines it.
double Luminance(const QColor& colour) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Contrast, OfBlackOnWhiteIs21) {
    EXPECT_NEAR(Contrast(Qt::black, Qt::white), 21.0, 1e-9);
}

class ThemeColours : public testing::TestWithParam<bool> {
protected:
    const ui::Theme theme = GetParam() ? ui::Theme::Dark() : ui::Theme::Light();
};

TEST_P(ThemeColours, AreReadableOnEveryGround) {
    const std::pair<const char*, QColor> grounds[] = {
        {"window", theme.window}, {"card", theme.card}, {"stripe", theme.stripe}, {"outside", theme.outside}};
    const std::pair<const char*, QColor> inks[] = {{"text", theme.text},       {"quiet", theme.quiet},
                                                   {"valid", theme.valid},     {"accent", theme.accent},
                                                   {"warning", theme.warning}, {"overload", theme.overload},
                                                   {"second", theme.second}};
    for (const auto& [groundName, ground] : grounds)
        for (const auto& [inkName, ink] : inks)
            EXPECT_GE(Contrast(ink, ground), kLeastContrast) << inkName << " on " << groundName;
}

TEST_P(ThemeColours, AreReadableInFieldsAndButtons) {
    EXPECT_GE(Contrast(theme.text, theme.field), kLeastContrast);
    EXPECT_GE(Contrast(theme.quiet, theme.field), kLeastContrast);
    EXPECT_GE(Contrast(theme.onAccent, theme.accent), kLeastContrast);
    EXPECT_GE(Contrast(theme.text, theme.track), kLeastContrast);
    EXPECT_GE(Contrast(theme.text, theme.outside), kLeastContrast);
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, ThemeColours, testing::Bool(),
                         [](const auto& theme) { return theme.param ? "Dark" : "Light"; });

}  // namespace
}  // namespace sonavex
