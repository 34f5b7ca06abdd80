#include "ui/widgets/Chevron.h"

#include <QPainter>
#include <QPainterPath>

namespace sonavex::ui {

void DrawChevron(QPainter& painter, const QRectF& area, const QColor& colour, bool down) {
    painter.save();
    painter.translate(area.center());
    if (!down) painter.rotate(-90.0);
    QPainterPath arrow(QPointF(-4.0, -2.0));
    arrow.lineTo(0.0, 2.0);
    arrow.lineTo(4.0, -2.0);
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(arrow);
    painter.restore();
}

}  // namespace sonavex::ui
