#include "ui/widgets/NotchSlider.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

namespace sonavex::ui {
namespace {

constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;

bool Opposite(int a, int b) {
    return (a < 0 && b > 0) || (a > 0 && b < 0);
}

}  // namespace

bool NotchSlider::HandleContains(QPoint place) const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this).contains(place);
}

void NotchSlider::mousePressEvent(QMouseEvent* event) {
    if (!HandleContains(event->position().toPoint())) Q_EMIT AboutToStep();
    QSlider::mousePressEvent(event);
}

// Reversing the wheel starts a new notch.
void NotchSlider::wheelEvent(QWheelEvent* event) {
    const int angle = event->angleDelta().y();
    if (Opposite(angle, wheelAngle_)) wheelAngle_ = 0;
    wheelAngle_ += angle;
    const int notches = wheelAngle_ / kNotch;
    wheelAngle_ -= notches * kNotch;
    event->accept();
    if (notches == 0) return;
    Q_EMIT AboutToStep();
    MoveByNotches(notches);
}

}  // namespace sonavex::ui
