#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "core/controls/Controls.h"
#include "core/plot/TraceColumns.h"
#include "core/plot/WaveColumns.h"

namespace sonavex {

// The part of a curve in one column of pixels, in pixels from the upper edge; top <= bottom. NaN: no curve.
struct ColumnSpan {
    float top = std::numeric_limits<float>::quiet_NaN();
    float bottom = std::numeric_limits<float>::quiet_NaN();
};

// An image in physical pixels, rows from top to bottom: premultiplied alpha, red, green, blue in one word
// each.
class TraceImage {
public:
    // Makes every pixel transparent.
    void Begin(std::size_t width, std::size_t height);

    // Draws a connected curve with antialiased edges. spans: one for each column. opacity: 0 to 1.
    void DrawCurve(std::span<const ColumnSpan> spans, Colour colour, double width, double opacity = 1.0);
    // Fills the spans as they are.
    void Fill(std::span<const ColumnSpan> spans, Colour colour, double opacity);

    std::size_t Width() const noexcept { return width_; }
    std::size_t Height() const noexcept { return height_; }
    std::span<const std::uint32_t> Pixels() const noexcept { return pixels_; }
    std::uint32_t At(std::size_t x, std::size_t y) const { return pixels_[y * width_ + x]; }

private:
    struct Paint;
    void FillColumn(std::size_t x, ColumnSpan span, const Paint& paint);

    std::size_t width_ = 0;
    std::size_t height_ = 0;
    std::vector<std::uint32_t> pixels_;
};

struct TraceStyle {
    Colour colour;
    double width = 1.3;  // of the line, in physical pixels
    double tint = 0.3;   // opacity of the range from the lowest bin to the highest
};

// Draws the tint and the line of a trace. decibels: from the lower edge of the image to the upper.
void DrawTrace(TraceImage& image, std::span<const TraceColumn> columns, PlotRange decibels,
               const TraceStyle& style);

// Draws a waveform. fullScale: the value at the upper edge of the image; its negative is at the lower one.
void DrawWave(TraceImage& image, std::span<const WaveColumn> columns, double fullScale, Colour colour,
              double width, double opacity = 1.0);

}  // namespace sonavex
