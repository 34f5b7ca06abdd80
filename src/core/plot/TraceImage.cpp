#include "core/plot/TraceImage.h"

#include <algorithm>
#include <cmath>

namespace sonavex {
namespace {

bool NoCurve(ColumnSpan span) {
    return std::isnan(span.top);
}

// Lets neighbouring columns touch: both reach the middle of a gap between them.
std::vector<ColumnSpan> JoinedSpans(std::span<const ColumnSpan> spans) {
    std::vector<ColumnSpan> result(spans.begin(), spans.end());
    for (std::size_t i = 1; i < spans.size(); ++i) {
        if (NoCurve(spans[i]) || NoCurve(spans[i - 1])) continue;
        const float down = 0.5F * (spans[i - 1].bottom + spans[i].top);
        const float up = 0.5F * (spans[i - 1].top + spans[i].bottom);
        if (spans[i].top > spans[i - 1].bottom) {
            result[i - 1].bottom = std::max(result[i - 1].bottom, down);
            result[i].top = std::min(result[i].top, down);
        } else if (spans[i].bottom < spans[i - 1].top) {
            result[i - 1].top = std::min(result[i - 1].top, up);
            result[i].bottom = std::max(result[i].bottom, up);
        }
    }
    return result;
}

// A curve as a pen with a round tip of this width draws it.
std::vector<ColumnSpan> PenSpans(std::span<const ColumnSpan> curve, double width) {
    const auto radius = static_cast<float>(0.5 * width);
    const auto reach = static_cast<std::ptrdiff_t>(radius);
    std::vector<ColumnSpan> result(curve.size());
    for (std::ptrdiff_t offset = -reach; offset <= reach; ++offset) {
        const auto distance = static_cast<float>(offset);
        const float height = std::sqrt(radius * radius - distance * distance);
        const auto begin = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, -offset));
        const auto ahead = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, offset));
        const std::size_t end = curve.size() - std::min(curve.size(), ahead);
        for (std::size_t i = begin; i < end; ++i) {
            const ColumnSpan from = curve[static_cast<std::size_t>(static_cast<std::ptrdiff_t>(i) + offset)];
            if (NoCurve(from)) continue;
            result[i].top = std::fmin(result[i].top, from.top - height);
            result[i].bottom = std::fmax(result[i].bottom, from.bottom + height);
        }
    }
    return result;
}

}  // namespace

// A colour to fill with.
struct TraceImage::Paint {
    Colour colour;
    std::uint32_t opacity;  // 0 to 256

    // Covers a part of a pixel, 0 to 1: the usual "source over destination".
    void Cover(std::uint32_t& pixel, float part) const {
        const auto alpha = static_cast<std::uint32_t>(std::lrint(static_cast<float>(opacity) * part));
        if (alpha == 256) {
            pixel = 0xff000000U | (std::uint32_t{colour.red} << 16U) | (std::uint32_t{colour.green} << 8U) |
                    colour.blue;
            return;
        }
        const auto mixed = [&](unsigned shift, std::uint32_t source) {
            const std::uint32_t below = (pixel >> shift) & 0xffU;
            return ((source * alpha + below * (256U - alpha)) >> 8U) << shift;
        };
        pixel = mixed(24, 255) | mixed(16, colour.red) | mixed(8, colour.green) | mixed(0, colour.blue);
    }
};

void TraceImage::Begin(std::size_t width, std::size_t height) {
    width_ = width;
    height_ = height;
    pixels_.assign(width * height, 0);
}

void TraceImage::FillColumn(std::size_t x, ColumnSpan span, const Paint& paint) {
    const float top = std::max(span.top, 0.0F);
    const float bottom = std::min(span.bottom, static_cast<float>(height_));
    if (!(top < bottom)) return;
    const auto last = static_cast<std::size_t>(std::ceil(bottom));
    for (auto y = static_cast<std::size_t>(top); y < last; ++y) {
        const auto edge = static_cast<float>(y);
        paint.Cover(pixels_[y * width_ + x], std::min(edge + 1.0F, bottom) - std::max(edge, top));
    }
}

void TraceImage::Fill(std::span<const ColumnSpan> spans, Colour colour, double opacity) {
    const Paint paint{colour, static_cast<std::uint32_t>(std::lround(256.0 * opacity))};
    for (std::size_t x = 0; x < std::min(width_, spans.size()); ++x) FillColumn(x, spans[x], paint);
}

void TraceImage::DrawCurve(std::span<const ColumnSpan> spans, Colour colour, double width, double opacity) {
    Fill(PenSpans(JoinedSpans(spans), width), colour, opacity);
}

void DrawTrace(TraceImage& image, std::span<const TraceColumn> columns, PlotRange decibels,
               const TraceStyle& style) {
    const auto height = static_cast<double>(image.Height());
    const auto y = [&](double level) {
        return static_cast<float>(height * (1.0 - decibels.FractionOf(level)));
    };
    std::vector<ColumnSpan> tint(columns.size());
    std::vector<ColumnSpan> line(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const TraceColumn& column = columns[i];
        tint[i] = {y(column.high), y(column.low)};
        line[i] = {y(column.Line()), y(column.mean)};
    }
    image.Fill(tint, style.colour, style.tint);
    image.DrawCurve(line, style.colour, style.width);
}

void DrawWave(TraceImage& image, std::span<const WaveColumn> columns, double fullScale, Colour colour,
              double width, double opacity) {
    const double half = 0.5 * static_cast<double>(image.Height());
    const auto y = [&](double value) { return static_cast<float>(half * (1.0 - value / fullScale)); };
    std::vector<ColumnSpan> spans;
    for (const WaveColumn& column : columns) spans.push_back({y(column.high), y(column.low)});
    image.DrawCurve(spans, colour, width, opacity);
}

}  // namespace sonavex
