#pragma once

#include <QRect>

#include "core/controls/Controls.h"
#include "core/plot/TraceImage.h"

class QColor;
class QPainter;

namespace sonavex::ui {

// The pixels of a painter's device below an area. On paper a pixel is at least a quarter of the painter's
// unit.
struct PixelArea {
    PixelArea(const QPainter& painter, const QRectF& area);

    std::size_t Width() const { return static_cast<std::size_t>(pixels.width()); }
    std::size_t Height() const { return static_cast<std::size_t>(pixels.height()); }

    QRect pixels;
    double scale = 1;  // pixels for one unit of the painter
};

// Draws an image of the area's size pixel by pixel.
void DrawPixels(QPainter& painter, const PixelArea& area, const TraceImage& image);

Colour PixelColour(const QColor& colour);

}  // namespace sonavex::ui
