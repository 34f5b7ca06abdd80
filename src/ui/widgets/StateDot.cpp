#include "ui/widgets/StateDot.h"

#include <QPainter>

namespace sonavex::ui {

StateDot::StateDot(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StateDot::SetColour(const QColor& colour) {
    if (colour == colour_) return;
    colour_ = colour;
    update();
}

QSize StateDot::sizeHint() const {
    return {fontMetrics().height(), fontMetrics().height()};
}

void StateDot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour_);
    painter.drawEllipse(QRectF(rect()).adjusted(1.0, 1.0, -1.0, -1.0));
}

}  // namespace sonavex::ui
