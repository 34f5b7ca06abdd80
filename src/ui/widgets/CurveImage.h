#pragma once

#include <QRect>
#include <algorithm>

#include "core/controls/Controls.h"
#include "core/plot/TraceImage.h"

class QColor;
class QPainter;

namespace sonavex::ui {

// The pixels of a painter's device below an area. On paper a pixel is at least a quarter of the painter's
// unit.
struct PixelArea {
    PixelArea(const QPainter& painter, const QRectF& area);

    // 0 where a plot is smaller than its margins.
    std::size_t Width() const { return static_cast<std::size_t>(std::max(pixels.width(), 0)); }
    std::size_t Height() const { return static_cast<std::size_t>(std::max(pixels.height(), 0)); }

    QRect pixels;
    double scale = 1;  // pixels for one unit of the painter
};

// Draws an image of the area's size pixel by pixel.
void DrawPixels(QPainter& painter, const PixelArea& area, const TraceImage& image);

Colour PixelColour(const QColor& colour);

}  // namespace sonavex::ui
