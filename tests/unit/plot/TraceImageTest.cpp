#include <gtest/gtest.h>

#include <cmath>

#include "core/plot/TraceImage.h"

namespace sonavex {
namespace {

constexpr Colour kAnyColour{0x4a, 0xa0, 0xff};

unsigned AlphaAt(const TraceImage& image, std::size_t x, std::size_t y) {
    return image.At(x, y) >> 24U;
}

// Covered height of a column in pixels.
double Covered(const TraceImage& image, std::size_t x) {
    double sum = 0;
    for (std::size_t y = 0; y < image.Height(); ++y) sum += AlphaAt(image, x, y) / 255.0;
    return sum;
}

std::vector<TraceColumn> FlatTrace(std::size_t columns, double level) {
    return std::vector<TraceColumn>(columns, {level, level, level});
}

TEST(TraceImage, ALevelIsALineOfItsWidthAtItsHeight) {
    for (const double width : {1.0, 1.3, 2.6}) {
        TraceImage image;
        image.Begin(20, 100);
        DrawTrace(image, FlatTrace(20, -50), {-100, 0}, {kAnyColour, width, 0.3});
        EXPECT_NEAR(Covered(image, 10), width, 0.02) << width;
        double centre = 0;
        for (std::size_t y = 0; y < 100; ++y)
            centre += (static_cast<double>(y) + 0.5) * AlphaAt(image, 10, y) / 255;
        EXPECT_NEAR(centre / width, 50, 0.5) << width;
    }
}

TEST(TraceImage, AnOutstandingBinIsAThinOpaqueSpike) {
    auto columns = FlatTrace(21, -90);
    columns[10] = {-89, -95, -10, true};
    for (const double width : {1.3, 2.6}) {
        TraceImage image;
        image.Begin(21, 100);
        DrawTrace(image, columns, {-100, 0}, {kAnyColour, width, 0});
        EXPECT_EQ(image.At(10, 11), 0xff4aa0ffU);
        EXPECT_EQ(AlphaAt(image, 10, 7), 0U);
        EXPECT_EQ(image.At(10, 60), 0xff4aa0ffU);
        // The flanks of a spike have the width of the line, whatever the scale.
        const std::size_t reach = width > 2 ? 1 : 0;
        EXPECT_EQ(AlphaAt(image, 10 + reach, 30), 255U);
        EXPECT_EQ(AlphaAt(image, 11 + reach, 30), 0U);
    }
}

TEST(TraceImage, ASlopeHasNoGaps) {
    auto columns = FlatTrace(10, -80);
    for (std::size_t i = 5; i < 10; ++i) columns[i] = {-20, -20, -20};
    TraceImage image;
    image.Begin(10, 100);
    DrawTrace(image, columns, {-100, 0}, {kAnyColour, 1.0, 0});
    for (std::size_t y = 21; y < 80; ++y)
        EXPECT_EQ(std::max(AlphaAt(image, 4, y), AlphaAt(image, 5, y)), 255U) << y;
}

TEST(TraceImage, TheTintReachesFromTheLowestBinToTheHighest) {
    const std::vector<TraceColumn> columns(10, {-50, -70, -40});
    TraceImage image;
    image.Begin(10, 100);
    DrawTrace(image, columns, {-100, 0}, {kAnyColour, 1.0, 0.25});
    EXPECT_EQ(AlphaAt(image, 5, 39), 0U);
    EXPECT_NEAR(AlphaAt(image, 5, 41), 64, 1);
    EXPECT_NEAR(AlphaAt(image, 5, 69), 64, 1);
    EXPECT_EQ(AlphaAt(image, 5, 70), 0U);
}

TEST(TraceImage, ColoursArePremultiplied) {
    TraceImage image;
    image.Begin(1, 1);
    const std::vector<ColumnSpan> whole{{0, 1}};
    image.Fill(whole, {200, 100, 50}, 0.5);
    image.Fill(whole, {0, 0, 255}, 0.5);
    const std::uint32_t pixel = image.At(0, 0);
    EXPECT_NEAR(pixel >> 24U, 191, 1);
    EXPECT_NEAR((pixel >> 16U) & 255U, 50, 1);
    EXPECT_NEAR((pixel >> 8U) & 255U, 25, 1);
    EXPECT_NEAR(pixel & 255U, 140, 1);
}

TEST(TraceImage, ATraceMayBeNarrowerThanItsLine) {
    for (const std::size_t columns : {0U, 1U, 2U}) {
        TraceImage image;
        image.Begin(columns, 20);
        DrawTrace(image, FlatTrace(columns, -50), {-100, 0}, {kAnyColour, 5.0, 0.3});
        if (columns > 0) {
            EXPECT_NEAR(Covered(image, 0), 5, 0.02);
        }
    }
}

TEST(TraceImage, AWaveIsDrawnAroundTheMiddle) {
    const std::vector<WaveColumn> columns(10, {0.26, 0.5});
    TraceImage image;
    image.Begin(10, 100);
    DrawWave(image, columns, 1.0, kAnyColour, 2.0);
    EXPECT_EQ(AlphaAt(image, 5, 23), 0U);
    EXPECT_EQ(AlphaAt(image, 5, 24), 255U);
    EXPECT_EQ(AlphaAt(image, 5, 37), 255U);
    EXPECT_EQ(AlphaAt(image, 5, 38), 0U);
}

TEST(TraceImage, ClipsAndLeavesGaps) {
    auto columns = FlatTrace(6, 30);
    columns[3] = {-400, -400, -400};
    columns[4] = columns[5] = {std::nan(""), std::nan(""), std::nan("")};
    TraceImage image;
    image.Begin(6, 50);
    DrawTrace(image, columns, {-100, 0}, {kAnyColour, 1.3, 0.3});
    EXPECT_EQ(Covered(image, 0), 0);
    EXPECT_GT(Covered(image, 2), 49);
    EXPECT_EQ(Covered(image, 4), 0);
    image.Begin(0, 0);
    DrawTrace(image, columns, {-100, 0}, {kAnyColour, 1.3, 0.3});
    EXPECT_TRUE(image.Pixels().empty());
}

}  // namespace
}  // namespace sonavex
