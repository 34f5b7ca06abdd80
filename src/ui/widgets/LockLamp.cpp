#include "ui/widgets/LockLamp.h"

#include <QPainter>
#include <QPainterPath>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {

LockLamp::LockLamp(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void LockLamp::SetColour(const QColor& colour) {
    if (colour == colour_) return;
    colour_ = colour;
    update();
}

void LockLamp::SetGood(bool good) {
    if (good == good_) return;
    good_ = good;
    update();
}

QSize LockLamp::sizeHint() const {
    const int side = fontMetrics().height() * 5 / 3;
    return {side, side};
}

void LockLamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintBackground(painter, *this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = std::min(width(), height());
    painter.translate((width() - side) / 2.0, (height() - side) / 2.0);
    painter.scale(side / 20.0, side / 20.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour_);
    painter.drawRoundedRect(QRectF(0.0, 0.0, 20.0, 20.0), 3.0, 3.0);
    QPainterPath sign;
    if (good_) {
        sign.moveTo(5.0, 10.5);
        sign.lineTo(8.5, 14.0);
        sign.lineTo(15.0, 6.0);
    } else {
        sign.moveTo(6.0, 6.0);
        sign.lineTo(14.0, 14.0);
        sign.moveTo(14.0, 6.0);
        sign.lineTo(6.0, 14.0);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(good_ ? Qt::black : Qt::white, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(sign);
}

}  // namespace sonavex::ui
