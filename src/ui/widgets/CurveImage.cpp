#include "ui/widgets/CurveImage.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <algorithm>

namespace sonavex::ui {
namespace {

constexpr double kFinestScale = 4.0;

}  // namespace

PixelArea::PixelArea(const QPainter& painter, const QRectF& area)
    : scale(std::min(kFinestScale, painter.deviceTransform().m11())) {
    const QPointF corner = area.topLeft() * scale;
    const QPointF end = area.bottomRight() * scale;
    pixels = QRect(QPoint(qRound(corner.x()), qRound(corner.y())),
                   QPoint(qRound(end.x()) - 1, qRound(end.y()) - 1));
}

void DrawPixels(QPainter& painter, const PixelArea& area, const TraceImage& image) {
    const auto width = static_cast<int>(image.Width());
    const auto height = static_cast<int>(image.Height());
    if (width == 0 || height == 0) return;
    const auto* const bytes = reinterpret_cast<const uchar*>(image.Pixels().data());
    painter.save();
    painter.scale(1.0 / area.scale, 1.0 / area.scale);
    painter.drawImage(area.pixels.topLeft(),
                      QImage(bytes, width, height, 4 * width, QImage::Format_ARGB32_Premultiplied));
    painter.restore();
}

Colour PixelColour(const QColor& colour) {
    return {static_cast<std::uint8_t>(colour.red()), static_cast<std::uint8_t>(colour.green()),
            static_cast<std::uint8_t>(colour.blue())};
}

}  // namespace sonavex::ui
